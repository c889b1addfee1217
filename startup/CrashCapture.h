// SPDX-License-Identifier: MIT
#pragma once

#include "types/Export.h"

namespace kel {

/// Whether faults of the processor within the component become failures; they do, unless the host sets False before it
/// makes the first object of the component; then no handlers are installed. Later calls change nothing.
KEL_PUBLIC void captureFaults(bool wanted);

} // namespace kel
