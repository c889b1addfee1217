// SPDX-License-Identifier: MIT
#include "drivers/scantron/FormCommands.h"

#include "contract/clsKELReaderWindow.h"
#include "drivers/common/WindowPositions.h"
#include "types/Text.h"

#include <initializer_list>

namespace kel {

namespace {

std::string fields(std::string text, std::initializer_list<Int16> numbers)
{
    for (const Int16 number : numbers)
        text += " " + CStr(number);
    return text;
}

struct Extent {
    Int16 first;
    Int16 last;
};

Extent extentOf(Int16 start, Int16 count, Int16 gap)
{
    const Int16 far = positionInWindow(start, gap, count);
    return gap < 1 ? Extent{far, start} : Extent{start, far};
}

} // namespace

std::string frameST(const std::string& text)
{
    return "\x1B" + text + "\r";
}

std::string thresholdCommandST(Int16 threshold)
{
    return frameST(fields("THR=", {threshold}));
}

std::string formStartST(Int16 rows1, Int16 rows2, Int16 columns1)
{
    return frameST(fields("FRM=FS", {rows1, rows2, columns1}) + " N N N");
}

std::string pageDefinitionST(int side, Int16 rows, Int16 columns)
{
    return frameST(fields("FRM=DK " + CStr(side) + " 1 1", {rows, columns}) + fields(" L", {rows, columns}));
}

std::string columnDefinitionST(int side, Int16 rows, Int16 columns)
{
    if (columns < 0)
        throw RuntimeFailure(FailureCode::InvalidProcedureCall);
    return frameST(fields("FRM=MC Y N 1 " + CStr(side) + " 1 1", {rows, columns}) + fields(" L", {rows, columns}) +
                   " " + std::string(static_cast<std::size_t>(columns), '1'));
}

std::string windowDefinitionST(int side, const clsKELReaderWindow& window, WindowFieldsST& fields)
{
    const Extent columns = extentOf(window.StartCol(), window.NumCols(), window.ColGap());
    const Extent rows = extentOf(window.StartRow(), window.NumRows(), window.RowGap());
    const bool bLines = window.Orientation() == 1;
    fields = {.sStartRow = CStr(rows.first),
              .sStartCol = CStr(columns.first),
              .sEndRow = CStr(rows.last),
              .sEndCol = CStr(columns.last),
              .sOrient = bLines ? "L" : "C",
              .sNumElements = CStr(bLines ? window.NumRows() : window.NumCols()),
              .sNumChoices = CStr(bLines ? window.NumCols() : window.NumRows())};
    std::string definition = "FRM=DK " + CStr(side);
    for (const std::string& sField : {fields.sStartRow, fields.sStartCol, fields.sEndRow, fields.sEndCol,
                                      fields.sOrient, fields.sNumElements, fields.sNumChoices})
        definition += " " + sField;
    return frameST(definition);
}

std::string formEndST()
{
    return frameST("FRM=LS");
}

} // namespace kel
