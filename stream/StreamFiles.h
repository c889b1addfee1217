// SPDX-License-Identifier: MIT
#pragma once

#include "stream/StreamLink.h"

#include <filesystem>
#include <string>

namespace kel {

/// Whether an address contains a secret: a key, credentials, or a password in a server's name.
[[nodiscard]] bool hasSecrets(const StreamAddress& address);

/// A sentence about a file with secrets that users outside its group may read; empty if there is nothing wrong.
[[nodiscard]] std::string exposureOf(const std::filesystem::path& file);

/// A sentence about what is wrong with an address and the files that it names; empty if nothing is.
[[nodiscard]] std::string faultOf(const StreamAddress& address);

} // namespace kel
