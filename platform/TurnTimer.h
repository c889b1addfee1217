// SPDX-License-Identifier: MIT
#pragma once

#include "platform/MessagePump.h"
#include "platform/ScanTimer.h"

#include <memory>
#include <optional>

namespace kel {

class TurnPump;

/// A one-shot timer on the steady clock. Its event, which turns it off, runs within its pump's `DoEvents`.
class TurnTimer final : public ScanTimer {
public:
    explicit TurnTimer(std::shared_ptr<TurnPump> pump);
    ~TurnTimer() override;
    TurnTimer(const TurnTimer&) = delete;
    TurnTimer& operator=(const TurnTimer&) = delete;

    [[nodiscard]] Int32 Interval() const override { return interval_; }
    /// Starts the countdown again if the timer is running. A negative interval is 380.
    void Interval(Int32 milliseconds) override;

    [[nodiscard]] Boolean Enabled() const override { return enabled_; }
    void Enabled(Boolean value) override;

    /// When the countdown ends; nothing if there is none.
    [[nodiscard]] std::optional<Moment> end() const;

    /// Runs the event if the countdown has ended by `now`. It may be put off by one turn, but not twice: bytes that
    /// drip in are no reason to wait for ever.
    void fireIfDue(Moment now, bool mayBePutOff);

    /// The process was stopped for so long: the countdown ends as much later, once.
    void makeUpFor(Moment lost);

private:
    void start();

    std::shared_ptr<TurnPump> pump_;
    Int32 interval_ = 0;
    Boolean enabled_ = False;
    bool putOff_ = false;
    bool madeUp_ = false;
    Moment started_{};
};

} // namespace kel
