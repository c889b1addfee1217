// SPDX-License-Identifier: MIT
#pragma once

#include "platform/MessagePump.h"

namespace kel {

/// The steady clock of the system, which needs no system call to be read.
[[nodiscard]] inline Moment steadyTime() noexcept
{
    return std::chrono::steady_clock::now().time_since_epoch();
}

} // namespace kel
