#pragma once

#include <nlohmann/json.hpp>

#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <string>
#include <string_view>

namespace kel::json {

/// Reading of JSON files whose mistakes are told with their place: "sheet 2, side1, row 3: is not an array".
/// All of these throw std::runtime_error.
using Json = nlohmann::ordered_json;

[[nodiscard]] Json parseJson(std::string_view text);

/// The text of a file; one that cannot be read is told by its name.
[[nodiscard]] std::string readWholeFile(const std::filesystem::path& file);

[[noreturn]] void refuseJson(const std::string& place, const std::string& what);

void demandArray(const Json& value, const std::string& place);

/// An object with no other members than these.
void demandObject(const Json& value, const std::string& place, std::initializer_list<std::string_view> members);

/// A whole number within bounds.
[[nodiscard]] std::int64_t wholeNumber(const Json& value, const std::string& place, std::int64_t lowest,
                                       std::int64_t highest);

[[nodiscard]] std::string textOf(const Json& value, const std::string& place);

} // namespace kel::json
