// SPDX-License-Identifier: MIT
// How fast the replies of the Sekonic serial readers become marks, in bytes a second.

#include "drivers/scanning_systems/PageReply.h"
#include "drivers/scanning_systems/WindowReply.h"

#include <benchmark/benchmark.h>

#include <string>

using namespace kel;

namespace {

constexpr Int32 kRows = 63;
constexpr Int32 kColumns = 48;

/// A page with so many marks a row, spread over its columns.
std::string pageReply(Int32 marksPerRow)
{
    std::string reply;
    for (Int32 row = 0; row < kRows; ++row) {
        for (Int32 mark = 0; mark < marksPerRow; ++mark) {
            reply += static_cast<char>('0' + mark * kColumns / marksPerRow);
            reply += static_cast<char>('1' + (row + mark) % 15);
        }
        reply += '\r';
    }
    return reply;
}

void pageReplySS(benchmark::State& state)
{
    const std::string reply = pageReply(static_cast<Int32>(state.range(0)));
    MarkArray marks(kRows, kColumns);
    for (auto _ : state) {
        PageReplySS page;
        for (const char byte : reply)
            benchmark::DoNotOptimize(page.take(marks, static_cast<Byte>(byte), ColumnLettersSS::Upwards));
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(reply.size()));
}
BENCHMARK(pageReplySS)->Name("ScanningSystems/page")->ArgName("marks")->Arg(0)->Arg(4)->Arg(48);

/// Windows of ten rows and five columns, one below the other, with so many marks a row.
void windowReplySS(benchmark::State& state)
{
    std::vector<Reference<clsKELReaderWindow>> windows;
    std::string reply;
    for (Int16 window = 0; window < 6; ++window) {
        auto cWindow = makeReference<clsKELReaderWindow>();
        cWindow->Page(1);
        cWindow->StartRow(static_cast<Int16>(1 + window * 10));
        cWindow->NumRows(10);
        cWindow->RowGap(1);
        cWindow->StartCol(3);
        cWindow->NumCols(5);
        cWindow->ColGap(2);
        windows.push_back(cWindow);
        for (Int16 row = 0; row < 10; ++row) {
            std::string field;
            for (std::int64_t mark = 0; mark < state.range(0); ++mark)
                field.append(1, static_cast<char>('1' + mark)).append("7");
            reply += (field.empty() ? "  " : field) + ",";
        }
        reply += '\r';
    }
    MarkArray marks(kRows, kColumns);
    WindowPlacingSS at;
    for (auto _ : state) {
        placeWindowReplySS(reply, windows, 1, marks, at);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(reply.size()));
}
BENCHMARK(windowReplySS)->Name("ScanningSystems/windows")->ArgName("marks")->Arg(0)->Arg(1)->Arg(5);

} // namespace
