#pragma once

#include "types/Export.h"
#include "types/Numbers.h"

namespace kel {

/// A read window: a rectangular block of mark positions on one page of a form. Rows and columns count from 1. A gap
/// is the distance from one row or column to the next; a negative one runs towards lower numbers. Nothing is checked.
class KEL_PUBLIC clsKELReaderWindow {
public:
    [[nodiscard]] Int16 StartRow() const { return iStartRow_; }
    void StartRow(Int16 value) { iStartRow_ = value; }
    [[nodiscard]] Int16 NumRows() const { return iNumRows_; }
    void NumRows(Int16 value) { iNumRows_ = value; }
    [[nodiscard]] Int16 RowGap() const { return iRowGap_; }
    void RowGap(Int16 value) { iRowGap_ = value; }
    [[nodiscard]] Int16 StartCol() const { return iStartCol_; }
    void StartCol(Int16 value) { iStartCol_ = value; }
    [[nodiscard]] Int16 NumCols() const { return iNumCols_; }
    void NumCols(Int16 value) { iNumCols_ = value; }
    [[nodiscard]] Int16 ColGap() const { return iColGap_; }
    void ColGap(Int16 value) { iColGap_ = value; }
    [[nodiscard]] Int16 Page() const { return iPage_; }
    void Page(Int16 value) { iPage_ = value; }
    /// 1 reads row by row, 0 column by column.
    [[nodiscard]] Int16 Orientation() const { return iOrientation_; }
    void Orientation(Int16 value) { iOrientation_ = value; }
    /// Items and choices are kept for the host; no driver reads them.
    [[nodiscard]] Int16 NumItems() const { return iNumItems_; }
    void NumItems(Int16 value) { iNumItems_ = value; }
    [[nodiscard]] Int16 NumChoices() const { return iNumChoices_; }
    void NumChoices(Int16 value) { iNumChoices_ = value; }

private:
    Int16 iStartRow_ = 0;
    Int16 iNumRows_ = 0;
    Int16 iRowGap_ = 0;
    Int16 iStartCol_ = 0;
    Int16 iNumCols_ = 0;
    Int16 iColGap_ = 0;
    Int16 iPage_ = 0;
    Int16 iOrientation_ = 0;
    Int16 iNumItems_ = 0;
    Int16 iNumChoices_ = 0;
};

} // namespace kel
