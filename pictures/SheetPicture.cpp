// SPDX-License-Identifier: MIT
#include "pictures/SheetPicture.h"

#include "pictures/PageParts.h"
#include "pictures/PicturePieces.h"
#include "pictures/WindowCells.h"

#include <array>
#include <cmath>
#include <numbers>

namespace kel {

namespace {

constexpr Int32 kFootLine = 10;
constexpr std::size_t kLongestInLabel = 60;
constexpr std::size_t kMostFootLines = 24;
constexpr std::size_t kShades = 4;

/// From 0, the faintest, to 3.
std::size_t shadeOf(Int16 mark, const MarkScale& scale)
{
    if (!scale.hasShades)
        return kShades - 1;
    const Int32 shade = (Int32{mark} - 1) * static_cast<Int32>(kShades) / scale.highest;
    return static_cast<std::size_t>(std::clamp<Int32>(shade, 0, kShades - 1));
}

/// A square is a line of next to no length with square ends. One of no length at all is left out by some viewers.
std::string drawMarks(const MarkArray& marks, const MarkScale& scale)
{
    std::array<std::string, kShades> shades;
    std::string odd; // a value below 0 is no mark's: the line has changed it
    for (Int32 row = 1; row <= marks.rows(); ++row) {
        for (Int32 column = 1; column <= marks.columns(); ++column) {
            const Int16 mark = marks(row, column);
            if (mark != 0)
                (mark < 0 ? odd : shades[shadeOf(mark, scale)]) +=
                    "M" + CStr(middleOf(column)) + " " + CStr(middleOf(row)) + "h.1";
        }
    }
    std::string drawing;
    for (std::size_t shade = 0; shade < kShades; ++shade)
        drawing += drawnPath("mark mark" + CStr(shade + 1), shades[shade]);
    return drawing + drawnPath("odd", odd);
}

Int32 markCount(const MarkArray& marks)
{
    return static_cast<Int32>(
        std::count_if(marks.elements().begin(), marks.elements().end(), [](Int16 mark) { return mark != 0; }));
}

std::string timingMarkSteps(Int32 first, Int32 last)
{
    std::string steps;
    for (Int32 row = first; row <= last; ++row)
        steps += "M" + CStr(kPaperLeft + 3) + " " + CStr(middleOf(row)) + "h7";
    return steps;
}

std::string drawTimingMarks(const SideLayout& side, Int16 iTimingMarks)
{
    if (iTimingMarks < 0)
        return drawnPath("timing", timingMarkSteps(1, side.rows));
    const Int32 counted = std::min<Int32>(iTimingMarks, side.drawnRows);
    return drawnPath("timing counted", timingMarkSteps(1, counted)) +
           drawnPath("missed", timingMarkSteps(counted + 1, side.rows));
}

std::string sideHeading(const SideLayout& side, Int16 iTimingMarks)
{
    std::string heading = "Side " + CStr(side.side);
    if (iTimingMarks >= 0) {
        heading += ": " + CStr(iTimingMarks) + " timing marks";
        if (iTimingMarks != side.rows)
            heading += ", " + CStr(side.rows) + " rows";
    }
    return heading;
}

std::string drawHeading(const SideLayout& side, Int16 iTimingMarks)
{
    const bool differs = iTimingMarks >= 0 && iTimingMarks != side.rows;
    return drawnText(differs ? "wrong" : "text", kPaperLeft, -12, sideHeading(side, iTimingMarks));
}

std::string drawRejected(const SheetLayout& layout)
{
    constexpr double kWidthOfWord = 6.0; // in sizes of its font
    constexpr double kOfDiagonal = 0.62;
    const double width = layout.width;
    const double height = std::max(layout.height, 60);
    const double angle = std::atan2(height, width);
    const double size = std::min(std::hypot(width, height) * kOfDiagonal / kWidthOfWord, height * 0.6);
    const std::string place = CStr(layout.width / 2) + " " + CStr(std::lround(height / 2));
    return "<g transform=\"translate(" + place + ") rotate(" + CStr(-std::lround(angle * 180.0 / std::numbers::pi)) +
           ")\"><text class=\"rejected\" y=\"" + CStr(std::lround(size * 0.36)) + "\" font-size=\"" +
           CStr(std::lround(size)) + "\">REJECTED</text></g>";
}

struct FootLine {
    std::string style;
    std::string name; ///< of what the text is
    std::string text = {};
};

std::string drawFoot(const std::vector<FootLine>& lines, const SheetLayout& layout)
{
    std::string drawing;
    Int32 y = layout.height + 6;
    for (const FootLine& line : lines) {
        const std::size_t width = charactersIn(layout.width - 16, 8);
        const std::string name = shortened(line.name, width);
        drawing += drawnText(line.style, 8, y, name + shortened(line.text, width - std::min(width, name.size())));
        y += kFootLine;
    }
    return drawing;
}

/// A sentence of our own in lines that fit, broken between words.
std::vector<FootLine> wrapped(const std::string& style, const std::string& sentence, const SheetLayout& layout)
{
    const std::size_t longest = charactersIn(layout.width - 16, 8);
    std::vector<FootLine> lines;
    std::string_view rest = sentence;
    while (rest.size() > longest && rest.find(' ') != std::string_view::npos) {
        const std::size_t blank = std::min(rest.rfind(' ', longest), rest.find(' ', longest));
        lines.push_back({style, std::string(rest.substr(0, blank))});
        rest.remove_prefix(std::min(rest.size(), blank + 1));
    }
    lines.push_back({style, std::string(rest)});
    return lines;
}

std::vector<std::string> texts(const std::vector<std::string>& barcodes)
{
    std::vector<std::string> found;
    std::copy_if(barcodes.begin(), barcodes.end(), std::back_inserter(found),
                 [](const std::string& barcode) { return !barcode.empty(); });
    return found;
}

std::string drawZoneText(const PictureForm& form, const SideLayout& side, const std::vector<std::string>& barcodes)
{
    std::string drawing;
    for (std::size_t i = 0; i < std::min(form.barcodes.size(), barcodes.size()); ++i) {
        const clsKELReaderBarcode& zone = form.barcodes[i];
        if (sideOfPage(zone.Page()) != side.side)
            continue;
        const ZonePlace place = placeOf(zone, side);
        drawing += drawnText("read", 4, place.y + place.height / 2 + 7,
                             shortened(barcodes[i], charactersIn(side.columns * kCellSize - 8, 8)));
    }
    return drawing;
}

/// Barcodes come in the order of the zones; what no zone on a drawn side shows stands at the foot.
bool isShownInZone(const PictureForm& form, const SheetLayout& layout, std::size_t index)
{
    return index < form.barcodes.size() &&
           std::any_of(layout.sides.begin(), layout.sides.end(),
                       [&](const SideLayout& side) { return side.side == sideOfPage(form.barcodes[index].Page()); });
}

std::vector<FootLine> footOf(const PictureForm& form, const PictureSheet& sheet, const SheetLayout& layout)
{
    std::vector<FootLine> foot;
    const std::vector<std::string> barcodes = texts(sheet.barcodes);
    for (std::size_t i = 0; i < barcodes.size(); ++i) {
        if (!isShownInZone(form, layout, i))
            foot.push_back({"read", "Barcode: ", barcodes[i]});
    }
    if (sheet.printed && sheet.printedLines.empty())
        foot.push_back({"text", "Printed"});
    for (const std::string& line : sheet.printedLines)
        foot.push_back({"text", "Printed: ", line});
    for (const auto& [name, value] : sheet.record)
        foot.push_back({"text", name + ": ", value});
    if (foot.size() > kMostFootLines) {
        foot.resize(kMostFootLines);
        foot.push_back({"text", "\u2026"});
    }
    return foot;
}

std::string labelOf(const PictureSheet& sheet)
{
    std::string label = "Sheet " + CStr(sheet.sheet);
    if (sheet.rejected)
        label += ", rejected";
    if (sheet.side1.isDimensioned())
        label += ", marks on side 1: " + CStr(markCount(sheet.side1));
    if (sheet.side2.isDimensioned())
        label += ", marks on side 2: " + CStr(markCount(sheet.side2));
    for (const std::string& barcode : texts(sheet.barcodes))
        label += ", barcode " + shortened(barcode, kLongestInLabel);
    if (sheet.printed)
        label += ", printed";
    return label;
}

std::string document(const SheetLayout& layout, Int32 height, const std::string& label, const std::string& drawing)
{
    const std::string words = markupText(label);
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" class=\"sheet\" viewBox=\"0 0 " + CStr(layout.width) + " " +
           CStr(height) + "\" width=\"" + CStr(layout.width * 3 / 2) + "\" height=\"" + CStr(height * 3 / 2) +
           "\" role=\"img\" aria-label=\"" + words + "\">\n<title>" + words + "</title>\n<style>\n" +
           std::string(pictureStyle()) + "</style>\n<rect class=\"desk\" width=\"100%\" height=\"100%\"/>\n" + drawing +
           "\n</svg>\n";
}

} // namespace

std::string_view pictureStyle()
{
    return kSheetCss;
}

SheetDrawing drawSheet(const PictureForm& form, const PictureSheet& sheet, const SheetLayout& layout)
{
    SheetDrawing drawing;
    drawing.label = labelOf(sheet);
    drawing.marks = drawnText("title", 8, 14, "Sheet " + CStr(sheet.sheet));
    const std::vector<std::string> barcodes = texts(sheet.barcodes);
    for (const SideLayout& side : layout.sides) {
        const Int16 iTimingMarks = side.side == 1 ? sheet.side1TimingMarks : sheet.side2TimingMarks;
        drawing.marks += groupAt(side) + drawHeading(side, iTimingMarks) + drawTimingMarks(side, iTimingMarks) +
                         drawMarks(side.side == 1 ? sheet.side1 : sheet.side2, form.scale) +
                         drawZoneText(form, side, barcodes) + "</g>";
    }
    const std::vector<FootLine> foot = footOf(form, sheet, layout);
    drawing.marks += drawFoot(foot, layout);
    if (sheet.rejected)
        drawing.marks += drawRejected(layout);
    drawing.height = layout.height + static_cast<Int32>(foot.size()) * kFootLine;
    return drawing;
}

std::string sheetPicture(const PictureForm& form, const PictureSheet& sheet)
{
    const SheetLayout layout = layoutOf(form, sheet);
    const SheetDrawing drawing = drawSheet(form, sheet, layout);
    return document(layout, drawing.height, drawing.label,
                    drawForm(form, layout) + "\n" + drawLegend(form, layout) + drawing.marks);
}

std::string formPicture(const PictureForm& form)
{
    const SheetLayout layout = layoutOf(form);
    std::string drawing = drawForm(form, layout) + drawLegend(form, layout) + drawnText("title", 8, 14, "Form");
    for (const SideLayout& side : layout.sides)
        drawing += groupAt(side) + drawHeading(side, -1) + drawTimingMarks(side, -1) + "</g>";
    std::vector<FootLine> foot;
    for (const std::string& fault : faultsOfForm(form)) {
        for (FootLine& line : wrapped("wrong", fault, layout))
            foot.push_back(std::move(line));
    }
    if (layout.sides.empty())
        foot.push_back({"wrong", "The form gives neither sizes nor read windows."});
    drawing += drawFoot(foot, layout);
    return document(layout, layout.height + static_cast<Int32>(foot.size()) * kFootLine,
                    "Form with " + CStr(form.windows.size()) + " read windows and " + CStr(form.barcodes.size()) +
                        " barcode zones",
                    drawing);
}

} // namespace kel
