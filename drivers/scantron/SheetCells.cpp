#include "drivers/scantron/SheetCells.h"

#include "drivers/scantron/FormCommands.h"
#include "reader/clsKELReaderWindow.h"

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
    : start(signedGap < 1 ? farEndST(startAt, count, signedGap) : startAt),
      gap(signedGap < 1 ? checkedAbs(signedGap) : signedGap), length(count)
{
}

Int16 WindowCellsST::Direction::at(Int16 index) const
{
    return checkedSubtract(checkedAdd(checkedMultiply(gap, index), start), gap);
}

WindowCellsST::WindowCellsST(const clsKELReaderWindow& window)
    : rows_(window.StartRow(), window.NumRows(), window.RowGap()),
      columns_(window.StartCol(), window.NumCols(), window.ColGap()), byColumns_(window.Orientation() == 0)
{
}

std::optional<WindowCellsST::Cell> WindowCellsST::next()
{
    const Direction& outer = byColumns_ ? columns_ : rows_;
    const Direction& inner = byColumns_ ? rows_ : columns_;
    if (iInner_ >= inner.length) {
        iInner_ = 0;
        iOuter_ = checkedAdd(iOuter_, 1);
        outerAt_.reset();
    }
    if (inner.length < 1 || iOuter_ > outer.length)
        return std::nullopt;
    if (!outerAt_)
        outerAt_ = outer.at(iOuter_);
    const Int16 innerAt = inner.at(++iInner_);
    return byColumns_ ? Cell{innerAt, *outerAt_} : Cell{*outerAt_, innerAt};
}

} // namespace kel
