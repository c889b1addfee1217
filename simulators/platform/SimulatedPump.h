// SPDX-License-Identifier: MIT
#pragma once

#include "platform/MessagePump.h"
#include "platform/ScanTimer.h"
#include "simulators/platform/SimulatedClock.h"
#include "simulators/platform/SimulatedLine.h"

#include <functional>
#include <map>
#include <optional>
#include <vector>

namespace kel {

class SimulatedPump;

/// A timer of the virtual clock.
class SimulatedScanTimer final : public ScanTimer {
public:
    explicit SimulatedScanTimer(SimulatedPump& pump);
    ~SimulatedScanTimer() override;
    SimulatedScanTimer(const SimulatedScanTimer&) = delete;
    SimulatedScanTimer& operator=(const SimulatedScanTimer&) = delete;

    [[nodiscard]] Int32 Interval() const override { return interval_; }
    void Interval(Int32 milliseconds) override;
    [[nodiscard]] Boolean Enabled() const override { return enabled_; }
    void Enabled(Boolean value) override;

    /// When the event comes; nothing while the timer is off.
    [[nodiscard]] std::optional<Moment> due() const;

    /// The event: it turns the timer off.
    void fire() { enabled_ = False; }

private:
    SimulatedPump& pump_;
    Int32 interval_ = 0;
    Boolean enabled_ = False;
    Moment startedAt_{};
};

/// A pause that the host made.
struct HostSleep {
    Moment at{};
    Int32 milliseconds = 0;

    friend bool operator==(const HostSleep&, const HostSleep&) = default;
};

/// The message pump under the virtual clock. `DoEvents` keeps the rule of the real one: due timers fire, the host
/// runs; then it returns at once while there is news on a line or the host has been busy since the turn before, and
/// otherwise the clock moves on to the next moment
/// at which anything happens.
class SimulatedPump final : public MessagePump {
public:
    void DoEvents() override;
    void Sleep(Int32 milliseconds) override;
    [[nodiscard]] Moment now() const override { return clock_.now(); }

    /// Runs at each `DoEvents`. While there is one, the clock moves by 5 milliseconds at most, as the real pump would
    /// come round to it.
    void hostPump(std::function<void()> pump) override { hostPump_ = std::move(pump); }

    /// The host does something in the first `DoEvents` at or after a moment, or in the n-th from now (1 is the next).
    void at(Moment moment, std::function<void()> action);
    void atDoEvents(std::uint64_t n, std::function<void()> action);

    [[nodiscard]] const std::vector<HostSleep>& sleeps() const noexcept { return sleeps_; }
    [[nodiscard]] std::uint64_t turns() const noexcept { return turns_; }

    [[nodiscard]] SimulatedClock& clock() noexcept { return clock_; }

    void add(SimulatedLine& line) { lines_.push_back(&line); }
    void add(SimulatedScanTimer& timer) { timers_.push_back(&timer); }
    void remove(SimulatedScanTimer& timer) { std::erase(timers_, &timer); }

private:
    void fireTimers();
    void runActions();
    [[nodiscard]] bool newsOnALine();
    [[nodiscard]] std::optional<Moment> nextHostEvent() const;
    [[nodiscard]] std::optional<Moment> nextLineEvent() const;
    void moveOn();

    SimulatedClock clock_;
    std::vector<SimulatedLine*> lines_;
    std::vector<SimulatedScanTimer*> timers_;
    std::multimap<Moment, std::function<void()>> atMoments_;
    std::multimap<std::uint64_t, std::function<void()>> atTurns_;
    std::function<void()> hostPump_;
    bool inHostPump_ = false;
    bool sleptInTurn_ = false;
    std::vector<HostSleep> sleeps_;
    std::uint64_t turns_ = 0;
};

} // namespace kel
