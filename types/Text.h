// SPDX-License-Identifier: MIT
#pragma once

#include "types/Boolean.h"
#include "types/Numbers.h"

#include <concepts>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace kel {

/// A line end within a message: CR LF.
inline constexpr std::string_view kLineEnd = "\r\n";

/// The number at the beginning of a text, 0 if there is none. Blanks, tabs and line feeds are skipped wherever they
/// stand; "1e3" and "1d3" are numbers, "&h1F" is hexadecimal and "&o17" octal ("&h8000" to "&hFFFF" are negative
/// 16-bit numbers, longer ones 32-bit). Never fails, but for 6 "Overflow" on a number too large for a double.
[[nodiscard]] double Val(std::string_view text);

/// A whole number or the number of an enumerator in decimal, without a blank in front.
template <class T>
requires(!std::same_as<T, bool> && (std::integral<T> || (std::is_enum_v<T> && std::convertible_to<T, Int32>)))
    [[nodiscard]] std::string CStr(T value)
{
    return std::to_string(static_cast<std::int64_t>(value));
}
/// A number in decimal, as short as it can be said: 1 gives "1", 1.5 gives "1.5".
[[nodiscard]] std::string CStr(float value);
[[nodiscard]] std::string CStr(double value);
/// "True" or "False".
[[nodiscard]] std::string CStr(Boolean value);

/// A text as a truth value: "True" and "False" in any case of letters, or a number; 13 "Type mismatch" otherwise.
[[nodiscard]] Boolean CBool(std::string_view text, SourceLocation where = SourceLocation::current());

/// A text as a single precision number; 13 "Type mismatch" if it is none as a whole.
[[nodiscard]] float CSng(std::string_view text, SourceLocation where = SourceLocation::current());

/// Whether a text as a whole is a number.
[[nodiscard]] bool IsNumeric(std::string_view text);

/// A number in decimal with zeros in front up to `digits`: the format "00" or "000". It fills and never cuts.
[[nodiscard]] std::string formatZeros(Int32 value, int digits);

/// The code of a text's first character; 5 "Invalid procedure call or argument" when it is empty.
[[nodiscard]] Int16 Asc(std::string_view text, SourceLocation where = SourceLocation::current());

/// The one character of a code.
[[nodiscard]] inline std::string Chr(Int16 code)
{
    return std::string(1, static_cast<char>(code));
}

/// So many blanks; a negative count is failure 5.
[[nodiscard]] std::string Space(Int32 count, SourceLocation where = SourceLocation::current());

/// A text without the blanks around it (blanks only, as 0x20).
[[nodiscard]] std::string Trim(std::string_view text);

/// `count` characters of `text` from the 1-based `start`, or what there is of them.
/// A start below 1 or a negative count is failure 5.
[[nodiscard]] std::string Mid(std::string_view text, Int32 start, Int32 count,
                              SourceLocation where = SourceLocation::current());

/// The first or the last `count` characters, or what there is of them; a negative count is failure 5.
[[nodiscard]] std::string Left(std::string_view text, Int32 count, SourceLocation where = SourceLocation::current());
[[nodiscard]] std::string Right(std::string_view text, Int32 count, SourceLocation where = SourceLocation::current());

/// Every occurrence of `what` replaced.
[[nodiscard]] std::string replaceAll(std::string_view text, std::string_view what, std::string_view with);

/// The pieces of a text between the separators; an empty text has none.
[[nodiscard]] std::vector<std::string> split(std::string_view text, char separator);

/// Equality and order without regard to the case of ASCII letters.
[[nodiscard]] bool equalNoCase(std::string_view a, std::string_view b);
[[nodiscard]] int compareNoCase(std::string_view a, std::string_view b);

/// The text in lower or upper case, ASCII letters only.
[[nodiscard]] std::string lowerCase(std::string_view text);
[[nodiscard]] std::string upperCase(std::string_view text);

} // namespace kel
