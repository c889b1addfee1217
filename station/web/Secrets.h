// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>

namespace kel {

/// The bytes of a file that only the station's user and group may read. std::runtime_error, a sentence, if it cannot be
/// read, or if others may. `what` is its name in a message: "password file".
[[nodiscard]] std::string readSecretFile(const std::filesystem::path& file, const std::string& what);

} // namespace kel
