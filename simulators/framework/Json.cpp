#include "simulators/framework/Json.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace kel::json {

Json parseJson(std::string_view text)
{
    try {
        return Json::parse(text);
    } catch (const Json::parse_error& error) {
        // The library's text begins with its own name in brackets.
        std::string what = error.what();
        if (const std::size_t bracket = what.find("] "); bracket != std::string::npos)
            what.erase(0, bracket + 2);
        throw std::runtime_error("no JSON: " + what);
    }
}

std::string readWholeFile(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream text;
    if (stream)
        text << stream.rdbuf();
    if (!stream || std::filesystem::is_directory(file))
        throw std::runtime_error(file.string() + " cannot be read");
    return text.str();
}

void refuseJson(const std::string& place, const std::string& what)
{
    throw std::runtime_error(place + ": " + what);
}

void demandArray(const Json& value, const std::string& place)
{
    if (!value.is_array())
        refuseJson(place, "is no array");
}

void demandObject(const Json& value, const std::string& place, std::initializer_list<std::string_view> members)
{
    if (!value.is_object())
        refuseJson(place, "is no object");
    for (const auto& [name, ignored] : value.items()) {
        if (std::ranges::find(members, name) != members.end())
            continue;
        std::string known;
        for (const std::string_view member : members)
            known += (known.empty() ? "" : ", ") + std::string(member);
        refuseJson(place, "unknown member \"" + name + "\"; there are " + known);
    }
}

std::int64_t wholeNumber(const Json& value, const std::string& place, std::int64_t lowest, std::int64_t highest)
{
    // A number beyond 63 bits is stored unsigned and has no signed value.
    const bool tooLarge =
        value.is_number_unsigned() && value.get<std::uint64_t>() > static_cast<std::uint64_t>(INT64_MAX);
    if (!value.is_number_integer() || tooLarge || value.get<std::int64_t>() < lowest ||
        value.get<std::int64_t>() > highest)
        refuseJson(place, value.dump() + " is no whole number from " + std::to_string(lowest) + " to " +
                              std::to_string(highest));
    return value.get<std::int64_t>();
}

std::string textOf(const Json& value, const std::string& place)
{
    if (!value.is_string())
        refuseJson(place, value.dump() + " is no text");
    return value.get<std::string>();
}

} // namespace kel::json
