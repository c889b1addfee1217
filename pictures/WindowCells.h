// SPDX-License-Identifier: MIT
#pragma once

#include "contract/clsKELReaderWindow.h"
#include "types/Numbers.h"

#include <vector>

namespace kel {

/// A cell of a read window.
struct WindowCell {
    Int32 row = 0;
    Int32 column = 0;
    Int32 number = 0; ///< in reading order, from 1
};

/// The lines of cells in one direction: where they begin and how far apart they are. A negative gap is undone: cells
/// are read from low to high numbers.
struct WindowAxis {
    Int32 first = 0;
    Int32 gap = 0;
    Int32 count = 0;

    [[nodiscard]] Int32 at(Int32 index) const { return first + index * gap; }
    [[nodiscard]] Int32 last() const { return at(count - 1); }
};

[[nodiscard]] WindowAxis windowRows(const clsKELReaderWindow& window);
[[nodiscard]] WindowAxis windowColumns(const clsKELReaderWindow& window);

/// Whether a window is read column by column, by a reader that looks at its orientation.
[[nodiscard]] bool readsByColumn(const clsKELReaderWindow& window, bool readsByOrientation);

/// Which side a window or a zone of a page lies on: 1, or 2 from page 2 on.
[[nodiscard]] inline Int32 sideOfPage(Int16 page)
{
    return page >= 2 ? 2 : 1;
}

/// The cells of a window that lie in rows 1 to `rows` and columns 1 to `columns`.
[[nodiscard]] std::vector<WindowCell> windowCells(const clsKELReaderWindow& window, bool byColumn, Int32 rows,
                                                  Int32 columns);

} // namespace kel
