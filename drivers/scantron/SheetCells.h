#pragma once

#include "drivers/common/WindowPositions.h"
#include "types/Arrays.h"
#include "types/Reference.h"

#include <optional>

namespace kel {

class clsKELReaderWindow;

/// The byte that ends the transfer of a sheet.
inline constexpr Byte kTransferEndST = 0x0D;

/// Puts the values of a page transfer into the cells of one side, row after row of 48 columns, whatever the array's own
/// width is: a narrower array is run out of its bounds, which is failure 9.
class PageSideST {
public:
    explicit PageSideST(MarkArray& marks) : marks_(marks) {}

    void store(Int16 value);

    /// The row of the next byte, and of the last one that was stored (0 before the first).
    [[nodiscard]] Int16 nextRow() const { return iRowCount_; }
    [[nodiscard]] Int16 lastRow() const { return iLastRow_; }

private:
    MarkArray& marks_;
    Int16 iRowCount_ = 1;
    Int16 iColCount_ = 1;
    Int16 iLastRow_ = 0;
};

/// The cells of a read window in the order in which the reader sends them: column by column for orientation 0, row by
/// row for any other. A window that runs towards lower numbers is walked from its low end.
///
/// Where the window begins and which way it runs is taken from it at the start; how far a line of cells reaches is
/// asked anew at the start of each line, since the host runs in between.
class WindowCellsST {
public:
    struct Cell {
        Int16 row;
        Int16 column;
    };

    explicit WindowCellsST(Reference<clsKELReaderWindow> cWindow);

    /// The next cell, nothing behind the last one. Numbers beyond 16 bits are failure 6.
    [[nodiscard]] std::optional<Cell> next();

private:
    /// One direction of the window, from the lower number upwards.
    struct Direction {
        Direction(Int16 startAt, Int16 count, Int16 signedGap);
        [[nodiscard]] Int16 at(Int16 index) const { return positionInWindow(start, gap, index); }

        Int16 start;
        Int16 gap;
    };

    /// Goes on to the next row or column of cells; false after the last one.
    bool beginLine();

    Reference<clsKELReaderWindow> cWindow_;
    Direction columns_;
    Direction rows_;
    bool byColumns_;
    Int16 lines_;
    Int16 iOuter_ = 0;
    Int16 outerAt_ = 0;
    Int16 lineLength_ = 0;
    Int16 iInner_ = 0;
};

// In the header, so that the loop over a window's cells is one with its steps.

inline std::optional<WindowCellsST::Cell> WindowCellsST::next()
{
    if (iInner_ >= lineLength_ && !beginLine())
        return std::nullopt;
    const Int16 innerAt = (byColumns_ ? rows_ : columns_).at(++iInner_);
    return byColumns_ ? Cell{innerAt, outerAt_} : Cell{outerAt_, innerAt};
}

} // namespace kel
