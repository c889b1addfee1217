// SPDX-License-Identifier: MIT
#pragma once

#include "types/Numbers.h"
#include "types/RuntimeFailure.h"

#include <string>

namespace kel {

/// "Port 3 (COM23)".
[[nodiscard]] std::string portName(Int16 port, const std::string& device);

/// What the run time calls a port that could not be opened, by the system's error.
[[nodiscard]] FailureCode portOpenFailureCode(unsigned long error);

/// The failure of opening a port: 8002, 8005, 8010 or 8012, with a text that names port and cause, and what to try.
[[nodiscard]] RuntimeFailure portOpenFailure(Int16 port, const std::string& device, unsigned long error);

} // namespace kel
