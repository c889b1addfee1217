#include "drivers/scantron/SheetCells.h"

#include "contract/clsKELReaderWindow.h"

namespace kel {

namespace {

constexpr Int16 kPageColumns = 48;

} // namespace

void PageSideST::store(Byte value)
{
    marks_(iRowCount_, iColCount_) = checkedSubtract(Int16{value}, offset_);
    ++iColCount_;
    iLastRow_ = iRowCount_;
    if (iColCount_ > kPageColumns) {
        iColCount_ = 1;
        iRowCount_ = checkedAdd(iRowCount_, 1);
    }
}

WindowCellsST::Direction::Direction(Int16 startAt, Int16 count, Int16 signedGap)
    : start(signedGap < 1 ? positionInWindow(startAt, signedGap, count) : startAt),
      gap(signedGap < 1 ? checkedAbs(signedGap) : signedGap), length(count)
{
}

WindowCellsST::WindowCellsST(const clsKELReaderWindow& window)
    : byColumns_(window.Orientation() == 0), outer_(byColumns_ ? columnsOf(window) : rowsOf(window)),
      inner_(byColumns_ ? rowsOf(window) : columnsOf(window)), iInner_(inner_.length)
{
}

WindowCellsST::Direction WindowCellsST::rowsOf(const clsKELReaderWindow& window)
{
    return {window.StartRow(), window.NumRows(), window.RowGap()};
}

WindowCellsST::Direction WindowCellsST::columnsOf(const clsKELReaderWindow& window)
{
    return {window.StartCol(), window.NumCols(), window.ColGap()};
}

bool WindowCellsST::beginLine()
{
    while (iOuter_ < outer_.length) {
        outerAt_ = outer_.at(++iOuter_);
        iInner_ = 0;
        if (inner_.length > 0)
            return true;
    }
    return false;
}

} // namespace kel
