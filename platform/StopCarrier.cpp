// SPDX-License-Identifier: MIT
#include "platform/StopCarrier.h"

#include <algorithm>
#include <utility>

namespace kel {

namespace {

constexpr Int32 kLastMilliseconds = 2000;

} // namespace

StopCarrier::StopCarrier(Reference<Carrier> carrier, std::function<bool()> stopWanted)
    : carrier_(std::move(carrier)), stopWanted_(std::move(stopWanted))
{
}

void StopCarrier::Timer::Interval(Int32 milliseconds)
{
    inner().Interval(carrier_.hurried_ ? std::min(milliseconds, kLastMilliseconds) : milliseconds);
}

/// A wait asks in each of its turns.
Boolean StopCarrier::Timer::Enabled() const
{
    if (!carrier_.hurried_ && carrier_.stopWanted_()) {
        carrier_.hurried_ = true;
        inner().Interval(std::min(inner().Interval(), kLastMilliseconds));
    }
    return inner().Enabled();
}

} // namespace kel
