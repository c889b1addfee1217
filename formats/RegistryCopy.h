// SPDX-License-Identifier: MIT
#pragma once

#include "formats/RegFile.h"

#include <optional>
#include <vector>

namespace kel {

/// A key with its values and all keys below it, as a registry file says it; nothing for a key that is not there.
[[nodiscard]] std::vector<RegFileEntry> registryEntries(Registry& registry, const RegistryPath& key);

/// Does in the registry what the entries say, in their order. What is to be removed and is not there is no failure.
/// The answer is the entry that the registry refused, with which it ended; nothing when all is done.
std::optional<RegFileEntry> applyRegistryEntries(Registry& registry, const std::vector<RegFileEntry>& entries);

} // namespace kel
