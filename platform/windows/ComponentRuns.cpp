// SPDX-License-Identifier: MIT
#include "platform/FaultCapture.h"

#include "platform/windows/ThreadSlot.h"

#include <xmmintrin.h>

namespace kel::detail {

namespace {

const ThreadSlot& runsSlot() noexcept
{
    static const ThreadSlot one;
    return one;
}

// How the host computes, while its own code does not run: MXCSR above the control word of the x87.
const ThreadSlot& hostsNumbersSlot() noexcept
{
    static const ThreadSlot one;
    return one;
}

constexpr unsigned kMxCsrStatus = 0x3F;
constexpr std::uint32_t kOwnNumbers = (std::uint32_t{0x1F80} << 16) | 0x037F; // nothing is a fault

std::uint32_t readNumbers() noexcept
{
    std::uint16_t controlWord = 0;
    asm volatile("fnstcw %0" : "=m"(controlWord));
    return ((_mm_getcsr() & ~kMxCsrStatus) << 16) | controlWord;
}

void writeNumbers(std::uint32_t numbers) noexcept
{
    const auto controlWord = static_cast<std::uint16_t>(numbers);
    // A fault that is pending would come up at once.
    asm volatile("fnclex\n\tfldcw %0" : : "m"(controlWord));
    _mm_setcsr(numbers >> 16);
}

} // namespace

void writeThreadRuns(ThreadRuns runs) noexcept
{
    runsSlot().write(static_cast<std::uintptr_t>(runs));
}

ThreadRuns readThreadRuns() noexcept
{
    return static_cast<ThreadRuns>(runsSlot().read());
}

void leaveHost() noexcept
{
    const std::uint32_t hosts = readNumbers();
    hostsNumbersSlot().write(hosts);
    if (hosts != kOwnNumbers)
        writeNumbers(kOwnNumbers);
}

void returnToHost() noexcept
{
    const auto hosts = static_cast<std::uint32_t>(hostsNumbersSlot().read());
    if (hosts != kOwnNumbers)
        writeNumbers(hosts);
}

void maskNumericFaults() noexcept
{
    writeNumbers(kOwnNumbers);
}

} // namespace kel::detail
