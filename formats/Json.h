// SPDX-License-Identifier: MIT
#pragma once

#include "types/Numbers.h"

#include <nlohmann/json.hpp>

#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kel {

/// JSON that keeps the order in which its members were set.
using Json = nlohmann::ordered_json;

/// A text that people write is not what it has to be: where, and what is wrong there. The whole is half a sentence
/// without a full stop: "sheet 2, side1, row 3 has to be an array and is a number".
class JsonRefusal : public std::runtime_error {
public:
    /// `place` is empty for the text as a whole.
    JsonRefusal(const std::string& place, std::string complaint)
        : std::runtime_error((place.empty() ? "the text" : place) + " " + complaint), isWhole_(place.empty()),
          complaint_(std::move(complaint))
    {
    }

    [[nodiscard]] bool isOfWhole() const noexcept { return isWhole_; }
    [[nodiscard]] const std::string& complaint() const noexcept { return complaint_; }

private:
    bool isWhole_;
    std::string complaint_;
};

/// A text that is no JSON at all.
class NotJson final : public JsonRefusal {
public:
    explicit NotJson(const std::string& why) : JsonRefusal({}, "is not JSON: " + why) {}
};

/// An object with a key that is not known.
class UnknownJsonKey final : public JsonRefusal {
public:
    UnknownJsonKey(const std::string& place, std::string name, std::vector<std::string> known);

    [[nodiscard]] const std::string& name() const noexcept { return name_; }
    [[nodiscard]] const std::vector<std::string>& known() const noexcept { return known_; }

    /// The place again, with an end of the sentence that says more than the list of known keys.
    [[nodiscard]] JsonRefusal endingWith(const std::string& end) const;

private:
    std::string place_;
    std::string name_;
    std::vector<std::string> known_;
};

/// A place in a JSON text, for the sentence that refuses what stands there.
struct JsonPlace {
    std::string path = {}; ///< "questions[2].name"; empty for the whole text

    [[nodiscard]] JsonPlace key(const std::string& name) const;
    [[nodiscard]] JsonPlace element(std::size_t index) const;
    /// A place within this one that has a name of its own: "sheet 2, row 3".
    [[nodiscard]] JsonPlace part(const std::string& name) const;

    /// JsonRefusal.
    [[noreturn]] void refuse(const std::string& complaint) const;
};

/// NotJson for a text that is none, or that is nested more than 64 deep.
[[nodiscard]] Json parseJson(std::string_view text);

/// A kind of file: how a sentence names it, and how many megabytes of one are taken at most.
struct FileKind {
    const char* name;
    std::size_t megabytes;
};

/// The bytes of a file. std::runtime_error, "The sheet file x cannot be read: No such file or directory", if that
/// fails or the file is larger than one of its kind may be.
[[nodiscard]] std::string readWholeFile(const std::filesystem::path& file, const FileKind& kind);

using JsonReader = std::function<void(const Json& value, const JsonPlace& place)>;
using JsonKeyReaders = std::vector<std::pair<std::string, JsonReader>>;

// Each refuses a value of another type.

/// Hands each key's value to its reader. A key without a reader is UnknownJsonKey.
void readJsonObject(const Json& value, const JsonPlace& place, const JsonKeyReaders& readers);
/// Hands each element to the reader; with a name for elements their place is "name 1" and so on.
void readJsonArray(const Json& value, const JsonPlace& place, const JsonReader& readElement);
void readJsonArray(const Json& value, const JsonPlace& place, const std::string& elementName,
                   const JsonReader& readElement);
/// The same for an array that may have so many elements at most: "has 2000 pages; the limit is 1000".
void readBoundedJsonArray(const Json& value, const JsonPlace& place, std::size_t most, const char* elements,
                          const JsonReader& readElement);
[[nodiscard]] std::string readJsonText(const Json& value, const JsonPlace& place);
/// A text as it goes over a line, a byte a character.
[[nodiscard]] std::string readJsonLineText(const Json& value, const JsonPlace& place);
[[nodiscard]] bool readJsonTruth(const Json& value, const JsonPlace& place);
/// A whole number from `lowest` to `highest`.
[[nodiscard]] Int16 readJsonNumber(const Json& value, const JsonPlace& place, Int16 lowest, Int16 highest);
[[nodiscard]] Int32 readJsonLongNumber(const Json& value, const JsonPlace& place, Int32 lowest, Int32 highest);

} // namespace kel
