#include "drivers/peripheral_dynamics/HalfRow.h"

#include <cstddef>
#include <string_view>

using namespace kel;

// The first byte is the row that the rest begins in, from the last row upwards as on the wire.
extern "C" int LLVMFuzzerTestOneInput(const Byte* data, std::size_t size)
{
    if (size == 0)
        return 0;
    MarkArray marks(500, 14);
    Int32 row = data[0];
    for (std::size_t i = 1; i < size; ++i) {
        try {
            setHalfRowPD(marks, row, i % 2 ? 1 : 7, data[i], 241);
        } catch (const RuntimeFailure& failure) {
            if (failure.code() != FailureCode::SubscriptOutOfRange)
                __builtin_trap();
        }
        row -= i % 2 == 0;
    }
    const std::string_view digits(reinterpret_cast<const char*>(data), size < 2 ? size : 1);
    if (thresholdHighDigitPD(digits) > 0xF0 || thresholdLowDigitPD(digits) > 0x0F)
        __builtin_trap();
    return 0;
}
