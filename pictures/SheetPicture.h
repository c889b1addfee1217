// SPDX-License-Identifier: MIT
#pragma once

#include "pictures/Sheet.h"
#include "pictures/SheetLayout.h"

#include <string>

namespace kel {

/// A form as an SVG document of its own: paper, timing marks, read windows with their cells numbered in reading order,
/// barcode zones. What is wrong with the windows stands below.
[[nodiscard]] std::string formPicture(const PictureForm& form);

/// A sheet as an SVG document of its own: its marks on the form, the texts that were read and printed, and "rejected"
/// across it. Both sides stand side by side.
[[nodiscard]] std::string sheetPicture(const PictureForm& form, const PictureSheet& sheet);

/// The parts of which `sheetPicture` is made. What the form draws is the same for all sheets of a layout: a page with
/// many pictures holds it once.
struct SheetDrawing {
    std::string marks; ///< what lies over the form's part, as SVG
    Int32 height = 0;  ///< of the whole picture, the lines at the foot included
    std::string label; ///< the picture in words, as plain text
};
[[nodiscard]] std::string drawForm(const PictureForm& form, const SheetLayout& layout);
[[nodiscard]] std::string drawLegend(const PictureForm& form, const SheetLayout& layout);
[[nodiscard]] SheetDrawing drawSheet(const PictureForm& form, const PictureSheet& sheet, const SheetLayout& layout);

/// The style of all pictures, as CSS.
[[nodiscard]] std::string_view pictureStyle();

} // namespace kel
