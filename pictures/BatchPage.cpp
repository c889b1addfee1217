// SPDX-License-Identifier: MIT
#include "pictures/BatchPage.h"

#include "formats/Json.h"
#include "pictures/PageParts.h"
#include "pictures/SheetPicture.h"
#include "pictures/WindowCells.h"

#include <algorithm>
#include <array>

namespace kel {

namespace {

/// Data within a page: JSON in which no tag can begin. What is not UTF-8 is shown as U+FFFD.
std::string block(const char* name, const Json& data)
{
    std::string text = data.dump(-1, ' ', false, Json::error_handler_t::replace);
    for (std::size_t at = text.find('<'); at != std::string::npos; at = text.find('<', at))
        text.replace(at, 1, "\\u003c");
    return "<script type=\"application/json\" data-is=\"" + std::string(name) + "\">" + text + "</script>\n";
}

Json jsonMarks(const MarkArray& marks)
{
    if (!marks.isDimensioned())
        return nullptr;
    Json flat = Json::array();
    for (Int32 row = 1; row <= marks.rows(); ++row) {
        for (Int32 column = 1; column <= marks.columns(); ++column) {
            if (marks(row, column) != 0) {
                flat.push_back(row);
                flat.push_back(column);
                flat.push_back(marks(row, column));
            }
        }
    }
    return flat;
}

bool hasMark(const MarkArray& marks)
{
    return std::any_of(marks.elements().begin(), marks.elements().end(), [](Int16 mark) { return mark != 0; });
}

/// How many lines of the read windows, an item each, have more than one mark that counts.
Int32 doubleMarks(const PictureForm& form, const PictureSheet& sheet)
{
    const Int16 least = form.scale.hasShades ? std::max<Int16>(form.scale.threshold, 1) : Int16{1};
    Int32 lines = 0;
    for (const clsKELReaderWindow& window : form.windows) {
        const MarkArray& marks = sideOfPage(window.Page()) == 1 ? sheet.side1 : sheet.side2;
        const bool byColumn = readsByColumn(window, form.readsByOrientation);
        std::vector<Int32> counts(static_cast<std::size_t>(std::max(marks.rows(), marks.columns())) + 1);
        for (const WindowCell& cell : windowCells(window, byColumn, marks.rows(), marks.columns())) {
            if (marks(cell.row, cell.column) >= least)
                ++counts[static_cast<std::size_t>(byColumn ? cell.column : cell.row)];
        }
        lines += static_cast<Int32>(std::count_if(counts.begin(), counts.end(), [](Int32 count) { return count > 1; }));
    }
    return lines;
}

/// The cells of all read windows, as side, row and column.
Json jsonCells(const PictureForm& form)
{
    std::vector<std::array<Int32, 3>> cells;
    for (const SideLayout& side : layoutOf(form).sides) {
        for (const clsKELReaderWindow& window : form.windows) {
            if (sideOfPage(window.Page()) != side.side)
                continue;
            for (const WindowCell& cell : windowCells(window, false, side.rows, side.columns))
                cells.push_back({side.side, cell.row, cell.column});
        }
    }
    std::sort(cells.begin(), cells.end());
    cells.erase(std::unique(cells.begin(), cells.end()), cells.end());
    return cells;
}

Json jsonLayout(const PictureForm& form, const SheetLayout& layout)
{
    Json sides = Json::array();
    for (const SideLayout& side : layout.sides)
        sides.push_back({{"side", side.side}, {"x", side.x}, {"y", side.y}});
    return {{"width", layout.width},
            {"height", layout.height},
            {"sides", std::move(sides)},
            {"legend", drawLegend(form, layout)},
            {"drawing", drawForm(form, layout)}};
}

} // namespace

BatchPage::BatchPage(Write write, const std::string& title, PictureForm form)
    : write_(std::move(write)), form_(std::move(form))
{
    write_(std::string(kBatchHtml) + block("batch", {{"title", title},
                                                     {"rows", {form_.side1Rows, form_.side2Rows}},
                                                     {"highest", form_.scale.highest},
                                                     {"threshold", form_.scale.threshold},
                                                     {"shades", form_.scale.hasShades},
                                                     {"windows", !form_.windows.empty()},
                                                     {"cells", jsonCells(form_)}}));
}

void BatchPage::sheet(const PictureSheet& sheet)
{
    ++sheets_;
    const SheetLayout layout = layoutOf(form_, sheet);
    const std::size_t place = placeOf(layout);
    const SheetDrawing drawing = drawSheet(form_, sheet, layout);
    Json record = Json::array();
    for (const auto& [name, value] : sheet.record)
        record.push_back({name, value});
    write_(block("sheet", {{"sheet", sheet.sheet},
                           {"layout", place},
                           {"height", drawing.height},
                           {"label", drawing.label},
                           {"blank", !hasMark(sheet.side1) && !hasMark(sheet.side2) && sheet.record.empty()},
                           {"rejected", sheet.rejected},
                           {"double", doubleMarks(form_, sheet)},
                           {"printed", sheet.printed},
                           {"printedLines", sheet.printedLines},
                           {"timing", {sheet.side1TimingMarks, sheet.side2TimingMarks}},
                           {"barcodes", sheet.barcodes},
                           {"record", std::move(record)},
                           {"marks", Json::array({jsonMarks(sheet.side1), jsonMarks(sheet.side2)})},
                           {"drawing", drawing.marks}}));
}

void BatchPage::failure(const PageFailure& failure)
{
    write_(block("failure", {{"title", failure.title},
                             {"description", failure.description},
                             {"source", failure.source},
                             {"cause", failure.cause},
                             {"remedy", failure.remedy},
                             {"sheets", sheets_}}));
}

void BatchPage::end(bool started)
{
    write_(block("end", {{"started", started}}));
}

std::size_t BatchPage::placeOf(const SheetLayout& layout)
{
    const auto known = std::find(layouts_.begin(), layouts_.end(), layout);
    if (known == layouts_.end()) {
        write_(block("layout", jsonLayout(form_, layout)));
        layouts_.push_back(layout);
        return layouts_.size() - 1;
    }
    return static_cast<std::size_t>(known - layouts_.begin());
}

} // namespace kel
