// SPDX-License-Identifier: MIT
#include "platform/WakeCall.h"

#include "platform/Platform.h"
#include "platform/TurnPump.h"

namespace kel {

std::shared_ptr<WakeCall> wakeCallOfThisThread()
{
    auto* const pump = dynamic_cast<TurnPump*>(&platform().pump());
    return pump ? pump->wakeCall() : nullptr;
}

} // namespace kel
