// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace kel {

// A command is a class byte, a short text and CR. There is no checksum and no length:
//
//   ENQ "T" CR          a query
//   DLE "R*" CR         read set-up and reading
//   DC3 "BA05" CR       a setting
//   "?F" CR             a plain query, without a class byte
//   "/" DLE "R*" CR     the same for side 2 of the sheet

inline constexpr std::string_view kStxSS = "\x02";
inline constexpr std::string_view kCrSS = "\r";

/// CAN CR: puts the reader back to its beginning; it replies ACK.
inline constexpr std::string_view kResetSS = "\x18\r";
inline constexpr char kAckSS = '\x06';

/// Precedes a command for side 2.
inline constexpr std::string_view kSide2SS = "/";

[[nodiscard]] inline std::string querySS(std::string_view text)
{
    return std::string("\x05").append(text).append(kCrSS);
}

[[nodiscard]] inline std::string readingSS(std::string_view text)
{
    return std::string("\x10").append(text).append(kCrSS);
}

[[nodiscard]] inline std::string settingSS(std::string_view text)
{
    return std::string("\x13").append(text).append(kCrSS);
}

} // namespace kel
