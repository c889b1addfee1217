// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Carrier.h"
#include "platform/MessagePump.h"
#include "platform/SerialProperties.h"
#include "recording/TranscriptPlayer.h"

#include <functional>

namespace kel {

/// A carrier that plays the reader of a transcript, without any device. Time is the transcript's: a wait of ten
/// seconds passes in no time. So the thread's pump has to be this carrier's (see ReplayPlatform).
///
///     ReplayCarrier replay(transcript);
///     ReplayPlatform machine(platform(), replay);
///     const PlatformScope scope(machine);
///     reader.fComm(...);
class ReplayCarrier final : public Carrier {
public:
    explicit ReplayCarrier(Transcript transcript);

    [[nodiscard]] SerialControl& mscComm() override { return control_; }
    [[nodiscard]] ScanTimer& tmrScan() override { return timer_; }
    [[nodiscard]] MessagePump& pump() noexcept { return pump_; }

    /// Whether the recorded host went on by itself where this one waits: its user had stopped it. The one who replays
    /// is to do the same. A host that waits on hears that the line has hung up.
    [[nodiscard]] bool stopped() const noexcept { return pump_.stopped(); }

    /// What the host did differently, and the first line that it has not sent; see TranscriptPlayer.
    [[nodiscard]] const std::vector<std::string>& differences() const noexcept { return player_.differences(); }
    [[nodiscard]] std::string unsent() const { return player_.unsent(); }

private:
    class Timer final : public ScanTimer {
    public:
        explicit Timer(TranscriptPlayer& player) : player_(player) {}

        [[nodiscard]] Int32 Interval() const override { return interval_; }
        void Interval(Int32 milliseconds) override;
        [[nodiscard]] Boolean Enabled() const override { return enabled_; }
        void Enabled(Boolean value) override;

        [[nodiscard]] std::optional<Moment> end() const;
        void fire() noexcept { enabled_ = False; }

    private:
        TranscriptPlayer& player_;
        Int32 interval_ = 10000;
        Boolean enabled_ = False;
        Moment started_{};
    };

    class Pump final : public MessagePump {
    public:
        Pump(TranscriptPlayer& player, Timer& timer) : player_(player), timer_(timer) {}

        void DoEvents() override;
        void Sleep(Int32 milliseconds) override;
        [[nodiscard]] Moment now() const override { return player_.now(); }
        void hostPump(std::function<void()> pump) override { hostPump_ = std::move(pump); }

        [[nodiscard]] bool stopped() const noexcept { return stopped_; }

    private:
        [[nodiscard]] bool inputInvites();
        void moveOn();
        void waitInVain(bool hostWentOn);

        TranscriptPlayer& player_;
        Timer& timer_;
        std::function<void()> hostPump_;
        std::uint64_t arrivalsSeen_ = 0;
        std::uint64_t takingsSeen_ = 0;
        int vainTurns_ = 0;
        bool stopped_ = false;
    };

    class Control final : public SerialProperties {
    public:
        explicit Control(TranscriptPlayer& player) : player_(player) {}

        using SerialProperties::CommPort;
        void CommPort(Int16 value) override;
        using SerialProperties::Settings;
        void Settings(const std::string& value) override;
        using SerialProperties::Handshaking;
        void Handshaking(Int32 value) override;
        [[nodiscard]] Boolean PortOpen() const override { return open_; }
        void PortOpen(Boolean value) override;
        [[nodiscard]] Int32 InBufferCount() override;
        [[nodiscard]] std::string Input() override;
        void Output(std::string_view bytes) override;

    private:
        void refuseAsRecorded(const std::string& member) const;
        void demandOpen() const;
        [[noreturn]] void failHungUp() const;

        TranscriptPlayer& player_;
        Boolean open_ = False;
        int vainLooks_ = 0;
    };

    TranscriptPlayer player_;
    Timer timer_;
    Pump pump_;
    Control control_;
};

} // namespace kel
