// SPDX-License-Identifier: MIT
#include "contract/clsKELReaderWindow.h"
#include "drivers/common/PackedMarks.h"
#include "drivers/ncs/PageDecoder.h"
#include "drivers/peripheral_dynamics/HalfRow.h"
#include "drivers/scantron/SheetCells.h"

#include <benchmark/benchmark.h>

#include <string>

namespace kel {
namespace {

void Decode_PeripheralDynamics(benchmark::State& state)
{
    MarkArray marks(500, 14);
    for (auto _ : state) {
        for (Int32 row = 60; row >= 1; --row) {
            setHalfRowPD(marks, row, 1, 0x55, 241);
            setHalfRowPD(marks, row, 7, 0x6A, 241);
        }
        benchmark::DoNotOptimize(marks.elements().data());
    }
    state.SetBytesProcessed(state.iterations() * 120);
}
BENCHMARK(Decode_PeripheralDynamics);

void Decode_ScantronPage(benchmark::State& state)
{
    MarkArray marks(63, 48);
    for (auto _ : state) {
        PageSideST side;
        for (int i = 0; i < 63 * 48; ++i)
            side.store(marks, static_cast<Int16>(i % 10));
        benchmark::DoNotOptimize(marks.elements().data());
    }
    state.SetBytesProcessed(state.iterations() * 63 * 48);
}
BENCHMARK(Decode_ScantronPage);

void Decode_ScantronWindow(benchmark::State& state)
{
    const auto window = makeReference<clsKELReaderWindow>();
    window->StartRow(1);
    window->NumRows(60);
    window->RowGap(1);
    window->StartCol(48);
    window->NumCols(24);
    window->ColGap(-2);
    MarkArray marks(63, 48);
    for (auto _ : state) {
        WindowCellsST cells(window);
        while (cells.next())
            marks(cells.row(), cells.column()) = 3;
        benchmark::DoNotOptimize(marks.elements().data());
    }
    state.SetBytesProcessed(state.iterations() * 60 * 24);
}
BENCHMARK(Decode_ScantronWindow);

void Decode_NcsPage(benchmark::State& state)
{
    std::string page;
    for (int row = 0; row < 100; ++row) {
        page += "a0123456789ABCDEF";
        page += std::string("\x15") + static_cast<char>(0x40 + 16) + "0";
        page += "0123456789ABCDEF";
    }
    for (auto _ : state) {
        PageDecoderNCS decoder([] { return false; });
        for (const char c : page)
            decoder.take(static_cast<Byte>(c));
        benchmark::DoNotOptimize(decoder.side1().elements().data());
    }
    state.SetBytesProcessed(state.iterations() * 100 * 48); // decoded cells
}
BENCHMARK(Decode_NcsPage);

void Decode_PackedMarks(benchmark::State& state)
{
    for (auto _ : state) {
        PackedRows rows(150, 9);
        for (int i = 0; i < 300; ++i)
            rows.take(0x55);
        benchmark::DoNotOptimize(rows.marks().elements().data());
    }
    state.SetBytesProcessed(state.iterations() * 300);
}
BENCHMARK(Decode_PackedMarks);

} // namespace
} // namespace kel
