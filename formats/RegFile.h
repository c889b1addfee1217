// SPDX-License-Identifier: MIT
#pragma once

#include "formats/RegistryPath.h"
#include "platform/Registry.h"

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace kel {

/// One thing that a registry file says.
///
///     [HKEY_CURRENT_USER\Software\Reader]    the key is there
///     [-HKEY_CURRENT_USER\Software\Reader]   the key is removed, with everything below it
///     "ScannerBaud"="9600"                   the key has the value
///     "ScannerBaud"=-                        the value is removed
struct RegFileEntry {
    RegistryPath key;
    std::optional<std::string> name; ///< of the value, empty for the key's default value; nothing for the key itself
    bool removed = false;
    RegistryValue value;

    friend bool operator==(const RegFileEntry&, const RegFileEntry&) = default;
};

/// A registry file that says something else than such a file can. The text begins with the line: "Line 3: ...".
class RegFileError : public std::runtime_error {
public:
    RegFileError(std::size_t line, const std::string& text)
        : std::runtime_error("Line " + std::to_string(line) + ": " + text)
    {
    }
};

/// What a registry file of version 5.00 says, in its order. It may come in UTF-8 or in UTF-16 in little-endian order,
/// with or without a byte-order mark. Texts of the kinds "text", "expandable text" and "texts" lose one zero character
/// at their end, as values are kept without it. RegFileError for a file that is none,
/// that has more than 50,000 keys and values, or a key that is longer or deeper than `isTooLong` allows.
[[nodiscard]] std::vector<RegFileEntry> parseRegFile(std::string_view bytes);

/// The registry file that says all this: UTF-16 in little-endian order with a byte-order mark, lines ended by CR LF.
[[nodiscard]] std::string regFileBytes(const std::vector<RegFileEntry>& entries);

} // namespace kel
