#pragma once

#include "cli/JsonValue.h"

#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace kel {

/// A place in a JSON file that the command was given, for the sentence that refuses what stands there.
struct JsonPlace {
    std::string file;
    std::string path; ///< "questions[2].name"; empty for the whole file

    [[nodiscard]] JsonPlace key(const std::string& name) const;
    [[nodiscard]] JsonPlace element(std::size_t index) const;

    /// UsageError: file, path, `what` and a full stop.
    [[noreturn]] void refuse(const std::string& what) const;
};

/// Parses a file's text; UsageError if it is no JSON.
[[nodiscard]] Json parseJson(std::string_view text, const std::string& fileName);

/// The text of a file; UsageError if it cannot be read. `what` names the kind of file: "form file".
[[nodiscard]] std::string readWholeFile(const std::filesystem::path& file, const std::string& what);

using JsonKeyReader = std::function<void(const Json& value, const JsonPlace& place)>;

// Each refuses a value of another type.

/// Hands each key's value to its reader. A key without a reader is refused.
void readJsonObject(const Json& value, const JsonPlace& place, const std::map<std::string, JsonKeyReader>& readers);
void readJsonArray(const Json& value, const JsonPlace& place, const JsonKeyReader& readElement);
[[nodiscard]] std::string readJsonText(const Json& value, const JsonPlace& place);
/// A whole number from `lowest` to `highest`.
[[nodiscard]] Int16 readJsonNumber(const Json& value, const JsonPlace& place, Int16 lowest, Int16 highest);
[[nodiscard]] Int32 readJsonLongNumber(const Json& value, const JsonPlace& place, Int32 lowest, Int32 highest);

} // namespace kel
