// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstring>

namespace kel::test {

/// Statements in which the processor finds a fault; none of them comes back. The sanitizers look away, and the compiler
/// must not see what is coming.
#define KEL_FAULTY [[gnu::noinline]] __attribute__((no_sanitize("address", "undefined", "thread")))

KEL_FAULTY inline int readNullAddress()
{
    const volatile int* volatile nowhere = nullptr;
    return *nowhere;
}

KEL_FAULTY inline void writeNullAddress()
{
    volatile int* volatile nowhere = nullptr;
    *nowhere = 1;
}

/// In a function of the system.
KEL_FAULTY inline std::size_t lengthOfNothing()
{
    const char* volatile nowhere = nullptr;
    return std::strlen(nowhere);
}

KEL_FAULTY inline int divideByZero()
{
    volatile int zero = 0;
    volatile int one = 1;
    volatile int result = one / zero;
    return result;
}

KEL_FAULTY inline int callNullFunction()
{
    int (*volatile nothing)() = nullptr;
    return nothing() + 1;
}

KEL_FAULTY inline void illegalInstruction()
{
#if defined(__x86_64__) || defined(__i386__)
    asm volatile("ud2");
#else
    __builtin_trap();
#endif
}

#if defined(__x86_64__) || defined(__i386__)
KEL_FAULTY inline void breakpoint()
{
    asm volatile("int3");
}
#endif

KEL_FAULTY inline void faultThatThrowsNothing() noexcept
{
    static_cast<void>(readNullAddress());
}

/// In a function that the compiler has made no table of, as in a library of C.
void faultWithoutTables();

#undef KEL_FAULTY

} // namespace kel::test
