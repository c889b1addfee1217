// SPDX-License-Identifier: MIT
#pragma once

#include "drivers/common/WindowPositions.h"
#include "failure/TellsVariables.h"
#include "types/Arrays.h"
#include "types/Reference.h"

namespace kel {

class clsKELReaderWindow;

/// The byte that ends the transfer of a sheet.
inline constexpr Byte kTransferEndST = 0x0D;

/// The cells of one side in the order of a page transfer: row after row of 48 columns, whatever the array's own width
/// is. A narrower array is run out of its bounds, which is failure 9.
class PageSideST {
public:
    void store(MarkArray& marks, Int16 value);

    /// The row of the next byte, and of the last one that was stored (0 before the first).
    [[nodiscard]] Int16 nextRow() const { return iRowCount_; }
    [[nodiscard]] Int16 lastRow() const { return iLastRow_; }

    KEL_TELLS(iRowCount_, iColCount_)

private:
    Int16 iRowCount_ = 1;
    Int16 iColCount_ = 1;
    Int16 iLastRow_ = 0;
};

/// The cells of a read window in the order in which the reader sends them: column by column for orientation 0, row by
/// row for any other. A window that runs towards lower numbers is walked from its low end.
///
/// Where the window begins and which way it runs is taken from it at the start; how far a line of cells reaches is
/// asked again at the start of each line, since the host runs in between.
class WindowCellsST {
public:
    /// Without a window, and so without cells.
    WindowCellsST() = default;
    /// Numbers beyond 16 bits are failure 6, here and in `next`.
    explicit WindowCellsST(Reference<clsKELReaderWindow> cWindow);

    /// Goes on to the next cell, at first to the first one; false after the last one.
    [[nodiscard]] bool next();

    [[nodiscard]] Int16 row() const { return iRowCount_; }
    [[nodiscard]] Int16 column() const { return iColCount_; }

    KEL_TELLS(cWindow_, iStartCol_, iColGap_, iStartRow_, iRowGap_, iRowIndex_, iColIndex_, iRowCount_, iColCount_)

private:
    /// Goes on to the next row or column of cells; false after the last one.
    bool beginLine();

    void goToRow() { iRowCount_ = positionInWindow(iStartRow_, iRowGap_, iRowIndex_); }
    void goToColumn() { iColCount_ = positionInWindow(iStartCol_, iColGap_, iColIndex_); }

    Reference<clsKELReaderWindow> cWindow_;
    // From the lower number upwards.
    Int16 iStartCol_ = 0;
    Int16 iColGap_ = 0;
    Int16 iStartRow_ = 0;
    Int16 iRowGap_ = 0;
    // The cell within the window, counted from 1, and on the sheet.
    Int16 iRowIndex_ = 0;
    Int16 iColIndex_ = 0;
    Int16 iRowCount_ = 0;
    Int16 iColCount_ = 0;
    bool byColumns_ = false;
    Int16 lines_ = 0;
    Int16 lineLength_ = 0;
};

// In the header, so that the loop over a window's cells is one with its steps.

inline bool WindowCellsST::next()
{
    if ((byColumns_ ? iRowIndex_ : iColIndex_) >= lineLength_ && !beginLine())
        return false;
    if (byColumns_) {
        ++iRowIndex_;
        goToRow();
    } else {
        ++iColIndex_;
        goToColumn();
    }
    return true;
}

} // namespace kel
