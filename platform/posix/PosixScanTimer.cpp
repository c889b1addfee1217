#include "platform/posix/PosixScanTimer.h"

#include "platform/posix/PosixMessagePump.h"

namespace kel {

PosixScanTimer::PosixScanTimer(std::shared_ptr<PosixMessagePump> pump) : pump_(std::move(pump)) {}

PosixScanTimer::~PosixScanTimer()
{
    pump_->remove(*this);
}

void PosixScanTimer::Interval(Int32 milliseconds)
{
    if (milliseconds < 0)
        throw RuntimeFailure(FailureCode::InvalidPropertyValue);
    interval_ = milliseconds;
    if (enabled_)
        start();
}

void PosixScanTimer::Enabled(Boolean value)
{
    pump_->remove(*this);
    enabled_ = value ? True : False;
    if (enabled_) {
        start();
        pump_->add(*this);
    }
}

void PosixScanTimer::start()
{
    started_ = pump_->now();
    putOff_ = false;
}

std::optional<Moment> PosixScanTimer::end() const
{
    if (!enabled_ || interval_ == 0)
        return std::nullopt;
    return started_ + std::chrono::milliseconds(interval_);
}

void PosixScanTimer::fireIfDue(Moment now, bool inputCame)
{
    const std::optional<Moment> moment = end();
    if (!moment || *moment > now)
        return;
    if (inputCame && !putOff_) {
        putOff_ = true;
        return;
    }
    if (enabled_)
        Enabled(False);
}

} // namespace kel
