// SPDX-License-Identifier: MIT
#include "drivers/common/PackedMarks.h"
#include "fuzz/Input.h"

#include <cstddef>

using namespace kel;

// The bytes of a sheet as the EZData and Chatsworth readers pack them.
extern "C" int LLVMFuzzerTestOneInput(const Byte* data, std::size_t size)
{
    PackedRows rows(150, 9);
    try {
        for (const Byte byte : Input(data, size).rest())
            rows.take(byte);
    } catch (const RuntimeFailure& failure) {
        demand(failure.code() == FailureCode::SubscriptOutOfRange || failure.code() == FailureCode::Overflow,
               "the failure is meant");
    }
    return 0;
}
