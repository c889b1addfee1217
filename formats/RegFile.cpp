// SPDX-License-Identifier: MIT
#include "formats/RegFile.h"

#include "formats/RegFileText.h"
#include "formats/Utf16.h"
#include "types/Text.h"

namespace kel {

namespace {

// Lines of bytes go on in the next one before they grow longer than a terminal's.
constexpr std::size_t kLongestLine = 77;

std::string inQuotes(std::string_view text)
{
    std::string result = "\"";
    for (const char character : text) {
        if (character == '\\' || character == '"')
            result += '\\';
        result += character;
    }
    return result + '"';
}

std::string hexadecimal(std::uint32_t value, std::size_t digits)
{
    std::string text;
    for (; value != 0 || text.size() < digits; value >>= 4)
        text.insert(text.begin(), "0123456789abcdef"[value & 0xF]);
    return text;
}

/// The bytes of a value as the file has them: texts in UTF-16 with their end.
std::string bytesOf(const RegistryValue& value)
{
    return isText(value.type) ? littleEndianOf(utf16Of(value.data) + u'\0') : value.data;
}

/// `hex(2):25,00,...` after the `column` characters that the line has already.
std::string hexText(const RegistryValue& value, std::size_t column)
{
    std::string text = "hex";
    if (value.type != RegistryType::Binary)
        text += '(' + hexadecimal(static_cast<std::uint32_t>(value.type), 1) + ')';
    text += ':';
    column += text.size();
    const std::string bytes = bytesOf(value);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        text += hexadecimal(static_cast<unsigned char>(bytes[i]), 2);
        if (i + 1 == bytes.size())
            break;
        text += ',';
        column += 3;
        if (column + 3 > kLongestLine) {
            text += "\\\r\n  ";
            column = 2;
        }
    }
    return text;
}

std::string valueText(const RegistryValue& value, std::size_t column)
{
    // A line end or a zero between quotes would not come through every editor.
    constexpr std::string_view kNotBetweenQuotes("\r\n\0", 3);
    if (value.type == RegistryType::Text && value.data.find_first_of(kNotBetweenQuotes) == std::string::npos)
        return inQuotes(value.data);
    if (value.type == RegistryType::Number && value.data.size() == 4) {
        std::uint32_t number = 0;
        for (auto byte = value.data.rbegin(); byte != value.data.rend(); ++byte)
            number = (number << 8) | static_cast<unsigned char>(*byte);
        return "dword:" + hexadecimal(number, 8);
    }
    return hexText(value, column);
}

} // namespace

std::string regFileBytes(const std::vector<RegFileEntry>& entries)
{
    std::string text(kRegFileHeading);
    text += kLineEnd;
    const RegistryPath* key = nullptr;
    for (const RegFileEntry& entry : entries) {
        if (!entry.name || !key || *key != entry.key) {
            const bool removed = !entry.name && entry.removed;
            text += "\r\n[" + std::string(removed ? "-" : "") + registryPathText(entry.key) + "]\r\n";
            key = &entry.key;
        }
        if (!entry.name)
            continue;
        const std::string start = (entry.name->empty() ? "@" : inQuotes(*entry.name)) + '=';
        text += start + (entry.removed ? "-" : valueText(entry.value, utf16Of(start).size()));
        text += kLineEnd;
    }
    text += kLineEnd;
    return littleEndianOf(u'\xFEFF' + utf16Of(text));
}

} // namespace kel
