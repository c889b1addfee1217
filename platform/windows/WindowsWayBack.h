// SPDX-License-Identifier: MIT
#pragma once

#include "platform/WayBackPlace.h"

namespace kel::detail {

/// Forgets the handlers that the code has put up that `place` called: their part of the stack is given up as it is.
void forgetHandlersWithin(WayBack& place) noexcept;

} // namespace kel::detail
