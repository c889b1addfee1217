// SPDX-License-Identifier: MIT
#include "pictures/WindowCells.h"

#include <algorithm>
#include <cstdlib>

namespace kel {

namespace {

WindowAxis axis(Int16 start, Int16 count, Int16 gap)
{
    if (gap >= 1)
        return {start, gap, count};
    return {start + (Int32{count} - 1) * gap, std::abs(Int32{gap}), count};
}

struct Line {
    Int32 place; ///< the row or column
    Int32 index; ///< from 0
};

std::vector<Line> linesWithin(const WindowAxis& axis, Int32 highest)
{
    std::vector<Line> lines;
    for (Int32 index = 0; index < axis.count; ++index) {
        if (axis.at(index) >= 1 && axis.at(index) <= highest)
            lines.push_back({axis.at(index), index});
    }
    return lines;
}

} // namespace

WindowAxis windowRows(const clsKELReaderWindow& window)
{
    return axis(window.StartRow(), window.NumRows(), window.RowGap());
}

WindowAxis windowColumns(const clsKELReaderWindow& window)
{
    return axis(window.StartCol(), window.NumCols(), window.ColGap());
}

bool readsByColumn(const clsKELReaderWindow& window, bool readsByOrientation)
{
    return readsByOrientation && window.Orientation() == 0;
}

std::vector<WindowCell> windowCells(const clsKELReaderWindow& window, bool byColumn, Int32 rows, Int32 columns)
{
    const WindowAxis down = windowRows(window);
    const WindowAxis across = windowColumns(window);
    std::vector<WindowCell> cells;
    for (const Line& row : linesWithin(down, rows)) {
        for (const Line& column : linesWithin(across, columns)) {
            const Int32 number =
                byColumn ? column.index * down.count + row.index : row.index * across.count + column.index;
            cells.push_back({row.place, column.place, number + 1});
        }
    }
    // Where the lines of a window fall on one another, the cell that is read last counts.
    if (down.gap == 0 || across.gap == 0) {
        std::stable_sort(cells.begin(), cells.end(), [](const WindowCell& a, const WindowCell& b) {
            return std::pair(a.row, a.column) < std::pair(b.row, b.column) ||
                   (std::pair(a.row, a.column) == std::pair(b.row, b.column) && a.number > b.number);
        });
        cells.erase(std::unique(cells.begin(), cells.end(),
                                [](const WindowCell& a, const WindowCell& b) {
                                    return a.row == b.row && a.column == b.column;
                                }),
                    cells.end());
    }
    return cells;
}

} // namespace kel
