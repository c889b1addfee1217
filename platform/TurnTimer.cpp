// SPDX-License-Identifier: MIT
#include "platform/TurnTimer.h"

#include "platform/TurnPump.h"

#include <utility>

namespace kel {

TurnTimer::TurnTimer(std::shared_ptr<TurnPump> pump) : pump_(std::move(pump)) {}

TurnTimer::~TurnTimer()
{
    pump_->remove(*this);
}

void TurnTimer::Interval(Int32 milliseconds)
{
    if (milliseconds < 0)
        throw RuntimeFailure(FailureCode::InvalidPropertyValue);
    interval_ = milliseconds;
    if (enabled_)
        Enabled(True);
}

void TurnTimer::Enabled(Boolean value)
{
    pump_->remove(*this);
    enabled_ = value ? True : False;
    if (enabled_) {
        start();
        pump_->add(*this);
    }
}

void TurnTimer::start()
{
    started_ = pump_->now();
    putOff_ = false;
    madeUp_ = false;
}

/// A machine that is always late does not keep a timer from ending.
void TurnTimer::makeUpFor(Moment lost)
{
    if (!std::exchange(madeUp_, true))
        started_ += lost;
}

std::optional<Moment> TurnTimer::end() const
{
    if (!enabled_ || interval_ == 0)
        return std::nullopt;
    return started_ + std::chrono::milliseconds(interval_);
}

void TurnTimer::fireIfDue(Moment now, bool mayBePutOff)
{
    const std::optional<Moment> moment = end();
    if (!moment || *moment > now)
        return;
    if (mayBePutOff && !putOff_) {
        putOff_ = true;
        return;
    }
    if (enabled_)
        Enabled(False);
}

} // namespace kel
