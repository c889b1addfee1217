// SPDX-License-Identifier: MIT
#pragma once

#include "types/Enumerations.h"
#include "types/Export.h"

#include <optional>
#include <string>
#include <string_view>

namespace kel {

/// A key of the registry: its hive, and the path below it without backslashes at its ends.
struct RegistryPath {
    kelReaderRegistryKey hive = kelReaderRegistryKeyCurrentUser; ///< its hive
    std::string subKey;                                          ///< the path below it

    friend bool operator==(const RegistryPath&, const RegistryPath&) = default;
};

/// A key as it is written: the hive by its long or its short name (HKEY_CURRENT_USER, HKCU) in any case of letters, and
/// after a backslash the path below it. nullopt for a text that does not begin with a hive.
[[nodiscard]] KEL_PUBLIC std::optional<RegistryPath> registryPath(std::string_view text);

/// The same the other way, with the hive's long name.
[[nodiscard]] KEL_PUBLIC std::string registryPathText(const RegistryPath& path);

/// A key directly below another.
[[nodiscard]] KEL_PUBLIC RegistryPath below(const RegistryPath& path, std::string_view name);

} // namespace kel
