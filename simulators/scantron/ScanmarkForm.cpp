// SPDX-License-Identifier: MIT
#include "simulators/scantron/ScanmarkForm.h"

#include <algorithm>
#include <charconv>
#include <span>

namespace kel {

namespace {

using Words = std::span<const std::string>;

// Plain numbers, as many as are wanted.
std::optional<std::vector<Int32>> numbersOf(Words words)
{
    std::vector<Int32> numbers;
    for (const std::string& word : words) {
        const std::optional<Int32> number = plainNumber(word);
        if (!number)
            return std::nullopt;
        numbers.push_back(*number);
    }
    return numbers;
}

// So many places lie evenly between two edges, both of them taken.
bool even(Int32 first, Int32 last, Int32 count)
{
    return count == 1 ? first == last : (last - first) % (count - 1) == 0;
}

Int32 placeAt(Int32 first, Int32 last, Int32 count, Int32 index)
{
    return count == 1 ? first : first + (last - first) / (count - 1) * index;
}

} // namespace

std::vector<std::string> wordsOf(std::string_view text)
{
    std::vector<std::string> words;
    for (;;) {
        const std::size_t blank = text.find(' ');
        words.emplace_back(text.substr(0, blank));
        if (blank == std::string_view::npos)
            return words;
        text.remove_prefix(blank + 1);
    }
}

std::optional<Int32> plainNumber(std::string_view word)
{
    Int32 number = 0;
    const auto [stopped, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    const bool whole = error == std::errc{} && stopped == word.data() + word.size();
    if (!whole || number < 0 || std::to_string(number) != word)
        return std::nullopt;
    return number;
}

ScanmarkForm::Refusal ScanmarkForm::start(const std::vector<std::string>& words)
{
    if (words.size() != 6)
        return "a form start has six words";
    const auto sizes = numbersOf(Words(words).first(3));
    if (!sizes)
        return "a size of the form is not a number";
    if (words[3] != "N" || words[4] != "N" || words[5] != "N")
        return "a form start ends with N N N";
    side1Rows_ = (*sizes)[0];
    side2Rows_ = (*sizes)[1];
    side1Columns_ = (*sizes)[2];
    return std::nullopt;
}

ScanmarkForm::Refusal ScanmarkForm::defineRectangle(const std::vector<std::string>& words)
{
    if (words.size() != 8)
        return "a definition has eight words";
    const auto place = numbersOf(Words(words).first(5));
    const auto counts = numbersOf(Words(words).last(2));
    if (!place || !counts)
        return "a number of the definition is not a number";
    if (words[5] != "L" && words[5] != "C")
        return "the orientation is L or C";
    const bool byRows = words[5] == "L";
    return add({.side = (*place)[0],
                .firstRow = (*place)[1],
                .firstColumn = (*place)[2],
                .lastRow = (*place)[3],
                .lastColumn = (*place)[4],
                .byRows = byRows,
                .rows = (*counts)[byRows ? 0 : 1],
                .columns = (*counts)[byRows ? 1 : 0]});
}

ScanmarkForm::Refusal ScanmarkForm::defineColumns(const std::vector<std::string>& words)
{
    // Y N 1 side 1 1 rows columns L rows columns 111...
    if (words.size() != 12)
        return "a column definition has twelve words";
    if (words[0] != "Y" || words[1] != "N" || words[2] != "1" || words[4] != "1" || words[5] != "1" || words[8] != "L")
        return "a fixed word of the column definition is another";
    const auto side = plainNumber(words[3]);
    const auto last = numbersOf(Words(words).subspan(6, 2));
    const auto counts = numbersOf(Words(words).subspan(9, 2));
    if (!side || !last || !counts)
        return "a number of the column definition is none";
    if (*last != *counts)
        return "the rows and columns of the column definition stand there twice and differ";
    if (words[11] != std::string(static_cast<std::size_t>((*counts)[1]), '1'))
        return "a column definition ends with a 1 for each column";
    return add({.side = *side,
                .firstRow = 1,
                .firstColumn = 1,
                .lastRow = (*last)[0],
                .lastColumn = (*last)[1],
                .byRows = true,
                .rows = (*counts)[0],
                .columns = (*counts)[1]});
}

ScanmarkForm::Refusal ScanmarkForm::add(const Rectangle& rectangle)
{
    Refusal refusal = misfit(rectangle);
    if (!refusal)
        rectangles_.push_back(rectangle);
    return refusal;
}

ScanmarkForm::Refusal ScanmarkForm::misfit(const Rectangle& rectangle) const
{
    if (rectangle.side != 1 && rectangle.side != 2)
        return "a sheet has sides 1 and 2";
    const Int32 rows = rectangle.side == 1 ? side1Rows_ : side2Rows_;
    if (rectangle.firstRow < 1 || rectangle.lastRow > rows)
        return "the rows are not on the form";
    // The form start has the columns of side 1 only.
    if (rectangle.firstColumn < 1 || (rectangle.side == 1 && rectangle.lastColumn > side1Columns_))
        return "the columns are not on the form";
    if (rectangle.firstRow > rectangle.lastRow || rectangle.firstColumn > rectangle.lastColumn)
        return "the rectangle runs backwards";
    if (rectangle.rows < 1 || rectangle.columns < 1)
        return "the rectangle is empty";
    if (!even(rectangle.firstRow, rectangle.lastRow, rectangle.rows) ||
        !even(rectangle.firstColumn, rectangle.lastColumn, rectangle.columns))
        return "elements and choices do not divide the rectangle";
    return std::nullopt;
}

std::vector<ScanmarkCell> ScanmarkForm::cells() const
{
    std::vector<ScanmarkCell> cells;
    for (const Int32 side : {1, 2})
        for (const Rectangle& box : rectangles_) {
            if (box.side != side)
                continue;
            for (Int32 index = 0; index < box.rows * box.columns; ++index) {
                const Int32 row = box.byRows ? index / box.columns : index % box.rows;
                const Int32 column = box.byRows ? index % box.columns : index / box.rows;
                cells.push_back({side, placeAt(box.firstRow, box.lastRow, box.rows, row),
                                 placeAt(box.firstColumn, box.lastColumn, box.columns, column)});
            }
        }
    return cells;
}

} // namespace kel
