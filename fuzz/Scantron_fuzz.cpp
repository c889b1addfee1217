#include "drivers/scantron/FormCommands.h"
#include "drivers/scantron/SheetCells.h"
#include "reader/clsKELReaderWindow.h"

#include <cstddef>
#include <cstring>

using namespace kel;

// Seven 16-bit numbers describe a window; the bytes behind them fill its cells, and a page of 48 columns.
extern "C" int LLVMFuzzerTestOneInput(const Byte* data, std::size_t size)
{
    Int16 numbers[7];
    if (size < sizeof numbers)
        return 0;
    std::memcpy(numbers, data, sizeof numbers);
    data += sizeof numbers;
    size -= sizeof numbers;

    clsKELReaderWindow window;
    window.StartRow(numbers[0]);
    window.NumRows(numbers[1]);
    window.RowGap(numbers[2]);
    window.StartCol(numbers[3]);
    window.NumCols(numbers[4]);
    window.ColGap(numbers[5]);
    window.Orientation(numbers[6]);
    const auto expected = [](const RuntimeFailure& failure) {
        return failure.code() == FailureCode::SubscriptOutOfRange || failure.code() == FailureCode::Overflow;
    };
    MarkArray marks(64, 48);
    try {
        static_cast<void>(windowDefinitionST(1, window));
        WindowCellsST cells(window);
        for (std::size_t i = 0; i < size; ++i) {
            const auto cell = cells.next();
            if (!cell)
                break;
            marks(cell->row, cell->column) = data[i];
        }
    } catch (const RuntimeFailure& failure) {
        if (!expected(failure))
            __builtin_trap();
    }
    try {
        PageSideST side(marks, 48);
        for (std::size_t i = 0; i < size; ++i)
            side.store(data[i]);
    } catch (const RuntimeFailure& failure) {
        if (!expected(failure))
            __builtin_trap();
    }
    return 0;
}
