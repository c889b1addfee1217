#include "drivers/scantron/SheetCells.h"

#include "contract/clsKELReaderWindow.h"

#include <utility>

namespace kel {

namespace {

constexpr Int16 kPageColumns = 48;

} // namespace

void PageSideST::store(Int16 value)
{
    marks_(iRowCount_, iColCount_) = value;
    ++iColCount_;
    iLastRow_ = iRowCount_;
    if (iColCount_ > kPageColumns) {
        iColCount_ = 1;
        iRowCount_ = checkedAdd(iRowCount_, 1);
    }
}

WindowCellsST::Direction::Direction(Int16 startAt, Int16 count, Int16 signedGap)
    : start(signedGap < 1 ? positionInWindow(startAt, signedGap, count) : startAt),
      gap(signedGap < 1 ? checkedAbs(signedGap) : signedGap)
{
}

WindowCellsST::WindowCellsST(Reference<clsKELReaderWindow> cWindow)
    : cWindow_(std::move(cWindow)), columns_(cWindow_->StartCol(), cWindow_->NumCols(), cWindow_->ColGap()),
      rows_(cWindow_->StartRow(), cWindow_->NumRows(), cWindow_->RowGap()), byColumns_(cWindow_->Orientation() == 0),
      lines_(byColumns_ ? cWindow_->NumCols() : cWindow_->NumRows())
{
}

bool WindowCellsST::beginLine()
{
    while (iOuter_ < lines_) {
        outerAt_ = (byColumns_ ? columns_ : rows_).at(++iOuter_);
        lineLength_ = byColumns_ ? cWindow_->NumRows() : cWindow_->NumCols();
        iInner_ = 0;
        if (lineLength_ > 0)
            return true;
    }
    return false;
}

} // namespace kel
