// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Carrier.h"
#include "platform/ControlAround.h"
#include "recording/TranscriptDevice.h"
#include "simulators/platform/SimulatedPump.h"
#include "simulators/platform/SimulatedSerialControl.h"

#include <functional>
#include <span>

namespace kel {

/// A carrier whose line leads to the reader of a transcript, without any machine. Time is the transcript's: a wait of
/// ten seconds passes in no time. So the thread's pump has to be this carrier's (see ReplayPlatform).
///
///     ReplayCarrier replay(transcript);
///     ReplayPlatform machine(platform(), replay, library);
///     const PlatformScope scope(machine);
///     reader.fComm(...);
///
/// The host of a replay needs no time for itself. So it may be ahead of a recorded one by what that one needed, and is
/// never after it: where it sends before the bytes in front of that line are due, they come at once.
class ReplayCarrier final : public Carrier {
public:
    explicit ReplayCarrier(const Transcript& transcript);

    [[nodiscard]] SerialControl& mscComm() override { return control_; }
    [[nodiscard]] ScanTimer& tmrScan() override { return timer_; }
    [[nodiscard]] MessagePump& pump() noexcept { return pump_; }

    /// Whether the recorded host went on by itself where this one waits: its user had stopped it. The one who replays
    /// is to do the same. A host that waits on hears that the line has hung up.
    [[nodiscard]] bool stopped() const noexcept { return pump_.stopped(); }

    /// What the host did differently, and the first line that it has not sent; see TranscriptDevice.
    [[nodiscard]] const std::vector<std::string>& differences() const noexcept { return device_.differences(); }
    [[nodiscard]] std::string unsent() const { return device_.unsent(); }

private:
    /// The simulated pump, which also sees when the recorded host went on.
    class Pump final : public MessagePump {
    public:
        explicit Pump(ReplayCarrier& replay) : replay_(replay) {}

        void DoEvents() override;
        void Sleep(Int32 milliseconds) override;
        [[nodiscard]] Moment now() const override { return replay_.simulated_.now(); }
        void hostPump(std::function<void()> pump) override { hostPump_ = std::move(pump); }

        [[nodiscard]] bool stopped() const noexcept { return stopped_; }

    private:
        [[nodiscard]] bool somethingComes() const;
        void waitInVain();

        ReplayCarrier& replay_;
        std::function<void()> hostPump_;
        int vainTurns_ = 0;
        bool stopped_ = false;
    };

    /// The simulated control, which fails as the recorded one did, at whatever port.
    class Control final : public ControlAround {
    public:
        Control(ReplayCarrier& replay, const Transcript& transcript)
            : replay_(replay), refused_(transcript.value("refused").value_or(""))
        {
        }

        [[nodiscard]] Int16 CommPort() const override { return port_; }
        void CommPort(Int16 value) override;
        using ControlAround::Settings;
        void Settings(const std::string& value) override;
        using ControlAround::Handshaking;
        void Handshaking(Int32 value) override;
        using ControlAround::PortOpen;
        void PortOpen(Boolean value) override;
        [[nodiscard]] Int32 InBufferCount() override;
        [[nodiscard]] std::string Input() override;
        void Output(std::string_view bytes) override;

    private:
        [[nodiscard]] SerialControl& inner() const override { return replay_.serial_; }
        void refuseAsRecorded(const std::string& member) const;
        void bringWhatIsDue();
        template <class Use>
        auto failingAsRecorded(Use use);

        ReplayCarrier& replay_;
        std::string refused_;
        Int16 port_ = 1;
        int vainLooks_ = 0;
    };

    TranscriptDevice device_;
    SimulatedPump simulated_;
    SimulatedLine line_{simulated_.clock()};
    SimulatedSerialControl serial_{std::span(&line_, 1), simulated_.clock()};
    SimulatedScanTimer timer_{simulated_};
    Pump pump_{*this};
    Control control_;
};

} // namespace kel
