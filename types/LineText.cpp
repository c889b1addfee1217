// SPDX-License-Identifier: MIT
#include "types/LineText.h"

namespace kel {

std::string textOfLine(std::string_view bytes)
{
    std::string utf8;
    utf8.reserve(bytes.size());
    for (const char byte : bytes) {
        const auto code = static_cast<unsigned char>(byte);
        if (code < 0x80) {
            utf8 += byte;
        } else {
            utf8 += static_cast<char>(0xC0 | (code >> 6));
            utf8 += static_cast<char>(0x80 | (code & 0x3F));
        }
    }
    return utf8;
}

std::optional<std::string> lineOfText(std::string_view utf8)
{
    std::string bytes;
    bytes.reserve(utf8.size());
    for (std::size_t at = 0; at < utf8.size(); ++at) {
        const auto first = static_cast<unsigned char>(utf8[at]);
        if (first < 0x80) {
            bytes += utf8[at];
            continue;
        }
        // U+0080 to U+00FF: two bytes, the first of them C2 or C3.
        const auto second = at + 1 < utf8.size() ? static_cast<unsigned char>(utf8[at + 1]) : 0U;
        if ((first != 0xC2 && first != 0xC3) || (second & 0xC0) != 0x80)
            return std::nullopt;
        bytes += static_cast<char>(((first & 0x03) << 6) | (second & 0x3F));
        ++at;
    }
    return bytes;
}

} // namespace kel
