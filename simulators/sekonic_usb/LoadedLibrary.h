// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

namespace kel {

/// Loads a library, for as long as the process lives. std::runtime_error if that is not possible.
[[nodiscard]] void* loadLibrary(const std::filesystem::path& file);

/// A function of a library that is loaded; null if it has none of that name.
[[nodiscard]] void* findInLibrary(void* library, const char* name);

} // namespace kel
