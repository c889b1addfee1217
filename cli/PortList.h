// SPDX-License-Identifier: MIT
#pragma once

#include "host/Ports.h"

#include <string>
#include <vector>

namespace kel {

[[nodiscard]] std::string portsAsTable(const std::vector<host::PortState>& ports);
[[nodiscard]] std::string portsAsJson(const std::vector<host::PortState>& ports);

} // namespace kel
