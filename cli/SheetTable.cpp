// SPDX-License-Identifier: MIT
#include "cli/SheetTable.h"

#include "host/Failure.h"
#include "store/SheetJson.h"
#include "types/LineText.h"
#include "types/Text.h"

#include <algorithm>
#include <vector>

namespace kel {

namespace {

constexpr std::size_t kGapBetweenSides = 4;

char signOf(Int16 mark)
{
    if (mark == 0)
        return '.';
    if (mark >= 1 && mark <= 9)
        return static_cast<char>('0' + mark);
    if (mark >= 10 && mark <= 35)
        return static_cast<char>('A' + mark - 10);
    return '#';
}

Int32 lastMarkedRow(const MarkArray& marks)
{
    for (Int32 row = marks.rows(); row >= 1; --row) {
        for (Int32 column = 1; column <= marks.columns(); ++column) {
            if (marks(row, column) != 0)
                return row;
        }
    }
    return 0;
}

std::string rightAligned(const std::string& text, std::size_t width)
{
    return std::string(width - std::min(width, text.size()), ' ') + text;
}

void padTo(std::string& line, std::size_t width)
{
    line.resize(std::max(line.size(), width), ' ');
}

/// One side as lines: rows with their numbers, columns in groups of five.
std::vector<std::string> sideGrid(const char* title, const MarkArray& marks, Int16 iTimingMarks)
{
    std::vector<std::string> lines = {title};
    if (iTimingMarks >= 0)
        lines.front() += ", " + CStr(iTimingMarks) + " timing marks";

    // Many readers fill an array of a fixed size; what lies after the paper's end is not worth a line each.
    const Int32 shown = std::min(marks.rows(), std::max<Int32>(lastMarkedRow(marks), iTimingMarks));
    const std::size_t numberWidth = std::max<std::size_t>(3, CStr(std::max(shown, 0)).size());
    for (Int32 row = 1; row <= shown; ++row) {
        std::string line = rightAligned(CStr(row), numberWidth) + " ";
        for (Int32 column = 1; column <= marks.columns(); ++column) {
            if (column % 5 == 1)
                line += ' ';
            line += signOf(marks(row, column));
        }
        lines.push_back(std::move(line));
    }
    const std::string indent(numberWidth + 2, ' ');
    if (shown == 0)
        lines.push_back(indent + "no marks");
    else if (shown + 1 == marks.rows())
        lines.push_back(indent + "row " + CStr(marks.rows()) + " is blank");
    else if (shown < marks.rows())
        lines.push_back(indent + "rows " + CStr(shown + 1) + " to " + CStr(marks.rows()) + " are blank");
    return lines;
}

std::size_t widthOf(const std::vector<std::string>& lines)
{
    std::size_t width = 0;
    for (const std::string& line : lines)
        width = std::max(width, line.size());
    return width;
}

std::string heading(const host::Sheet& sheet)
{
    std::string text = "Sheet " + CStr(sheet.number);
    for (const std::string& barcode : sheet.barcodes.elements()) {
        if (!barcode.empty())
            text += "   barcode \"" + textOfLine(barcode) + "\"";
    }
    if (sheet.rejected)
        text += "   REJECTED";
    if (sheet.printed)
        text += "   printed";
    return text;
}

} // namespace

std::string sheetTable(const host::Sheet& sheet, std::size_t width)
{
    std::string text = heading(sheet) + "\n";
    if (sheet.record) {
        const Json record = jsonRecord(*sheet.record);
        for (const auto& [name, value] : record.items())
            text += "    " + name + ": " + (value.is_string() ? value.get<std::string>() : value.dump()) + "\n";
    }

    std::vector<std::vector<std::string>> grids;
    if (sheet.side1.isDimensioned())
        grids.push_back(sideGrid("  Side 1", sheet.side1, sheet.side1TimingMarks));
    if (sheet.side2.isDimensioned())
        grids.push_back(sideGrid("  Side 2", sheet.side2, sheet.side2TimingMarks));

    if (grids.size() == 2 && widthOf(grids[0]) + kGapBetweenSides + widthOf(grids[1]) <= width) {
        const std::size_t leftWidth = widthOf(grids[0]) + kGapBetweenSides;
        grids[0].resize(std::max(grids[0].size(), grids[1].size()));
        for (std::size_t i = 0; i < grids[1].size(); ++i) {
            padTo(grids[0][i], leftWidth);
            grids[0][i] += grids[1][i];
        }
        grids.pop_back();
    }
    for (const auto& grid : grids) {
        for (const std::string& line : grid)
            text += line + "\n";
    }
    return text + "\n";
}

void TableText::sheet(const host::Sheet& event)
{
    write_(sheetTable(event, width_));
}

void TableText::failure(const host::Failure& event)
{
    tell_(host::failureSentence(event) + "\n");
}

void TableText::end(const host::BatchEnd& event)
{
    if (!event.started)
        write_("The reader did not start.\n");
    else
        write_(CStr(event.sheets) + (event.sheets == 1 ? " sheet read.\n" : " sheets read.\n"));
}

} // namespace kel
