// SPDX-License-Identifier: MIT
#include "strings/ProfileSection.h"

#include "strings/InputFile.h"
#include "types/Text.h"

namespace kel {

namespace {

/// The mark that some editors write before a text in UTF-8.
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::string_view withoutBlanks(std::string_view text)
{
    const auto isBlank = [](char c) { return c == ' ' || c == '\t'; };
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

std::string_view withoutQuotes(std::string_view text)
{
    if (text.size() >= 2 && (text.front() == '"' || text.front() == '\'') && text.back() == text.front())
        return text.substr(1, text.size() - 2);
    return text;
}

/// The first `count` characters of a text in UTF-8, each with its continuation bytes.
std::string_view firstCharacters(std::string_view text, std::size_t count)
{
    std::size_t at = 0;
    for (; at < text.size(); ++at) {
        const bool continuation = (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80U;
        if (!continuation && count-- == 0)
            break;
    }
    return text.substr(0, at);
}

} // namespace

ProfileSection::ProfileSection(const std::string& fileName, std::string_view section)
{
    try {
        read(fileName, section);
    } catch (const RuntimeFailure&) {
        // A profile file that cannot be read has no keys, or those that were read before the failure.
    }
}

void ProfileSection::read(const std::string& fileName, std::string_view section)
{
    InputFile file(fileName);
    bool inside = false;
    for (bool first = true; !file.Eof(); first = false) {
        const std::string read = file.LineInput();
        std::string_view line = read;
        if (first && line.starts_with(kByteOrderMark))
            line.remove_prefix(kByteOrderMark.size());
        line = withoutBlanks(line);
        const std::size_t bracket = line.find(']');
        const std::size_t equals = line.find('=');
        if (line.starts_with('[') && bracket != std::string_view::npos) {
            if (inside)
                return;
            inside = equalNoCase(line.substr(1, bracket - 1), section);
        } else if (inside && equals != std::string_view::npos) {
            entries_.try_emplace(lowerCase(withoutBlanks(line.substr(0, equals))),
                                 withoutQuotes(withoutBlanks(line.substr(equals + 1))));
        }
    }
}

std::string ProfileSection::value(std::string_view key, std::string_view otherwise, std::size_t bufferSize) const
{
    const auto entry = entries_.find(lowerCase(key));
    return std::string(firstCharacters(entry == entries_.end() ? otherwise : entry->second, bufferSize - 1));
}

} // namespace kel
