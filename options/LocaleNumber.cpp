// SPDX-License-Identifier: MIT
#include "options/LocaleNumber.h"

#include "types/Text.h"

#include <algorithm>

namespace kel {

namespace {

/// Replaces every kind of blank between digits by the one that people type.
std::string withPlainBlanks(std::string_view text)
{
    return replaceAll(replaceAll(text, "\u00A0", " "), "\u202F", " ");
}

/// Whether the digits are in groups: "12,345" or "1,23,456". A sign may come first.
bool isGrouped(std::string_view whole, std::string_view sign)
{
    if (whole.starts_with('-') || whole.starts_with('+'))
        whole.remove_prefix(1);
    std::size_t shortest = 1;
    for (;;) {
        const std::size_t at = whole.find(sign);
        const bool isLast = at == std::string_view::npos;
        const std::string_view group = whole.substr(0, at);
        if (group.size() < (isLast ? 3 : shortest) || group.size() > 3 ||
            !std::all_of(group.begin(), group.end(), [](char digit) { return digit >= '0' && digit <= '9'; }))
            return false;
        if (isLast)
            return true;
        whole.remove_prefix(at + sign.size());
        shortest = 2;
    }
}

} // namespace

double localeNumber(std::string_view text, const NumberSigns& signs)
{
    std::string number = Trim(withPlainBlanks(text));
    const std::size_t point = signs.decimal.empty() ? std::string::npos : number.find(signs.decimal);
    std::string whole = number.substr(0, point);
    const std::string thousands = withPlainBlanks(signs.thousands);
    if (!thousands.empty() && isGrouped(whole, thousands))
        whole = replaceAll(whole, thousands, "");
    number = point == std::string::npos ? whole : whole + "." + number.substr(point + signs.decimal.size());
    if (!IsNumeric(number))
        throw RuntimeFailure(FailureCode::TypeMismatch);
    return Val(number);
}

} // namespace kel
