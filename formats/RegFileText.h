// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Registry.h"

#include <string_view>

namespace kel {

/// The first line of a registry file.
inline constexpr std::string_view kRegFileHeading = "Windows Registry Editor Version 5.00";

} // namespace kel
