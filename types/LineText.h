// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kel {

// A text that goes over a reader's line (a barcode, a print line, a field of a record) holds a byte a character. For
// people each byte is the character of its Latin-1 code. What happens to be UTF-8 in it means nothing.

/// A line's text as UTF-8.
[[nodiscard]] std::string textOfLine(std::string_view bytes);

/// A text in UTF-8 as it goes over a line; nothing if it is no UTF-8, or has a character without a byte (above U+00FF).
[[nodiscard]] std::optional<std::string> lineOfText(std::string_view utf8);

} // namespace kel
