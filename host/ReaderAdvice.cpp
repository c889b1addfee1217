// SPDX-License-Identifier: MIT
#include "host/ReaderAdvice.h"

#include "host/ReaderAdviceRows.h"
#include "strings/LanguageDatabase.h"

#include <algorithm>
#include <string_view>

namespace kel::host {

namespace {

constexpr std::string_view kFilledIn = "%1";

/// Whether a report's text is one of the database, with its values filled in; some reports add a second text.
bool isText(const std::string& description, const std::string& text)
{
    if (text.empty())
        return false;
    const std::size_t place = text.find(kFilledIn);
    if (place == std::string::npos)
        return description.starts_with(text);
    const std::string_view end = std::string_view(text).substr(place + kFilledIn.size());
    return description.starts_with(text.substr(0, place)) && description.find(end, place) != std::string::npos;
}

bool isAbout(const AdviceRow& row, const Failure& failure)
{
    const std::string_view module = row.module;
    if (!module.empty() && failure.source.find(std::string(module) + ".") == std::string::npos)
        return false;
    if (row.failure != 0)
        return row.failure == failure.number;
    if (failure.number != 0)
        return false;
    return row.text != 0 ? isText(failure.description, languageDatabase().RTString(row.text))
                         : failure.description == row.words;
}

} // namespace

const AdviceRow* adviceOn(const Failure& failure)
{
    const AdviceRow* const end = kAdviceRows + kAdviceCount;
    const AdviceRow* const found =
        std::find_if(kAdviceRows, end, [&](const AdviceRow& row) { return isAbout(row, failure); });
    return found == end ? nullptr : found;
}

} // namespace kel::host
