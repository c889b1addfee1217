#include "drivers/common/PackedMarks.h"

#include <cstddef>

using namespace kel;

extern "C" int LLVMFuzzerTestOneInput(const Byte* data, std::size_t size)
{
    PackedRows rows(150, 9);
    try {
        for (std::size_t i = 0; i < size; ++i)
            rows.take(data[i]);
    } catch (const RuntimeFailure& failure) {
        if (failure.code() != FailureCode::SubscriptOutOfRange && failure.code() != FailureCode::Overflow)
            __builtin_trap();
    }
    return 0;
}
