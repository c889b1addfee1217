// SPDX-License-Identifier: MIT
#include "formats/Json.h"

#include "types/LineText.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>

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
    place.refuse(std::string("has to be ") + wanted + ", not " + typeName(value));
}

/// The parser's own words without its names for itself: "line 1, column 5: syntax error ...".
std::string parserMessage(const Json::exception& error)
{
    std::string message = error.what();
    if (const std::size_t end = message.find("] "); end != std::string::npos)
        message.erase(0, end + 2);
    constexpr std::string_view kItsName = "parse error at ";
    if (message.starts_with(kItsName))
        message.erase(0, kItsName.size());
    return message;
}

/// Writing, copying and destroying a value is recursive.
void refuseDeepNesting(std::string_view text)
{
    constexpr int kDeepest = 64;
    int depth = 0;
    bool inText = false;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char character = text[at];
        if (inText && character == '\\')
            ++at;
        else if (character == '"')
            inText = !inText;
        else if (!inText && (character == ']' || character == '}'))
            --depth;
        else if (!inText && (character == '[' || character == '{') && ++depth > kDeepest)
            throw NotJson("its arrays and objects are nested more than " + std::to_string(kDeepest) + " deep");
    }
}

std::string unknownKey(const std::string& name)
{
    return "has an unknown key \"" + name + "\"";
}

std::string unknownKey(const std::string& name, const std::vector<std::string>& known)
{
    std::string text = unknownKey(name) + "; the keys are ";
    for (const std::string& key : known)
        text += (&key == &known.front() ? "" : ", ") + key;
    return text;
}

} // namespace

UnknownJsonKey::UnknownJsonKey(const std::string& place, std::string name, std::vector<std::string> known)
    : JsonRefusal(place, unknownKey(name, known)), place_(place), name_(std::move(name)), known_(std::move(known))
{
}

JsonRefusal UnknownJsonKey::endingWith(const std::string& end) const
{
    return {place_, unknownKey(name_) + "; " + end};
}

JsonPlace JsonPlace::key(const std::string& name) const
{
    return {path.empty() ? name : path + "." + name};
}

JsonPlace JsonPlace::element(std::size_t index) const
{
    return {path + "[" + std::to_string(index) + "]"};
}

JsonPlace JsonPlace::part(const std::string& name) const
{
    return {path.empty() ? name : path + ", " + name};
}

void JsonPlace::refuse(const std::string& complaint) const
{
    throw JsonRefusal(path, complaint);
}

Json parseJson(std::string_view text)
{
    refuseDeepNesting(text);
    try {
        return Json::parse(text);
    } catch (const Json::exception& error) { // a number too large for a double is no parse error
        throw NotJson(parserMessage(error));
    }
}

std::string readWholeFile(const std::filesystem::path& file, const FileKind& kind)
{
    const std::size_t most = kind.megabytes << 20;
    const std::string subject = std::string("The ") + kind.name + " " + file.string();
    std::ifstream stream(file, std::ios::binary);
    std::string text;
    // Not by the size that the system reports: a pipe has none.
    while (stream.good() && text.size() <= most) {
        constexpr std::size_t kBlock = 65536;
        const std::size_t before = text.size();
        text.resize(before + kBlock);
        stream.read(text.data() + before, kBlock);
        text.resize(before + static_cast<std::size_t>(stream.gcount()));
    }
    if (!stream.is_open() || stream.bad())
        throw std::runtime_error(subject + " cannot be read: " + std::strerror(errno));
    if (text.size() > most)
        throw std::runtime_error(subject + " is larger than " + std::to_string(kind.megabytes) +
                                 " MB, the limit for such a file");
    return text;
}

void readJsonObject(const Json& value, const JsonPlace& place, const JsonKeyReaders& readers)
{
    if (!value.is_object())
        refuseType(place, "an object", value);
    for (const auto& [name, member] : value.items()) {
        const auto reader = std::ranges::find(readers, name, &JsonKeyReaders::value_type::first);
        if (reader == readers.end()) {
            std::vector<std::string> known;
            for (const auto& entry : readers)
                known.push_back(entry.first);
            throw UnknownJsonKey(place.path, name, std::move(known));
        }
        reader->second(member, place.key(name));
    }
}

void readJsonArray(const Json& value, const JsonPlace& place, const JsonReader& readElement)
{
    if (!value.is_array())
        refuseType(place, "an array", value);
    for (std::size_t i = 0; i < value.size(); ++i)
        readElement(value[i], place.element(i));
}

void readJsonArray(const Json& value, const JsonPlace& place, const std::string& elementName,
                   const JsonReader& readElement)
{
    if (!value.is_array())
        refuseType(place, "an array", value);
    for (std::size_t i = 0; i < value.size(); ++i)
        readElement(value[i], place.part(elementName + " " + std::to_string(i + 1)));
}

void readBoundedJsonArray(const Json& value, const JsonPlace& place, std::size_t most, const char* elements,
                          const JsonReader& readElement)
{
    if (value.is_array() && value.size() > most)
        place.refuse("has " + std::to_string(value.size()) + " " + elements + "; the limit is " + std::to_string(most));
    readJsonArray(value, place, readElement);
}

std::string readJsonText(const Json& value, const JsonPlace& place)
{
    if (!value.is_string())
        refuseType(place, "a text", value);
    return value.get<std::string>();
}

std::string readJsonLineText(const Json& value, const JsonPlace& place)
{
    if (const auto line = lineOfText(readJsonText(value, place)))
        return *line;
    place.refuse("has a character that is not in Latin-1, and no reader sends or prints one");
}

bool readJsonTruth(const Json& value, const JsonPlace& place)
{
    if (!value.is_boolean())
        refuseType(place, "true or false", value);
    return value.get<bool>();
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
    const bool tooLarge =
        value.is_number_unsigned() && value.get<std::uint64_t>() > static_cast<std::uint64_t>(INT64_MAX);
    if (!value.is_number_integer() || tooLarge || value.get<std::int64_t>() < lowest ||
        value.get<std::int64_t>() > highest)
        place.refuse("has to be a whole number from " + std::to_string(lowest) + " to " + std::to_string(highest) +
                     ", not " + value.dump());
    return value.get<Int32>();
}

} // namespace kel
