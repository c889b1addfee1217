// SPDX-License-Identifier: MIT
#include "pictures/SheetLayout.h"

#include "pictures/WindowCells.h"
#include "types/Text.h"

#include <algorithm>

namespace kel {

namespace {

constexpr Int32 kMargin = 8;
constexpr Int32 kGridTop = 38;        // the title, the name of the side, the numbers of the columns
constexpr Int32 kGridLeft = 28;       // the numbers of the rows, the timing marks
constexpr Int32 kLeastWidth = 240;    // for the title and the legend
constexpr Int32 kMostBeyond = 12;     // rows and columns drawn beyond the paper
constexpr Int32 kMostOfWindows = 256; // rows and columns if only windows say how large the paper is

struct Extent {
    Int32 rows = 0;
    Int32 columns = 0;
};

Extent extentOfWindows(const PictureForm& form, Int32 side)
{
    Extent extent;
    for (const clsKELReaderWindow& window : form.windows) {
        if (sideOfPage(window.Page()) != side || window.NumRows() < 1 || window.NumCols() < 1)
            continue;
        extent.rows = std::max(extent.rows, windowRows(window).last());
        extent.columns = std::max(extent.columns, windowColumns(window).last());
    }
    return extent;
}

Extent lastMark(const MarkArray& marks)
{
    Extent last;
    for (Int32 row = 1; row <= marks.rows(); ++row) {
        for (Int32 column = 1; column <= marks.columns(); ++column) {
            if (marks(row, column) != 0)
                last = {row, std::max(last.columns, column)};
        }
    }
    return last;
}

/// Many readers fill an array of a fixed size. The form says how large the paper is; without one the timing marks and
/// the marks do, and only a sheet without any is as large as its array.
Extent paperOf(const Extent& form, const MarkArray* marks, Int16 iTimingMarks)
{
    Extent paper = form;
    if (!marks)
        return paper;
    const Extent marked = lastMark(*marks);
    paper.rows = std::max(paper.rows, marked.rows);
    paper.columns = std::max(paper.columns, marked.columns);
    if (form.rows == 0)
        paper.rows = std::max<Int32>(paper.rows, std::min<Int32>(iTimingMarks, marks->rows()));
    if (paper.rows == 0)
        paper.rows = marks->rows();
    if (form.columns == 0)
        paper.columns = marks->columns();
    return paper;
}

SideLayout sideLayout(const PictureForm& form, Int32 side, const MarkArray* marks, Int16 iTimingMarks)
{
    const Extent size =
        side == 1 ? Extent{form.side1Rows, form.side1Columns} : Extent{form.side2Rows, form.side2Columns};
    Extent paper = paperOf(size, marks, iTimingMarks);
    const Extent windows = extentOfWindows(form, side);
    if (paper.rows == 0)
        paper.rows = std::min(windows.rows, kMostOfWindows);
    if (paper.columns == 0)
        paper.columns = std::min(windows.columns, kMostOfWindows);
    SideLayout layout{.side = side, .rows = std::max(paper.rows, 0), .columns = std::max(paper.columns, 0)};
    layout.drawnRows = std::clamp(windows.rows, layout.rows, layout.rows + kMostBeyond);
    layout.drawnColumns = std::clamp(windows.columns, layout.columns, layout.columns + kMostBeyond);
    return layout;
}

SheetLayout layoutOf(const PictureForm& form, const PictureSheet* sheet)
{
    SheetLayout layout;
    Int32 x = kMargin;
    for (const Int32 side : {1, 2}) {
        const MarkArray* marks = !sheet ? nullptr : side == 1 ? &sheet->side1 : &sheet->side2;
        const Int16 iTimingMarks = !sheet ? Int16{-1} : side == 1 ? sheet->side1TimingMarks : sheet->side2TimingMarks;
        SideLayout next = sideLayout(form, side, marks, iTimingMarks);
        if (next.rows == 0 || next.columns == 0)
            continue;
        next.x = x + kGridLeft;
        next.y = kGridTop;
        x = next.x + next.drawnColumns * kCellSize + kMargin;
        layout.height = std::max(layout.height, next.y + next.drawnRows * kCellSize + kMargin);
        layout.sides.push_back(next);
    }
    layout.width = std::max(x, kLeastWidth);
    layout.height = std::max(layout.height, kGridTop);
    return layout;
}

std::string sizeOf(const SideLayout& side)
{
    return "side " + CStr(side.side) + " has " + CStr(side.rows) + " rows and " + CStr(side.columns) + " columns.";
}

} // namespace

SheetLayout layoutOf(const PictureForm& form)
{
    return layoutOf(form, nullptr);
}

SheetLayout layoutOf(const PictureForm& form, const PictureSheet& sheet)
{
    return layoutOf(form, &sheet);
}

std::vector<std::string> faultsOfForm(const PictureForm& form)
{
    std::vector<std::string> faults;
    const SheetLayout layout = layoutOf(form);
    for (std::size_t i = 0; i < form.windows.size(); ++i) {
        const clsKELReaderWindow& window = form.windows[i];
        const std::string name = "Window " + CStr(i + 1);
        const auto side = std::find_if(layout.sides.begin(), layout.sides.end(), [&](const SideLayout& there) {
            return there.side == sideOfPage(window.Page());
        });
        const WindowAxis rows = windowRows(window);
        const WindowAxis columns = windowColumns(window);
        if (rows.count < 1 || columns.count < 1)
            faults.push_back(name + " has no cells.");
        else if (rows.first < 1 || columns.first < 1)
            faults.push_back(name + " begins at row " + CStr(rows.first) + ", column " + CStr(columns.first) +
                             "; both count from 1.");
        else if (side == layout.sides.end())
            faults.push_back(name + " lies on side " + CStr(sideOfPage(window.Page())) + ", whose size is not given.");
        else if (rows.last() > side->rows || columns.last() > side->columns)
            faults.push_back(name + " reaches row " + CStr(rows.last()) + ", column " + CStr(columns.last()) + "; " +
                             sizeOf(*side));
        if (rows.count > 1 && rows.gap == 0)
            faults.push_back(name + " has all its rows in row " + CStr(rows.first) + ": its RowGap is 0.");
        if (columns.count > 1 && columns.gap == 0)
            faults.push_back(name + " has all its columns in column " + CStr(columns.first) + ": its ColGap is 0.");
    }
    return faults;
}

} // namespace kel
