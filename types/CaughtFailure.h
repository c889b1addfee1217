// SPDX-License-Identifier: MIT
#pragma once

#include "types/RuntimeFailure.h"

namespace kel {

/// Turns what is being caught into a run-time failure: one as it is, exhausted memory into 7, and any other
/// standard exception into 51 "Internal error" with its text. For use in a handler.
[[nodiscard]] RuntimeFailure caughtFailure();

} // namespace kel
