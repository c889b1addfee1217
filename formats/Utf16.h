// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace kel {

/// A text in UTF-8 as UTF-16. A byte that is no UTF-8 becomes the character of its Latin-1 code, so that a text of
/// single bytes passes too. A half of a surrogate pair that stands alone is kept, there and back.
[[nodiscard]] std::u16string utf16Of(std::string_view utf8);

/// A text in UTF-16 as UTF-8.
[[nodiscard]] std::string utf8Of(std::u16string_view utf16);

/// Where a text has its first byte that is no UTF-8; nothing if it is UTF-8 throughout.
[[nodiscard]] std::optional<std::size_t> firstForeignByte(std::string_view utf8);

/// UTF-16 as bytes in little-endian order, and back; an odd byte at the end is left out.
[[nodiscard]] std::string littleEndianOf(std::u16string_view utf16);
[[nodiscard]] std::u16string fromLittleEndian(std::string_view bytes);

} // namespace kel
