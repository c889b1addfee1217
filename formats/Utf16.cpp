// SPDX-License-Identifier: MIT
#include "formats/Utf16.h"

namespace kel {

namespace {

constexpr char32_t kFirstHigh = 0xD800;
constexpr char32_t kFirstLow = 0xDC00;
constexpr char32_t kBehindLow = 0xE000;
constexpr char32_t kFirstPaired = 0x10000;
constexpr char32_t kLast = 0x10FFFF;

struct Character {
    char32_t code = 0;
    std::size_t length = 0; ///< in bytes; 0 if there is no UTF-8
};

/// The character at the start of a text that is not empty.
Character characterAt(std::string_view text)
{
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char first = byte(0);
    if (first < 0x80)
        return {first, 1};
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : first >= 0xC0 ? 2 : 0;
    if (length == 0 || first >= 0xF8 || text.size() < length)
        return {};
    char32_t code = first & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80)
            return {};
        code = (code << 6) | (byte(i) & 0x3FU);
    }
    constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, kFirstPaired};
    return code < kSmallest[length] || code > kLast ? Character() : Character{code, length};
}

void append(std::string& text, char32_t code)
{
    const auto add = [&](char32_t byte) { text += static_cast<char>(static_cast<unsigned char>(byte)); };
    if (code < 0x80) {
        add(code);
        return;
    }
    if (code < 0x800) {
        add(0xC0 | (code >> 6));
    } else {
        if (code < kFirstPaired) {
            add(0xE0 | (code >> 12));
        } else {
            add(0xF0 | (code >> 18));
            add(0x80 | ((code >> 12) & 0x3F));
        }
        add(0x80 | ((code >> 6) & 0x3F));
    }
    add(0x80 | (code & 0x3F));
}

} // namespace

std::u16string utf16Of(std::string_view utf8)
{
    std::u16string units;
    units.reserve(utf8.size());
    while (!utf8.empty()) {
        const Character found = characterAt(utf8);
        const char32_t code = found.length > 0 ? found.code : static_cast<unsigned char>(utf8.front());
        utf8.remove_prefix(found.length > 0 ? found.length : 1);
        if (code < kFirstPaired) {
            units += static_cast<char16_t>(code);
        } else {
            units += static_cast<char16_t>(kFirstHigh + ((code - kFirstPaired) >> 10));
            units += static_cast<char16_t>(kFirstLow + ((code - kFirstPaired) & 0x3FF));
        }
    }
    return units;
}

std::string utf8Of(std::u16string_view utf16)
{
    std::string text;
    text.reserve(utf16.size());
    for (std::size_t i = 0; i < utf16.size(); ++i) {
        const char32_t unit = utf16[i];
        const char32_t next = i + 1 < utf16.size() ? utf16[i + 1] : 0;
        const bool pair = unit >= kFirstHigh && unit < kFirstLow && next >= kFirstLow && next < kBehindLow;
        append(text, pair ? kFirstPaired + ((unit - kFirstHigh) << 10) + (next - kFirstLow) : unit);
        if (pair)
            ++i;
    }
    return text;
}

std::optional<std::size_t> firstForeignByte(std::string_view utf8)
{
    for (std::size_t at = 0; at < utf8.size();) {
        const std::size_t length = characterAt(utf8.substr(at)).length;
        if (length == 0)
            return at;
        at += length;
    }
    return std::nullopt;
}

std::string littleEndianOf(std::u16string_view utf16)
{
    std::string bytes;
    bytes.reserve(utf16.size() * 2);
    for (const char16_t unit : utf16) {
        bytes += static_cast<char>(unit & 0xFF);
        bytes += static_cast<char>(unit >> 8);
    }
    return bytes;
}

std::u16string fromLittleEndian(std::string_view bytes)
{
    std::u16string units;
    units.reserve(bytes.size() / 2);
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const auto low = static_cast<unsigned char>(bytes[i]);
        const auto high = static_cast<unsigned char>(bytes[i + 1]);
        units += static_cast<char16_t>(low | (high << 8));
    }
    return units;
}

} // namespace kel
