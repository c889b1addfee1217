// SPDX-License-Identifier: MIT
#pragma once

#include "stream/StreamLink.h"

#include <filesystem>
#include <string>

namespace kel {

/// Whether an address names something that nobody else may know: a key, credentials, or a password in a server's name.
[[nodiscard]] bool hasSecrets(const StreamAddress& address);

/// What is wrong with a file that holds secrets and that users outside of its group may read, a sentence; else nothing.
[[nodiscard]] std::string exposureOf(const std::filesystem::path& file);

/// What is wrong with an address and the files that it names, a sentence; else nothing.
[[nodiscard]] std::string faultOf(const StreamAddress& address);

} // namespace kel
