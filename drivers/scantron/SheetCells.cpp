// SPDX-License-Identifier: MIT
#include "drivers/scantron/SheetCells.h"

#include "contract/clsKELReaderWindow.h"

#include <utility>

namespace kel {

namespace {

constexpr Int16 kPageColumns = 48;

/// The low end of a window that runs towards lower numbers, and the gap seen from there.
void beginAtLowEnd(Int16& iStart, Int16& iGap, Int16 count)
{
    if (iGap < 1) {
        iStart = positionInWindow(iStart, iGap, count);
        iGap = checkedAbs(iGap);
    }
}

} // namespace

void PageSideST::store(MarkArray& marks, Int16 value)
{
    marks(iRowCount_, iColCount_) = value;
    ++iColCount_;
    iLastRow_ = iRowCount_;
    if (iColCount_ > kPageColumns) {
        iColCount_ = 1;
        iRowCount_ = checkedAdd(iRowCount_, 1);
    }
}

WindowCellsST::WindowCellsST(Reference<clsKELReaderWindow> cWindow)
    : cWindow_(std::move(cWindow)), iStartCol_(cWindow_->StartCol()), iColGap_(cWindow_->ColGap()),
      iStartRow_(cWindow_->StartRow()), iRowGap_(cWindow_->RowGap()), byColumns_(cWindow_->Orientation() == 0),
      lines_(byColumns_ ? cWindow_->NumCols() : cWindow_->NumRows())
{
    beginAtLowEnd(iStartCol_, iColGap_, cWindow_->NumCols());
    beginAtLowEnd(iStartRow_, iRowGap_, cWindow_->NumRows());
}

bool WindowCellsST::beginLine()
{
    Int16& iLine = byColumns_ ? iColIndex_ : iRowIndex_;
    Int16& iWithin = byColumns_ ? iRowIndex_ : iColIndex_;
    while (iLine < lines_) {
        ++iLine;
        if (byColumns_)
            goToColumn();
        else
            goToRow();
        lineLength_ = byColumns_ ? cWindow_->NumRows() : cWindow_->NumCols();
        iWithin = 0;
        if (lineLength_ > 0)
            return true;
    }
    return false;
}

} // namespace kel
