// SPDX-License-Identifier: MIT
#include "cli/RegistryValueText.h"

#include "types/Text.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace kel {

namespace {

struct TypeName {
    std::uint32_t type;
    const char* name;
};

constexpr TypeName kTypeNames[] = {
    {0, "REG_NONE"},
    {1, "REG_SZ"},
    {2, "REG_EXPAND_SZ"},
    {3, "REG_BINARY"},
    {4, "REG_DWORD"},
    {5, "REG_DWORD_BIG_ENDIAN"},
    {6, "REG_LINK"},
    {7, "REG_MULTI_SZ"},
    {8, "REG_RESOURCE_LIST"},
    {9, "REG_FULL_RESOURCE_DESCRIPTOR"},
    {10, "REG_RESOURCE_REQUIREMENTS_LIST"},
    {11, "REG_QWORD"},
};

/// The number of a value that holds one, in as many bytes as its kind has.
std::optional<std::uint64_t> numberOf(const RegistryValue& value)
{
    const std::size_t size = value.type == RegistryType::Number ? 4 : value.type == RegistryType::Number64 ? 8 : 0;
    if (size == 0 || value.data.size() != size)
        return std::nullopt;
    std::uint64_t number = 0;
    for (auto byte = value.data.rbegin(); byte != value.data.rend(); ++byte)
        number = (number << 8) | static_cast<unsigned char>(*byte);
    return number;
}

std::string bytesText(const std::string& bytes)
{
    constexpr const char* kHexDigits = "0123456789abcdef";
    std::string text;
    for (const char character : bytes) {
        const auto byte = static_cast<unsigned char>(character);
        if (!text.empty())
            text += ',';
        text += kHexDigits[byte / 16];
        text += kHexDigits[byte % 16];
    }
    return text;
}

/// The texts of a list, each of which ends with a zero.
std::vector<std::string> textsOf(const std::string& data)
{
    std::vector<std::string> texts = split(data, '\0');
    if (data.ends_with('\0'))
        texts.pop_back();
    return texts;
}

bool isOneText(RegistryType type)
{
    return type == RegistryType::Text || type == RegistryType::ExpandableText;
}

} // namespace

std::string registryTypeName(RegistryType type)
{
    const auto number = static_cast<std::uint32_t>(type);
    for (const TypeName& row : kTypeNames) {
        if (row.type == number)
            return row.name;
    }
    return CStr(number);
}

std::string registryValueText(const RegistryValue& value)
{
    if (isOneText(value.type))
        return value.data;
    if (const auto number = numberOf(value))
        return std::to_string(*number);
    if (value.type != RegistryType::MultiText)
        return bytesText(value.data);
    std::string text;
    for (const std::string& one : textsOf(value.data))
        text += (text.empty() ? "" : "\\0") + one;
    return text;
}

Json registryValueJson(const RegistryValue& value)
{
    if (isOneText(value.type))
        return jsonValue(value.data);
    if (const auto number = numberOf(value))
        return *number;
    if (value.type != RegistryType::MultiText)
        return bytesText(value.data);
    Json texts = Json::array();
    for (const std::string& one : textsOf(value.data))
        texts.push_back(jsonValue(one));
    return texts;
}

} // namespace kel
