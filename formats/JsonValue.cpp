// SPDX-License-Identifier: MIT
#include "formats/JsonValue.h"

namespace kel {

namespace {

bool isContinuation(unsigned char byte)
{
    return (byte & 0xC0) == 0x80;
}

/// How many bytes the UTF-8 character at the start of the text takes; 0 if none is there. Overlong forms, surrogates
/// and codes beyond U+10FFFF are no characters.
std::size_t characterLength(std::string_view text)
{
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const auto continued = [&](std::size_t length) {
        if (text.size() < length)
            return false;
        for (std::size_t i = 1; i < length; ++i) {
            if (!isContinuation(byte(i)))
                return false;
        }
        return true;
    };
    const unsigned char first = byte(0);
    if (first < 0x80)
        return 1;
    if (first >= 0xC2 && first <= 0xDF)
        return continued(2) ? 2 : 0;
    if (first >= 0xE0 && first <= 0xEF) {
        const bool good = continued(3) && !(first == 0xE0 && byte(1) < 0xA0) && !(first == 0xED && byte(1) > 0x9F);
        return good ? 3 : 0;
    }
    if (first >= 0xF0 && first <= 0xF4) {
        const bool good = continued(4) && !(first == 0xF0 && byte(1) < 0x90) && !(first == 0xF4 && byte(1) > 0x8F);
        return good ? 4 : 0;
    }
    return 0;
}

} // namespace

std::string validUtf8(std::string_view text)
{
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        if (length > 0) {
            result += text.substr(0, length);
            text.remove_prefix(length);
            continue;
        }
        const auto code = static_cast<unsigned char>(text.front());
        result += static_cast<char>(0xC0 | (code >> 6));
        result += static_cast<char>(0x80 | (code & 0x3F));
        text.remove_prefix(1);
    }
    return result;
}

} // namespace kel
