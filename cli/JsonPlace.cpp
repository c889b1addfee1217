#include "cli/JsonPlace.h"

#include "cli/NearestNames.h"
#include "cli/UsageError.h"
#include "types/Text.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>
#include <vector>

namespace kel {

namespace {

const char* typeName(const Json& value)
{
    switch (value.type()) {
    case Json::value_t::null: return "null";
    case Json::value_t::boolean: return "a truth value";
    case Json::value_t::string: return "a text";
    case Json::value_t::array: return "an array";
    case Json::value_t::object: return "an object";
    default: return "a number";
    }
}

[[noreturn]] void refuseType(const JsonPlace& place, const char* wanted, const Json& value)
{
    place.refuse(std::string("has to be ") + wanted + " and is " + typeName(value));
}

/// The parser's own words without its names for itself: "line 1, column 5: syntax error ...".
std::string parserMessage(const Json::exception& error)
{
    std::string message = error.what();
    if (const std::size_t end = message.find("] "); end != std::string::npos)
        message.erase(0, end + 2);
    return validUtf8(replaceAll(message, "parse error at ", ""));
}

} // namespace

JsonPlace JsonPlace::key(const std::string& name) const
{
    return {file, path.empty() ? name : path + "." + name};
}

JsonPlace JsonPlace::element(std::size_t index) const
{
    return {file, path + "[" + std::to_string(index) + "]"};
}

void JsonPlace::refuse(const std::string& what) const
{
    throw UsageError(file + ": " + (path.empty() ? "the file" : path) + " " + what + ".");
}

Json parseJson(std::string_view text, const std::string& fileName)
{
    try {
        return Json::parse(text);
    } catch (const Json::exception& error) { // a number too large for a double is no parse error
        throw UsageError(fileName + " is not JSON: " + parserMessage(error) + ".");
    }
}

std::string readWholeFile(const std::filesystem::path& file, const std::string& what)
{
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream text;
    if (stream.peek() != std::ifstream::traits_type::eof())
        text << stream.rdbuf();
    if (!stream.is_open() || stream.bad() || text.bad())
        throw UsageError("The " + what + " " + file.string() + " cannot be read: " + std::strerror(errno) + ".");
    return text.str();
}

void readJsonObject(const Json& value, const JsonPlace& place, const std::map<std::string, JsonKeyReader>& readers)
{
    if (!value.is_object())
        refuseType(place, "an object", value);
    for (const auto& [name, member] : value.items()) {
        const auto reader = readers.find(name);
        if (reader == readers.end()) {
            std::vector<std::string> known;
            known.reserve(readers.size());
            for (const auto& entry : readers)
                known.push_back(entry.first);
            place.refuse("has a key \"" + validUtf8(name) + "\" that is not known; " +
                         nearestListed(nearestNames(name, known)));
        }
        reader->second(member, place.key(name));
    }
}

void readJsonArray(const Json& value, const JsonPlace& place, const JsonKeyReader& readElement)
{
    if (!value.is_array())
        refuseType(place, "an array", value);
    for (std::size_t i = 0; i < value.size(); ++i)
        readElement(value[i], place.element(i));
}

std::string readJsonText(const Json& value, const JsonPlace& place)
{
    if (!value.is_string())
        refuseType(place, "a text", value);
    return value.get<std::string>();
}

Int16 readJsonNumber(const Json& value, const JsonPlace& place, Int16 lowest, Int16 highest)
{
    return static_cast<Int16>(readJsonLongNumber(value, place, lowest, highest));
}

Int32 readJsonLongNumber(const Json& value, const JsonPlace& place, Int32 lowest, Int32 highest)
{
    if (!value.is_number())
        refuseType(place, "a whole number", value);
    // A number beyond 64 bits has become a floating point number, and so has one with a fraction.
    const bool fits = value.is_number_unsigned() ? value.get<std::uint64_t>() <= static_cast<std::uint64_t>(highest) &&
                                                       value.get<std::int64_t>() >= lowest
                                                 : value.is_number_integer() && value.get<std::int64_t>() >= lowest;
    if (!fits)
        place.refuse("has to be a whole number from " + CStr(lowest) + " to " + CStr(highest) + " and is " +
                     value.dump());
    return value.get<Int32>();
}

} // namespace kel
