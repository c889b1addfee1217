// SPDX-License-Identifier: MIT
#include "contract/Dictionary.h"
#include "drivers/apperson/DataLines.h"
#include "drivers/apperson/RawBlock.h"

#include <benchmark/benchmark.h>

#include <string>

namespace kel {
namespace {

/// A line with the answers to so many questions, one letter each but for some with none or two.
std::string line(const std::string& fields, int questions)
{
    std::string bytes = fields;
    for (int question = 1; question <= questions; ++question)
        bytes += question % 10 == 0 ? "," : question % 7 == 0 ? "AB," : "C,";
    return bytes + "\r\n";
}

void countBytes(benchmark::State& state, std::size_t bytes)
{
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
}

void Decode_BenchMark3000Line(benchmark::State& state)
{
    const std::string bytes = line(std::string(118, '1'), static_cast<int>(state.range(0)));
    for (auto _ : state) {
        Dictionary oDataDict;
        oDataDict.CompareMode(kTextCompare);
        BenchMarkLineAP lines(oDataDict);
        for (const char byte : bytes)
            benchmark::DoNotOptimize(lines.take(static_cast<Byte>(byte)));
        benchmark::DoNotOptimize(oDataDict.Count());
    }
    countBytes(state, bytes.size());
}
BENCHMARK(Decode_BenchMark3000Line)->Arg(50)->Arg(200);

void Decode_Advantage1200Line(benchmark::State& state)
{
    const std::string bytes = line(std::string(32, '1'), static_cast<int>(state.range(0)));
    for (auto _ : state) {
        Dictionary oDataDict;
        oDataDict.CompareMode(kTextCompare);
        Advantage1200LineAP lines(oDataDict);
        for (const char byte : bytes)
            benchmark::DoNotOptimize(lines.take(static_cast<Byte>(byte), True));
        benchmark::DoNotOptimize(oDataDict.Count());
    }
    countBytes(state, bytes.size());
}
BENCHMARK(Decode_Advantage1200Line)->Arg(50)->Arg(200);

void Decode_AdvantageLinkBlock(benchmark::State& state)
{
    const std::string bytes = std::string(14 + 49 * 12, '\x15') + '\xC8';
    for (auto _ : state) {
        RawBlockAP block = newBlockAdvantageLinkAP();
        for (const char byte : bytes)
            block.take(static_cast<Byte>(byte));
        MarkArray iSide1Arr(50, 12);
        setMarksAdvantageLinkAP(iSide1Arr, block);
        benchmark::DoNotOptimize(iSide1Arr.elements().data());
    }
    countBytes(state, bytes.size());
}
BENCHMARK(Decode_AdvantageLinkBlock);

void Decode_GradeMasterBlock(benchmark::State& state)
{
    const std::string bytes = "0000012345    " + std::string(100, '\x15') + '\xD9';
    for (auto _ : state) {
        RawBlockAP block = newBlockGradeMasterAP();
        Byte bValue = 0;
        for (const char byte : bytes)
            block.take(static_cast<Byte>(byte));
        MarkArray iSide1Arr(100, 5);
        setMarksGradeMasterAP(iSide1Arr, block, 1, bValue);
        benchmark::DoNotOptimize(iSide1Arr.elements().data());
    }
    countBytes(state, bytes.size());
}
BENCHMARK(Decode_GradeMasterBlock);

} // namespace
} // namespace kel
