#include "drivers/ncs/PageDecoder.h"

#include <cstddef>

using namespace kel;

// The lowest bit of the first byte says whether the sheet is read on two sides; the rest is the reply.
extern "C" int LLVMFuzzerTestOneInput(const Byte* data, std::size_t size)
{
    if (size == 0)
        return 0;
    PageDecoderNCS page((data[0] & 1) != 0);
    try {
        for (std::size_t i = 1; i < size && !page.isDone(); ++i)
            page.take(data[i]);
    } catch (const RuntimeFailure& failure) {
        if (failure.code() != FailureCode::SubscriptOutOfRange && failure.code() != FailureCode::Overflow)
            __builtin_trap();
    }
    if (page.barcodes().UBound() < 1)
        __builtin_trap();
    return 0;
}
