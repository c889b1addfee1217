// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <filesystem>
#include <string_view>

namespace kel::host {

/// Opens a new or emptied file for writing, and returns its descriptor; below 0 if that is not possible, and `errno`
/// says why.
[[nodiscard]] int openOutputFile(const std::filesystem::path& file);

/// Writes text, whole characters of UTF-8, to a file, a pipe or a terminal. Returns the number of bytes written,
/// perhaps not all; below 0 if none were, and `errno` says why.
[[nodiscard]] std::ptrdiff_t writeText(int descriptor, std::string_view text);

/// Whether it is a terminal.
[[nodiscard]] bool isTerminal(int descriptor);

} // namespace kel::host
