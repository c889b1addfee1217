// SPDX-License-Identifier: MIT
#pragma once

#include "simulators/framework/SiteFault.h"

#include <optional>
#include <string>

namespace kel {

/// What can be wrong where a simulated reader stands: a line with the fault and its families, and one with what it is.
/// Of a family, what applies to it.
[[nodiscard]] std::string siteFaultTable(std::optional<SimulatedFamily> family);

} // namespace kel
