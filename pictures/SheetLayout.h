// SPDX-License-Identifier: MIT
#pragma once

#include "pictures/Sheet.h"

#include <string>
#include <vector>

namespace kel {

/// The side of a cell in a picture's units.
inline constexpr Int32 kCellSize = 10;

/// One side of a sheet in a picture.
struct SideLayout {
    Int32 side = 1;
    Int32 rows = 0;      ///< of the paper
    Int32 columns = 0;   ///< of the paper
    Int32 drawnRows = 0; ///< with the cells of windows that lie beyond the paper
    Int32 drawnColumns = 0;
    Int32 x = 0; ///< of the left edge of column 1
    Int32 y = 0; ///< of the upper edge of row 1

    bool operator==(const SideLayout&) const = default;
};

/// Where things stand in a picture. Sheets of the same layout share what the form draws.
struct SheetLayout {
    std::vector<SideLayout> sides;
    Int32 width = 0;
    Int32 height = 0; ///< without the lines at the foot

    bool operator==(const SheetLayout&) const = default;
};

/// The layout of a form by itself, and of a sheet: paper of the form's size, and larger if a sheet has marks further
/// out.
[[nodiscard]] SheetLayout layoutOf(const PictureForm& form);
[[nodiscard]] SheetLayout layoutOf(const PictureForm& form, const PictureSheet& sheet);

/// What is wrong with the windows and zones of a form, a sentence each.
[[nodiscard]] std::vector<std::string> faultsOfForm(const PictureForm& form);

} // namespace kel
