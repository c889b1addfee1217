// SPDX-License-Identifier: MIT
#include "host/FieldFile.h"

#include "pictures/WindowCells.h"
#include "types/Text.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <optional>
#include <set>

namespace kel::host {

namespace {

constexpr std::size_t kMostFields = 10000; // more than a form has cells that anybody would name
constexpr std::size_t kMostChoices = 200;
constexpr Int16 kMostCells = std::numeric_limits<Int16>::max();

/// Rows or columns as in the file: one, or from one to another.
struct Range {
    Int16 first = 0;
    Int16 last = 0;
    JsonPlace place;
};

/// A field as in the file.
struct Entry {
    std::optional<std::string> name;
    std::optional<Int16> side;
    std::optional<Range> rows;
    std::optional<Range> columns;
    std::optional<Int16> rowGap;
    std::optional<Int16> colGap;
    std::optional<Int16> window;
    std::optional<bool> choicesAcross;
    std::optional<std::vector<std::string>> labels;
    DoubleMarks doubleMarks = DoubleMarks::AsOne;
    std::string blank = Field{}.blank;
    std::optional<Int16> first;
};

/// The cells that a field names, as lines in both directions.
struct Block {
    std::vector<Int32> rows;
    std::vector<Int32> columns;
    Int32 side = 1;
    bool choicesAcross = true; ///< each row is a line of choices; if not, each column
};

std::string count(std::size_t number, const std::string& what)
{
    return CStr(static_cast<std::int64_t>(number)) + " " + what + (number == 1 ? "" : "s");
}

JsonReader number(std::optional<Int16>& target, Int16 lowest, Int16 highest)
{
    return [&target, lowest, highest](const Json& value, const JsonPlace& place) {
        target = readJsonNumber(value, place, lowest, highest);
    };
}

JsonReader single(std::optional<Range>& target, const char* both)
{
    return [&target, both](const Json& value, const JsonPlace& place) {
        if (target)
            place.refuse(std::string("repeats the place of the field; give one of ") + both);
        const Int16 at = readJsonNumber(value, place, 1, kMostCells);
        target = Range{at, at, place};
    };
}

JsonReader range(std::optional<Range>& target, const char* both)
{
    return [&target, both](const Json& value, const JsonPlace& place) {
        if (target)
            place.refuse(std::string("repeats the place of the field; give one of ") + both);
        std::vector<Int16> ends;
        readJsonArray(value, place, [&](const Json& end, const JsonPlace& here) {
            ends.push_back(readJsonNumber(end, here, 1, kMostCells));
        });
        if (ends.size() != 2)
            place.refuse("has " + count(ends.size(), "number") + "; write the first and the last, as [5, 9]");
        target = Range{ends[0], ends[1], place};
    };
}

template <class Value>
Value oneOf(const Json& value, const JsonPlace& place, const char* first, Value ofFirst, const char* second,
            Value ofSecond)
{
    const std::string text = readJsonText(value, place);
    if (text == first)
        return ofFirst;
    if (text == second)
        return ofSecond;
    place.refuse("has to be \"" + std::string(first) + "\" or \"" + second + "\", not " + value.dump());
}

/// One text has a label in each character; an array has one in each element.
std::vector<std::string> readLabels(const Json& value, const JsonPlace& place)
{
    std::vector<std::string> labels;
    if (value.is_string()) {
        for (const char byte : readJsonText(value, place)) {
            const bool goesOn = (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
            if (goesOn && !labels.empty())
                labels.back() += byte;
            else
                labels.emplace_back(1, byte);
        }
    } else if (value.is_array()) {
        readJsonArray(value, place,
                      [&](const Json& label, const JsonPlace& here) { labels.push_back(readJsonText(label, here)); });
    } else {
        place.refuse("has to be a text with one character for each choice, or an array of texts");
    }
    return labels;
}

Entry readEntry(const Json& value, const JsonPlace& place)
{
    constexpr const char* kRows = "row and rows";
    constexpr const char* kColumns = "column and columns";
    Entry entry;
    readJsonObject(value, place,
                   {{"name", [&](const Json& text, const JsonPlace& here) { entry.name = readJsonText(text, here); }},
                    {"side", number(entry.side, 1, 2)},
                    {"row", single(entry.rows, kRows)},
                    {"rows", range(entry.rows, kRows)},
                    {"rowGap", number(entry.rowGap, 1, kMostCells)},
                    {"column", single(entry.columns, kColumns)},
                    {"columns", range(entry.columns, kColumns)},
                    {"colGap", number(entry.colGap, 1, kMostCells)},
                    {"window", number(entry.window, 1, kMostCells)},
                    {"choices",
                     [&](const Json& text, const JsonPlace& here) {
                         entry.choicesAcross = oneOf(text, here, "across", true, "down", false);
                     }},
                    {"labels", [&](const Json& text, const JsonPlace& here) { entry.labels = readLabels(text, here); }},
                    {"multiple",
                     [&](const Json& text, const JsonPlace& here) {
                         entry.doubleMarks = oneOf(text, here, "mark", DoubleMarks::AsOne, "all", DoubleMarks::All);
                     }},
                    {"blank", [&](const Json& text, const JsonPlace& here) { entry.blank = readJsonText(text, here); }},
                    {"first", number(entry.first, 0, kMostCells)}});
    if (!entry.name || entry.name->empty())
        place.refuse("has no name");
    return entry;
}

std::vector<Int32> linesOf(const Range& range, const std::optional<Int16>& gap)
{
    const Int32 step = gap.value_or(Int16{1});
    const Int32 way = Int32{range.last} - range.first;
    if (way % step != 0)
        range.place.refuse("does not lead from " + CStr(range.first) + " to " + CStr(range.last) + " in steps of " +
                           CStr(step));
    std::vector<Int32> lines;
    for (Int32 i = 0; i <= std::abs(way) / step; ++i)
        lines.push_back(range.first + (way < 0 ? -i : i) * step);
    return lines;
}

std::vector<Int32> linesOf(const WindowAxis& axis)
{
    std::vector<Int32> lines;
    for (Int32 i = 0; i < axis.count; ++i)
        lines.push_back(axis.at(i));
    return lines;
}

/// Refuses lines that are not on the form, as far as its size is known.
void demandOnForm(const std::vector<Int32>& lines, const std::optional<std::vector<Int16>>& sizes, const char* what,
                  Int32 side, const JsonPlace& place)
{
    if (!sizes || sizes->empty())
        return;
    const Int32 size = *std::ranges::max_element(*sizes);
    const Int32 farthest = *std::ranges::max_element(lines);
    if (farthest > size)
        place.refuse("reaches " + std::string(what) + " " + CStr(farthest) + ", but side " + CStr(side) + " has " +
                     count(static_cast<std::size_t>(size), what));
}

/// Which way the choices run, if the file does not say it: along a single line of cells, otherwise the usual way.
bool readAcross(const Entry& entry, const Block& block, bool usually)
{
    if (entry.choicesAcross)
        return *entry.choicesAcross;
    if (block.rows.size() == 1)
        return true;
    return block.columns.size() > 1 && usually;
}

Block blockOfWindow(const Entry& entry, const JsonPlace& place, const Form& form)
{
    if (entry.rows || entry.columns || entry.side)
        place.refuse("has a window, which says where the field is; leave out side, rows and columns");
    const auto number = static_cast<std::size_t>(*entry.window);
    if (number > form.windows.size())
        place.key("window").refuse("is " + CStr(*entry.window) + ", but the form has " +
                                   count(form.windows.size(), "window"));
    const clsKELReaderWindow& window = form.windows[number - 1];
    Block block{linesOf(windowRows(window)), linesOf(windowColumns(window)), sideOfPage(window.Page()), true};
    if (block.rows.empty() || block.columns.empty())
        place.key("window").refuse("is a window without cells");
    block.choicesAcross = readAcross(entry, block, window.Orientation() != 0);
    return block;
}

Block blockOfCells(const Entry& entry, const JsonPlace& place, const Form& form)
{
    if (!entry.rows || !entry.columns)
        place.refuse("does not say where it is: give a row and columns, or a window");
    const Int32 side = entry.side.value_or(Int16{1});
    Block block{linesOf(*entry.rows, entry.rowGap), linesOf(*entry.columns, entry.colGap), side, true};
    block.choicesAcross = readAcross(entry, block, true);
    demandOnForm(block.rows, side == 2 ? form.side2Rows : form.side1Rows, "row", side, entry.rows->place);
    demandOnForm(block.columns, side == 2 ? form.side2Cols : form.side1Cols, "column", side, entry.columns->place);
    return block;
}

std::vector<std::string> labelsFor(std::size_t choices, const Entry& entry, const JsonPlace& place)
{
    if (!entry.labels) {
        std::vector<std::string> numbers;
        for (std::size_t i = 1; choices > 1 && i <= choices; ++i)
            numbers.push_back(CStr(static_cast<std::int64_t>(i)));
        return numbers;
    }
    const JsonPlace here = place.key("labels");
    if (entry.labels->size() != choices)
        here.refuse("has " + count(entry.labels->size(), "label") + " for " + count(choices, "cell"));
    std::set<std::string> seen;
    for (const std::string& label : *entry.labels) {
        if (label.empty())
            here.refuse("has a label without a character");
        if (label == entry.blank || label == kDoubleMark)
            here.refuse("has the label \"" + label + "\", which stands for " +
                        (label == entry.blank ? "no mark" : "several marks"));
        if (!seen.insert(label).second)
            here.refuse("has the label \"" + label + "\" twice");
    }
    return *entry.labels;
}

/// A column's name may be used once, and the names of the columns of every sheet not at all.
class Names {
public:
    Names() : taken_{"event"}
    {
        for (const std::string& column : columnsOf({}))
            taken_.insert(column);
    }

    void take(const std::string& name, const JsonPlace& place)
    {
        if (!taken_.insert(name).second)
            place.refuse("makes a second column \"" + name + "\"");
    }

private:
    std::set<std::string> taken_;
};

void addFields(std::vector<Field>& fields, Names& names, const Entry& entry, const JsonPlace& place, const Form& form)
{
    const Block block = entry.window ? blockOfWindow(entry, place, form) : blockOfCells(entry, place, form);
    const std::vector<Int32>& items = block.choicesAcross ? block.rows : block.columns;
    const std::vector<Int32>& choices = block.choicesAcross ? block.columns : block.rows;
    if (fields.size() + items.size() > kMostFields)
        place.refuse("makes more than " + CStr(static_cast<std::int64_t>(kMostFields)) + " columns of the form");
    if (choices.size() > kMostChoices)
        place.refuse("has " + count(choices.size(), "choice") + "; the limit is " +
                     CStr(static_cast<std::int64_t>(kMostChoices)));
    const std::vector<std::string> labels = labelsFor(choices.size(), entry, place);
    const bool numbered = items.size() > 1 || entry.first;
    Int32 itemNumber = entry.first.value_or(Int16{1});
    for (const Int32 item : items) {
        Field field{.name = *entry.name + (numbered ? CStr(itemNumber++) : ""),
                    .side = block.side,
                    .labels = labels,
                    .doubleMarks = entry.doubleMarks,
                    .blank = entry.blank};
        for (const Int32 choice : choices)
            field.cells.push_back(block.choicesAcross ? FieldCell{item, choice} : FieldCell{choice, item});
        names.take(field.name, place);
        fields.push_back(std::move(field));
    }
}

} // namespace

std::vector<Field> readFields(const Json& value, const JsonPlace& place, const Form& form)
{
    std::vector<Field> fields;
    Names names;
    readBoundedJsonArray(value, place, kMostFields, "fields", [&](const Json& field, const JsonPlace& here) {
        addFields(fields, names, readEntry(field, here), here, form);
    });
    return fields;
}

} // namespace kel::host
