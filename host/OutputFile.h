// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

namespace kel::host {

/// Opens a file for writing, made new, and gives its descriptor; below 0 if that is not possible, and `errno` says why.
[[nodiscard]] int openOutputFile(const std::filesystem::path& file);

} // namespace kel::host
