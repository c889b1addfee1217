#pragma once

#include "cli/ScanEvents.h"
#include "formats/RegistryPath.h"
#include "reader/clsKELReader.h"

#include <string>
#include <string_view>
#include <vector>

namespace kel {

/// The key of the registry that a person means, by HIVE\SUBKEY; UsageError for a text that begins with no hive.
[[nodiscard]] RegistryPath keyNamed(std::string_view text);

/// Gives a reader the settings of a key, and tells what failed: a text that does not fit ends the loading.
[[nodiscard]] std::vector<ReportedFailure> loadSettings(clsKELReader& reader, const RegistryPath& key);

/// The names of the 19 settings as the reader's properties have them, in the order in which they are loaded.
[[nodiscard]] const std::vector<std::string>& loadedProperties();

/// The 19 settings of a reader, a line each, or as one JSON object.
[[nodiscard]] std::string settingsText(const clsKELReader& reader, bool asJson);

} // namespace kel
