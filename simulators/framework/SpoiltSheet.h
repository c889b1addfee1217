// SPDX-License-Identifier: MIT
#pragma once

#include "simulators/framework/SimulatedSheet.h"
#include "simulators/framework/SiteFault.h"

namespace kel {

/// Two sheets that went in one upon the other, as they are read.
[[nodiscard]] SimulatedSheet together(const SimulatedSheet& upper, const SimulatedSheet& lower);

/// Makes of a sheet what a dirty read head sees of it, and one that goes in at an angle.
void spoilt(const SiteFaults& faults, Int32 number, SimulatedSheet& sheet);

} // namespace kel
