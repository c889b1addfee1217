// SPDX-License-Identifier: MIT
#pragma once

// What the drawings of the form and of the sheet share.

#include "pictures/Markup.h"
#include "pictures/SheetLayout.h"
#include "types/Text.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace kel {

/// The left edge of the paper, from column 1: between them stand the timing marks.
inline constexpr Int32 kPaperLeft = -13;

/// The middle of a row or column.
[[nodiscard]] inline Int32 middleOf(Int32 line)
{
    return line * kCellSize - kCellSize / 2;
}

/// The beginning of a side's group, within which column 1 and row 1 begin at 0.
[[nodiscard]] inline std::string groupAt(const SideLayout& side)
{
    return "<g transform=\"translate(" + CStr(side.x) + " " + CStr(side.y) + ")\">";
}

[[nodiscard]] inline std::string drawnPath(std::string_view style, const std::string& steps)
{
    return steps.empty() ? "" : "<path class=\"" + std::string(style) + "\" d=\"" + steps + "\"/>";
}

[[nodiscard]] inline std::string drawnText(std::string_view style, Int32 x, Int32 y, std::string_view text)
{
    return "<text class=\"" + std::string(style) + "\" x=\"" + CStr(x) + "\" y=\"" + CStr(y) + "\">" +
           markupText(text) + "</text>";
}

/// How many characters of a font of `size` fit into a width.
[[nodiscard]] inline std::size_t charactersIn(Int32 width, Int32 size)
{
    return static_cast<std::size_t>(std::max<Int32>(8, width * 10 / (size * 8)));
}

/// Where a barcode zone lies on its side, in the picture's units.
struct ZonePlace {
    Int32 y = 0;
    Int32 height = 0;
};

/// Readers take the distance in millimetres, and forms have six rows an inch.
[[nodiscard]] inline ZonePlace placeOf(const clsKELReaderBarcode& zone, const SideLayout& side)
{
    const auto units = [](Int32 millimetres) { return millimetres * kCellSize * 60 / 254; };
    const Int32 bottom = side.drawnRows * kCellSize;
    const Int32 least = 2 * kCellSize;
    const Int32 y = std::clamp(units(zone.Distance()), 0, std::max(0, bottom - least));
    return {y, std::clamp(units(zone.Length()), least, std::max(least, bottom - y))};
}

} // namespace kel
