// SPDX-License-Identifier: MIT
#pragma once

#include "formats/Json.h"
#include "types/Boolean.h"
#include "types/Numbers.h"

#include <concepts>
#include <string>
#include <string_view>
#include <type_traits>

namespace kel {

/// A text as UTF-8 whatever bytes it holds: what is UTF-8 already stays, every other byte becomes the character of
/// its Latin-1 code. It is for messages: the language database has UTF-8, a reader's own words single bytes, and a
/// message may hold both. A text that is a reader's alone goes through `textOfLine`.
[[nodiscard]] std::string validUtf8(std::string_view text);

/// A value as JSON has it: truth values as true and false, enumerations by their number, texts as valid UTF-8.
[[nodiscard]] inline Json jsonValue(Boolean value)
{
    return static_cast<bool>(value);
}

[[nodiscard]] inline Json jsonValue(std::string_view value)
{
    return validUtf8(value);
}

template <class T>
requires std::is_arithmetic_v<T>
[[nodiscard]] Json jsonValue(T value)
{
    return value;
}

template <class T>
requires std::is_enum_v<T>
[[nodiscard]] Json jsonValue(T value)
{
    return static_cast<std::underlying_type_t<T>>(value);
}

/// One line of JSON, without its line end.
[[nodiscard]] inline std::string jsonText(const Json& value)
{
    return value.dump();
}

} // namespace kel
