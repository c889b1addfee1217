// SPDX-License-Identifier: MIT
#include "pictures/Markup.h"

#include <algorithm>

namespace kel {

namespace {

constexpr std::size_t kLengthNote = 20; // the longest end of what is cut: "... (10000 characters)"
constexpr std::size_t kLeastShown = 8;
constexpr std::string_view kDeletePicture = "\u2421";

bool beginsCharacter(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
}

/// U+2400 to U+241F are a block of their own in UTF-8: E2 90 80 and on.
std::string controlPicture(unsigned char control)
{
    return {'\xE2', '\x90', static_cast<char>(0x80U + control)};
}

} // namespace

std::string markupText(std::string_view text)
{
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte == '&')
            result += "&amp;";
        else if (byte == '<')
            result += "&lt;";
        else if (byte == '>')
            result += "&gt;";
        else if (byte == '"')
            result += "&quot;";
        else if (byte == '\'')
            result += "&#39;";
        else if (byte < 0x20U)
            result += controlPicture(byte);
        else if (byte == 0x7FU)
            result += kDeletePicture;
        else
            result += text[i];
    }
    return result;
}

std::string shortened(std::string_view text, std::size_t longest)
{
    const auto length = static_cast<std::size_t>(std::count_if(text.begin(), text.end(), beginsCharacter));
    if (length <= longest)
        return std::string(text);
    const std::size_t shown = std::max(kLeastShown, longest - std::min(longest, kLengthNote));
    std::size_t end = 0;
    for (std::size_t characters = 0; end < text.size(); ++end) {
        if (beginsCharacter(text[end]) && ++characters > shown)
            break;
    }
    return std::string(text.substr(0, end)) + "\u2026 (" + std::to_string(length) + " characters)";
}

} // namespace kel
