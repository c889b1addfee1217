// SPDX-License-Identifier: MIT
#include "drivers/sekonic_usb/MarkBytes.h"

#include <benchmark/benchmark.h>

namespace kel {
namespace {

// One full side, 200 rows of 48 columns.
void Decode_SekonicUsbSide(benchmark::State& state)
{
    Array1<Byte> bytes(1, kMostBytesSR);
    for (Int32 lIndex = 1; lIndex <= kMostBytesSR; ++lIndex)
        bytes(lIndex) = static_cast<Byte>(lIndex);
    MarkArray marks(kMostRowsSR, kColumnsSR);
    MarkCopySR copy;
    for (auto _ : state) {
        benchmark::DoNotOptimize(copyMarksSR(bytes, kMostRowsSR, kColumnsSR, marks, copy));
        benchmark::DoNotOptimize(marks.elements().data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * kMostBytesSR);
}
BENCHMARK(Decode_SekonicUsbSide);

} // namespace
} // namespace kel
