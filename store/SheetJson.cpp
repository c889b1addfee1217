// SPDX-License-Identifier: MIT
#include "store/SheetJson.h"

#include "types/LineText.h"
#include "types/Text.h"

#include <algorithm>
#include <limits>

namespace kel {

namespace {

constexpr Int32 kLargestSide = std::numeric_limits<Int16>::max();
constexpr std::int64_t kMostCells = 4'000'000; // more than any reader sends

Json jsonItem(const DictionaryItem& item)
{
    if (const auto* number = std::get_if<Int32>(&item))
        return *number;
    if (const auto* text = std::get_if<std::string>(&item))
        return textOfLine(*text);
    return nullptr;
}

DictionaryItem itemOf(const Json& item)
{
    if (item.is_number_integer())
        return item.get<Int32>();
    if (item.is_string())
        return lineOfText(item.get<std::string>()).value_or(item.get<std::string>());
    return {};
}

std::string keyName(const DictionaryKey& key)
{
    const auto* number = std::get_if<Int32>(&key);
    return number ? CStr(*number) : textOfLine(std::get<std::string>(key));
}

/// Answers stand under the numbers of their questions.
DictionaryKey keyOf(const std::string& name)
{
    constexpr std::size_t kMostDigits = 9;
    const bool isNumber = !name.empty() && name.size() <= kMostDigits &&
                          std::all_of(name.begin(), name.end(), [](char c) { return c >= '0' && c <= '9'; });
    if (isNumber)
        return static_cast<Int32>(std::stol(name));
    return lineOfText(name).value_or(name);
}

} // namespace

Json jsonTexts(const std::vector<std::string>& texts)
{
    Json elements = Json::array();
    for (const std::string& text : texts)
        elements.push_back(textOfLine(text));
    return elements;
}

std::vector<std::string> lineTextsOf(const Json& texts)
{
    std::vector<std::string> elements;
    readJsonArray(texts, {"texts"},
                  [&](const Json& text, const JsonPlace& place) { elements.push_back(readJsonLineText(text, place)); });
    return elements;
}

Json jsonRecord(const Dictionary& fields)
{
    Json record = Json::object();
    const std::vector<DictionaryKey> keys = fields.Keys();
    const std::vector<DictionaryItem> items = fields.Items();
    for (std::size_t i = 0; i < keys.size(); ++i)
        record[keyName(keys[i])] = jsonItem(items[i]);
    return record;
}

Dictionary recordOf(const Json& record)
{
    if (!record.is_object())
        JsonPlace{"record"}.refuse("has to be an object");
    Dictionary fields;
    for (const auto& [name, item] : record.items())
        fields.Item(keyOf(name), itemOf(item));
    return fields;
}

Json jsonSide(const MarkArray& marks)
{
    if (!marks.isDimensioned())
        return nullptr;
    Json values = Json::array();
    for (Int32 row = 1; row <= marks.rows(); ++row) {
        for (Int32 column = 1; column <= marks.columns(); ++column) {
            if (marks(row, column) != 0)
                values.push_back({row, column, marks(row, column)});
        }
    }
    return {{"rows", marks.rows()}, {"columns", marks.columns()}, {"marks", std::move(values)}};
}

MarkArray sideOf(const Json& side)
{
    if (side.is_null())
        return {};
    Int32 rows = 0;
    Int32 columns = 0;
    MarkArray marks;
    const auto size = [](Int32& target) {
        return [&target](const Json& value, const JsonPlace& place) {
            target = readJsonLongNumber(value, place, 1, kLargestSide);
        };
    };
    const auto mark = [&](const Json& value, const JsonPlace& place) {
        if (!value.is_array() || value.size() != 3)
            place.refuse("has to be row, column and value");
        using Limits = std::numeric_limits<Int16>;
        const Int32 row = readJsonLongNumber(value[0], place, 1, rows);
        const Int32 column = readJsonLongNumber(value[1], place, 1, columns);
        marks(row, column) = readJsonNumber(value[2], place, Limits::min(), Limits::max());
    };
    const JsonPlace here{"side"};
    readJsonObject(side, here,
                   {{"rows", size(rows)}, {"columns", size(columns)}, {"marks", [](const Json&, const JsonPlace&) {}}});
    if (rows == 0 || columns == 0)
        here.refuse("has no size");
    if (std::int64_t{rows} * columns > kMostCells)
        here.refuse("is larger than any sheet");
    marks.ReDim(rows, columns);
    if (side.contains("marks"))
        readJsonArray(side["marks"], here.key("marks"), mark);
    return marks;
}

} // namespace kel
