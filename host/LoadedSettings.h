// SPDX-License-Identifier: MIT
#pragma once

#include "formats/RegistryPath.h"
#include "host/Failure.h"
#include "reader/clsKELReader.h"

#include <string>
#include <string_view>
#include <vector>

namespace kel::host {

/// The key of the registry that a person means, by HIVE\SUBKEY; UsageError for a text that does not begin with a hive.
[[nodiscard]] RegistryPath keyNamed(std::string_view text);

/// Loads the settings of a key into a reader, and reports what failed: a text that does not fit ends the loading.
[[nodiscard]] std::vector<Failure> loadSettings(clsKELReader& reader, const RegistryPath& key);

/// The names of the 19 settings as the reader's properties have them, in the order in which they are loaded.
[[nodiscard]] const std::vector<std::string>& loadedProperties();

} // namespace kel::host
