// SPDX-License-Identifier: MIT
#include "contract/clsKELReaderWindow.h"

#include "failure/ObjectLife.h"
#include "failure/ProcedureVariables.h"

namespace kel {

struct clsKELReaderWindow::Fields {
    ObjectLife life{"clsKELReaderWindow,1"};
    Int16 iStartRow = 0;
    Int16 iNumRows = 0;
    Int16 iRowGap = 0;
    Int16 iStartCol = 0;
    Int16 iNumCols = 0;
    Int16 iColGap = 0;
    Int16 iPage = 0;
    Int16 iOrientation = 0;
    Int16 iNumItems = 0;
    Int16 iNumChoices = 0;
};

clsKELReaderWindow::clsKELReaderWindow() = default;
clsKELReaderWindow::clsKELReaderWindow(const clsKELReaderWindow& other) = default;
clsKELReaderWindow& clsKELReaderWindow::operator=(const clsKELReaderWindow& other) = default;
clsKELReaderWindow::~clsKELReaderWindow() = default;

std::string clsKELReaderWindow::dumpMembers() const
{
    const Fields& own = *fields_;
    VariableLines lines;
    lines.add("iStartRow, iNumRows, iRowGap, iStartCol, iNumCols, iColGap", own.iStartRow, own.iNumRows, own.iRowGap,
              own.iStartCol, own.iNumCols, own.iColGap);
    lines.add("iPage, iOrientation, iNumItems, iNumChoices", own.iPage, own.iOrientation, own.iNumItems,
              own.iNumChoices);
    return lines.text();
}

Int16 clsKELReaderWindow::StartRow() const
{
    return fields_->iStartRow;
}

void clsKELReaderWindow::StartRow(Int16 value)
{
    fields_->iStartRow = value;
}

Int16 clsKELReaderWindow::NumRows() const
{
    return fields_->iNumRows;
}

void clsKELReaderWindow::NumRows(Int16 value)
{
    fields_->iNumRows = value;
}

Int16 clsKELReaderWindow::RowGap() const
{
    return fields_->iRowGap;
}

void clsKELReaderWindow::RowGap(Int16 value)
{
    fields_->iRowGap = value;
}

Int16 clsKELReaderWindow::StartCol() const
{
    return fields_->iStartCol;
}

void clsKELReaderWindow::StartCol(Int16 value)
{
    fields_->iStartCol = value;
}

Int16 clsKELReaderWindow::NumCols() const
{
    return fields_->iNumCols;
}

void clsKELReaderWindow::NumCols(Int16 value)
{
    fields_->iNumCols = value;
}

Int16 clsKELReaderWindow::ColGap() const
{
    return fields_->iColGap;
}

void clsKELReaderWindow::ColGap(Int16 value)
{
    fields_->iColGap = value;
}

Int16 clsKELReaderWindow::Page() const
{
    return fields_->iPage;
}

void clsKELReaderWindow::Page(Int16 value)
{
    fields_->iPage = value;
}

Int16 clsKELReaderWindow::Orientation() const
{
    return fields_->iOrientation;
}

void clsKELReaderWindow::Orientation(Int16 value)
{
    fields_->iOrientation = value;
}

Int16 clsKELReaderWindow::NumItems() const
{
    return fields_->iNumItems;
}

void clsKELReaderWindow::NumItems(Int16 value)
{
    fields_->iNumItems = value;
}

Int16 clsKELReaderWindow::NumChoices() const
{
    return fields_->iNumChoices;
}

void clsKELReaderWindow::NumChoices(Int16 value)
{
    fields_->iNumChoices = value;
}

} // namespace kel
