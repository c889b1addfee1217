// SPDX-License-Identifier: MIT
#include "platform/windows/FaultContext.h"

namespace kel {

namespace {

/// Records may have been made of damaged memory: a chain is followed so far and no further.
constexpr int kMostRecords = 64;

} // namespace

std::uint32_t innermostCode(const EXCEPTION_RECORD& record) noexcept
{
    const EXCEPTION_RECORD* innermost = &record;
    for (int count = 1; innermost->ExceptionRecord && count < kMostRecords; ++count)
        innermost = innermost->ExceptionRecord;
    return innermost->ExceptionCode;
}

bool isLostCall(const EXCEPTION_POINTERS& fault) noexcept
{
    const EXCEPTION_RECORD& record = *fault.ExceptionRecord;
    return record.ExceptionCode == static_cast<DWORD>(EXCEPTION_ACCESS_VIOLATION) && record.NumberParameters >= 2 &&
           record.ExceptionInformation[1] == placeOf(*fault.ContextRecord);
}

} // namespace kel
