// SPDX-License-Identifier: MIT
#include "contract/clsKELReaderWindow.h"
#include "drivers/scantron/FormCommands.h"
#include "drivers/scantron/SheetCells.h"
#include "fuzz/Session.h"

#include <cstddef>

using namespace kel;

// An odd first byte is followed by a session; an even one by seven numbers that describe a window, and by bytes that
// fill its cells, and a page of 48 columns.

namespace {

constexpr kelReaderType kScantronModels[] = {kelReaderTypeScantronScanMark2000, kelReaderTypeScantron8000,
                                             kelReaderTypeScantronScanMarkES2010, kelReaderTypeScantronScanMarkES2800};

template <class Body>
void mayFail(Body&& body)
{
    try {
        body();
    } catch (const RuntimeFailure& failure) {
        demand(failure.code() == FailureCode::SubscriptOutOfRange || failure.code() == FailureCode::Overflow,
               "the failure is meant");
    }
}

void fuzzCells(Input input)
{
    const auto window = makeReference<clsKELReaderWindow>();
    window->StartRow(input.number16());
    window->NumRows(input.number16());
    window->RowGap(input.number16());
    window->StartCol(input.number16());
    window->NumCols(input.number16());
    window->ColGap(input.number16());
    window->Orientation(input.number16());
    MarkArray marks(64, 48);
    mayFail([&] {
        WindowFieldsST fields;
        static_cast<void>(windowDefinitionST(1, *window, fields));
        WindowCellsST cells(window);
        for (const Byte byte : input.rest()) {
            if (!cells.next())
                break;
            marks(cells.row(), cells.column()) = byte;
        }
    });
    mayFail([&] {
        PageSideST side;
        for (const Byte byte : input.rest())
            side.store(marks, byte);
    });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const Byte* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const Input input(data + 1, size - 1);
    if ((data[0] & 1) != 0)
        fuzzSerialSession(kScantronModels, input);
    else
        fuzzCells(input);
    return 0;
}
