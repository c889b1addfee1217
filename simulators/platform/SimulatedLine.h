// SPDX-License-Identifier: MIT
#pragma once

#include "platform/LineDevice.h"
#include "simulators/platform/SimulatedClock.h"

#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace kel {

/// How long the host's bytes are on the wire.
enum class HostPace {
    Wire,    ///< one character time each, at the speed of the line
    Instant, ///< they are at the reader in the moment in which they are sent
};

/// What opening a port meets.
enum class PortState {
    Absent,       ///< there is no such port: 8002
    Present,      ///< a device is attached
    Busy,         ///< another process has it open: 8005
    NotPermitted, ///< this user may not open it: 8010
};

/// One thing that the host did to a line, as it was recorded.
struct HostAction {
    enum class Kind { Handshaking, Port, Settings, Open, Close, Output };

    Moment at{};
    Kind kind{};
    std::string text = {}; ///< the bytes of an output; the settings, port number or handshaking as text

    friend bool operator==(const HostAction&, const HostAction&) = default;
};

/// A serial line in memory between the control that has it open and the device at its far end.
/// Everything happens in the order of its times, however far the clock has jumped since the last look.
///
/// As much waits for the host as on a real line, ReceivedInput::kRoom; then the device is held up. What was due
/// meanwhile happens as soon as the host has taken something.
class SimulatedLine {
public:
    explicit SimulatedLine(SimulatedClock& clock) : clock_(clock) {}

    void attach(LineDevice& device);
    [[nodiscard]] LineDevice* device() const noexcept { return device_; }
    void state(PortState state) { state_ = state; }
    void hostPace(HostPace pace) { pace_ = pace; }

    /// Fails with 8002, 8005 or 8010 as the state says, and with 8005 when a control has it open already.
    void open(Int16 port, const LineParameters& parameters, const std::string& settings);
    void close();
    [[nodiscard]] bool isOpen() const noexcept { return open_; }

    void output(std::string_view bytes);

    /// Brings line and device up to the present moment, though somebody has made the device do something in it.
    void settle();

    /// Brings line and device up to the present moment once, and answers how many bytes wait for the host.
    [[nodiscard]] std::size_t waiting()
    {
        if (settledAt_ != clock_.now())
            settle();
        return received_.size() - taken_;
    }

    /// The host has learnt how many bytes wait; a higher number than before counts as its being busy.
    void told(std::size_t waiting)
    {
        if (waiting > told_)
            ++busyCount_;
        told_ = waiting;
    }

    /// Takes bytes that wait; at most `most`.
    [[nodiscard]] std::string take(std::size_t most);

    /// Whether the device has hung up. What it sent before may still wait.
    [[nodiscard]] bool hungUp();

    /// The next moment at which something happens on this line by itself.
    [[nodiscard]] std::optional<Moment> nextEvent() const;

    /// Whether bytes wait that have come since the last call, or the host has taken or sent any since then; or whether
    /// the line has hung up since then.
    [[nodiscard]] bool hasNews();

    void record(HostAction::Kind kind, std::string text);

    /// A line that serves for days remembers nothing of what the host does.
    void forgetActions() noexcept { remembers_ = false; }

    /// All that the host did, in order.
    [[nodiscard]] const std::vector<HostAction>& actions() const noexcept { return actions_; }

    /// All bytes that the host sent, as one text, or from the n-th action on.
    [[nodiscard]] std::string sent(std::size_t fromAction = 0) const;

    /// How the line is set while it is open.
    [[nodiscard]] const LineParameters& parameters() const noexcept { return parameters_; }

private:
    struct HostByte {
        Moment arrives;
        Byte byte;
    };

    [[nodiscard]] bool isFull() const noexcept;
    [[nodiscard]] std::optional<Moment> nextOfDevice() const;

    SimulatedClock& clock_;
    LineDevice* device_ = nullptr;
    PortState state_ = PortState::Absent;
    HostPace pace_ = HostPace::Wire;
    bool open_ = false;
    LineParameters parameters_;
    std::deque<HostByte> underWay_;
    Moment transmitterFree_{};
    Moment settledAt_ = Moment::min(); // up to which moment everything has been done
    std::string received_;
    std::size_t taken_ = 0;
    std::uint64_t arrivedCount_ = 0;
    std::size_t told_ = 0;
    std::uint64_t busyCount_ = 0; // what the host has taken, sent and learnt
    std::uint64_t arrivedSeen_ = 0;
    std::uint64_t busySeen_ = 0;
    bool hangUpSeen_ = false;
    bool remembers_ = true;
    std::vector<HostAction> actions_;
};

} // namespace kel
