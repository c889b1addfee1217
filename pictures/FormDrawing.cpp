// SPDX-License-Identifier: MIT
#include "pictures/PicturePieces.h"
#include "pictures/SheetPicture.h"
#include "pictures/WindowCells.h"
#include "types/Text.h"

#include <algorithm>

namespace kel {

namespace {

std::string drawGrid(const SideLayout& side)
{
    const Int32 width = side.columns * kCellSize;
    const Int32 height = side.rows * kCellSize;
    std::string fine;
    std::string fifth;
    for (Int32 row = 0; row <= side.rows; ++row)
        (row % 5 == 0 ? fifth : fine) += "M0 " + CStr(row * kCellSize) + "h" + CStr(width);
    for (Int32 column = 0; column <= side.columns; ++column)
        (column % 5 == 0 ? fifth : fine) += "M" + CStr(column * kCellSize) + " 0v" + CStr(height);
    return drawnPath("grid", fine) + drawnPath("fifth", fifth);
}

std::string drawNumbers(const SideLayout& side)
{
    std::string numbers;
    const auto shown = [](Int32 number) { return number == 1 || number % 5 == 0; };
    for (Int32 row = 1; row <= side.drawnRows; ++row) {
        if (shown(row))
            numbers += drawnText("number down", kPaperLeft - 2, middleOf(row) + 2, CStr(row));
    }
    for (Int32 column = 1; column <= side.drawnColumns; ++column) {
        if (shown(column))
            numbers += drawnText("number over", middleOf(column), -5, CStr(column));
    }
    return numbers;
}

std::string drawZones(const PictureForm& form, const SideLayout& side)
{
    std::string zones;
    for (std::size_t i = 0; i < form.barcodes.size(); ++i) {
        const clsKELReaderBarcode& zone = form.barcodes[i];
        if (sideOfPage(zone.Page()) != side.side)
            continue;
        const ZonePlace place = placeOf(zone, side);
        zones += "<rect class=\"zone\" x=\"0\" y=\"" + CStr(place.y) + "\" width=\"" + CStr(side.columns * kCellSize) +
                 "\" height=\"" + CStr(place.height) + "\"/>";
        std::string name = "barcode zone " + CStr(i + 1) + ", from " + CStr(zone.Distance());
        if (zone.Length() > 0)
            name += " to " + CStr(Int32{zone.Distance()} + zone.Length());
        zones += drawnText("number", 2, place.y + 6, name);
    }
    return zones;
}

std::string drawWindows(const PictureForm& form, const SideLayout& side)
{
    std::string windows;
    for (std::size_t i = 0; i < form.windows.size(); ++i) {
        const clsKELReaderWindow& window = form.windows[i];
        if (sideOfPage(window.Page()) != side.side)
            continue;
        const std::vector<WindowCell> cells =
            windowCells(window, readsByColumn(window, form.readsByOrientation), side.drawnRows, side.drawnColumns);
        if (cells.empty())
            continue;
        const auto [top, bottom] = std::minmax_element(
            cells.begin(), cells.end(), [](const WindowCell& a, const WindowCell& b) { return a.row < b.row; });
        const auto [left, right] = std::minmax_element(
            cells.begin(), cells.end(), [](const WindowCell& a, const WindowCell& b) { return a.column < b.column; });
        windows += "<rect class=\"window\" x=\"" + CStr((left->column - 1) * kCellSize) + "\" y=\"" +
                   CStr((top->row - 1) * kCellSize) + "\" width=\"" +
                   CStr((right->column - left->column + 1) * kCellSize) + "\" height=\"" +
                   CStr((bottom->row - top->row + 1) * kCellSize) + "\" rx=\"2\"/>";
        std::string inside;
        std::string outside;
        std::string numbers;
        for (const WindowCell& cell : cells) {
            const bool onPaper = cell.row <= side.rows && cell.column <= side.columns;
            (onPaper ? inside : outside) +=
                "M" + CStr(cell.column * kCellSize - 9) + " " + CStr(cell.row * kCellSize - 9) + "h8v8h-8z";
            numbers += "<text x=\"" + CStr(middleOf(cell.column)) + "\" y=\"" + CStr(cell.row * kCellSize - 3) + "\">" +
                       CStr(cell.number) + "</text>";
        }
        windows += drawnText("number", (left->column - 1) * kCellSize + 1, (top->row - 1) * kCellSize - 2,
                             "window " + CStr(i + 1));
        windows += drawnPath("cell", inside) + drawnPath("outside", outside);
        windows += "<g class=\"order\">" + numbers + "</g>";
    }
    return windows;
}

} // namespace

std::string drawLegend(const PictureForm& form, const SheetLayout& layout)
{
    const MarkScale& scale = form.scale;
    if (!scale.hasShades)
        return {};
    std::string legend;
    Int32 x = layout.width - 96;
    for (const Int32 shade : {1, 2, 3, 4}) {
        legend += drawnPath("mark mark" + CStr(shade), "M" + CStr(x) + " 11h.1");
        x += 10;
    }
    return legend +
           drawnText("number", x - 2, 13, "1 to " + CStr(scale.highest) + ", threshold " + CStr(scale.threshold));
}

std::string drawForm(const PictureForm& form, const SheetLayout& layout)
{
    std::string drawing;
    for (const SideLayout& side : layout.sides) {
        drawing += groupAt(side);
        drawing += "<rect class=\"paper\" x=\"" + CStr(kPaperLeft) + "\" y=\"-3\" width=\"" +
                   CStr(side.columns * kCellSize - kPaperLeft + 3) + "\" height=\"" + CStr(side.rows * kCellSize + 6) +
                   "\" rx=\"1\"/>";
        drawing += drawGrid(side) + drawNumbers(side) + drawZones(form, side) + drawWindows(form, side);
        drawing += "</g>";
    }
    return drawing;
}

} // namespace kel
