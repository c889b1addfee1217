// SPDX-License-Identifier: MIT
#include "drivers/peripheral_dynamics/HalfRow.h"
#include "fuzz/Session.h"

#include <cstddef>
#include <string_view>

using namespace kel;

// An odd first byte is followed by a session; an even one by the row that the rest begins in, from the last row upwards
// as on the wire.

namespace {

constexpr kelReaderType kPeripheralDynamicsModels[] = {kelReaderTypePDIVMR138};
constexpr Int16 kMark = 241;

void fuzzRows(Input input)
{
    const std::string_view digits = input.text().substr(0, 1);
    demand(thresholdHighDigitPD(digits) <= 0xF0 && thresholdLowDigitPD(digits) <= 0x0F, "a digit has four bits");
    MarkArray marks(500, 14);
    Int32 row = input.byte();
    // Each row further is refused as these are.
    constexpr Int32 kLastRefused = -100;
    for (bool left = true; !input.empty() && row >= kLastRefused; left = !left) {
        try {
            setHalfRowPD(marks, row, left ? 1 : 7, input.byte(), kMark);
        } catch (const RuntimeFailure& failure) {
            demand(failure.code() == FailureCode::SubscriptOutOfRange, "the failure is meant");
        }
        row -= left ? 0 : 1;
    }
    for (const Int16 mark : marks.elements())
        demand(mark == 0 || mark == kMark, "a position is marked or not");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const Byte* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const Input input(data + 1, size - 1);
    if ((data[0] & 1) != 0)
        fuzzSerialSession(kPeripheralDynamicsModels, input);
    else
        fuzzRows(input);
    return 0;
}
