// SPDX-License-Identifier: MIT
#include "formats/KeyLimits.h"

#include "platform/RegistryTransaction.h"

#include <algorithm>

namespace kel {

bool isTooLong(const RegistryPath& path)
{
    const auto levels = 1 + std::count(path.subKey.begin(), path.subKey.end(), '\\');
    return path.subKey.size() > kLongestKey || static_cast<std::size_t>(levels) > kDeepestKey;
}

} // namespace kel
