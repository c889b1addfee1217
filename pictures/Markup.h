// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace kel {

/// A text in UTF-8 as it stands between tags and in quoted attributes. Control characters, which a document must not
/// hold, come as their pictures: U+2400 and on.
[[nodiscard]] std::string markupText(std::string_view text);

/// A text of at most `longest` characters. Of a longer one its beginning and its length: "ABCDEFGH… (10000
/// characters)".
[[nodiscard]] std::string shortened(std::string_view text, std::size_t longest);

} // namespace kel
