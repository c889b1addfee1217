// SPDX-License-Identifier: MIT
#pragma once

#include "formats/RegistryPath.h"

#include <cstddef>

namespace kel {

/// How long a key's path may be, in bytes, and how deep a key may lie (`kDeepestKey`).
inline constexpr std::size_t kLongestKey = 2048;
[[nodiscard]] bool isTooLong(const RegistryPath& path);

} // namespace kel
