// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace kel {

/// The path of a file whose name is in UTF-8, whatever letters the system has for names.
[[nodiscard]] inline std::filesystem::path pathOf(std::string_view utf8)
{
    return std::u8string(utf8.begin(), utf8.end());
}

} // namespace kel
