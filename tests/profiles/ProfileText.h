// SPDX-License-Identifier: MIT
#pragma once

#include "profiles/clsKELReaderProfile.h"
#include "types/Reference.h"

#include <iomanip>
#include <map>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

namespace kel::test {

/// A record as text: the value of each property by the property's name.
using RecordText = std::map<std::string, std::string>;

inline std::string valueText(Boolean value)
{
    if (value == True)
        return "True";
    return value == False ? "False" : "bits " + std::to_string(value.bits());
}

inline std::string valueText(const std::string& value)
{
    return value;
}

inline std::string valueText(float value)
{
    std::ostringstream text;
    text << std::showpoint << std::setprecision(2) << value;
    return text.str();
}

template <class Number>
requires std::is_integral_v<Number> || std::is_enum_v<Number> std::string valueText(Number value)
{
    return std::to_string(static_cast<long>(value));
}

inline RecordText recordText(const clsKELReaderProfile& profile)
{
    RecordText record;
    forEachProperty(profile,
                    [&](std::string_view name, const auto& value) { record[std::string(name)] = valueText(value); });
    return record;
}

inline std::vector<std::string> words(const std::string& line)
{
    std::istringstream text(line);
    std::vector<std::string> result;
    for (std::string word; text >> word;)
        result.push_back(word);
    return result;
}

/// The lines of a table that hold anything.
inline std::vector<std::string> rows(const std::string& table)
{
    std::istringstream text(table);
    std::vector<std::string> result;
    for (std::string line; std::getline(text, line);)
        if (!words(line).empty())
            result.push_back(line);
    return result;
}

} // namespace kel::test
