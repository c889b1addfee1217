// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <filesystem>
#include <string_view>

namespace kel::host {

/// Opens a file for writing, made new, and gives its descriptor; below 0 if that is not possible, and `errno` says why.
[[nodiscard]] int openOutputFile(const std::filesystem::path& file);

/// Writes text, whole letters of UTF-8, to a file, a pipe or a terminal. How many bytes went, perhaps not all; below 0
/// if none did, and `errno` says why.
[[nodiscard]] std::ptrdiff_t writeText(int descriptor, std::string_view text);

/// Whether somebody sees what is written there.
[[nodiscard]] bool isTerminal(int descriptor);

} // namespace kel::host
