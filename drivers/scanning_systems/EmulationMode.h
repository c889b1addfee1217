// SPDX-License-Identifier: MIT
#pragma once

#include "types/Numbers.h"

namespace kel {

/// What the reader last replied to the query for its emulation mode. It chooses the threshold commands and the
/// words for error codes, and outlives the session; models without emulation modes do not touch it.
extern constinit thread_local Int16 iEmulationMode;

} // namespace kel
