// SPDX-License-Identifier: MIT
#pragma once

#include "platform/FileDescriptor.h"
#include "simulators/pseudo_terminal/Pty.h"

#include <deque>
#include <exception>
#include <filesystem>
#include <optional>
#include <string>
#include <thread>

namespace kel {

/// Runs a device at the far end of a pseudo-terminal: another program, or this one, opens it as it would a serial port.
///
/// The device learns that the line is open when the host's first byte comes, or a moment after the opening, so that the
/// host has set the line by then; and that it is closed when the last program has closed it and its bytes have left the
/// wire. Where the system does not report openings, the first byte is the opening, and the line stays open. What the
/// device sends while the line is closed is lost, as on a wire.
///
/// The device's bytes are written when they are due, those due together in one piece. A host that does not read them
/// holds the device up after ReceivedInput::kRoom: what was due meanwhile happens as soon as there is room. When the
/// device hangs up, the line does so too, once the host has read what was sent before.
class PtyDeviceHost {
public:
    struct Options {
        std::filesystem::path link; ///< a symbolic link to the device, made now and removed at the end; empty for none
        bool paceHost = true;       ///< the host's bytes take their time on the wire; if not, they are there at once
    };

    /// The device must outlive the host, and is used by the thread that runs it alone. Throws std::system_error when
    /// there is no pseudo-terminal, or when the link's name is taken by something that is no link.
    explicit PtyDeviceHost(LineDevice& device);
    PtyDeviceHost(LineDevice& device, Options options);
    /// Stops, and waits for the thread.
    ~PtyDeviceHost();
    PtyDeviceHost(const PtyDeviceHost&) = delete;
    PtyDeviceHost& operator=(const PtyDeviceHost&) = delete;

    /// The file to open, such as /dev/pts/3.
    [[nodiscard]] const std::string& deviceFile() const noexcept { return pty_.name(); }

    /// What the line is set to now. Any thread may ask.
    [[nodiscard]] LineParameters line() const { return pty_.line(); }

    /// Serves the device until it hangs up or is stopped; what the device throws comes out here.
    void run();

    /// Ends the run, also one that has not begun. Any thread may call it, and a signal handler too.
    void stop() noexcept;

    /// The same in a thread of its own. `join` waits for its end, and throws what the device has thrown.
    void start();
    void join();

private:
    /// What the host does, in the order in which it reaches the device.
    struct HostEvent {
        enum class Kind { Opened, Sent, Closed };
        Moment at{};
        Kind kind{};
        Byte byte = 0;
    };

    void makeLink() const;
    void removeLink() const noexcept;
    [[nodiscard]] Moment now() const;
    [[nodiscard]] std::optional<Moment> nextMoment() const;
    void settle(Moment now);
    void handle(const HostEvent& event);
    void takeFromDevice(Moment moment);
    void writeOut();
    void wait();
    void lookAtHost();
    void fetchBytes();
    void openNow();
    void hangUp();
    [[nodiscard]] bool stopped(Moment within) const;

    LineDevice& device_;
    Options options_;
    Pty pty_;
    FileDescriptor stop_;
    Moment begin_;
    std::deque<HostEvent> hostEvents_;
    Moment wireFree_{};   // when the last of the host's bytes has left the wire
    Moment deviceTime_{}; // the last time that the device got
    int openings_ = 0;    // how many programs have the line open
    bool open_ = false;   // as the device will see it after all events
    std::string outgoing_;
    std::thread thread_;
    std::exception_ptr thrown_;
};

} // namespace kel
