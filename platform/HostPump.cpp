// SPDX-License-Identifier: MIT
#include "platform/HostPump.h"

#include "platform/Platform.h"

#include <utility>

namespace kel {

void setHostPump(std::function<void()> pump)
{
    platform().pump().hostPump(std::move(pump));
}

} // namespace kel
