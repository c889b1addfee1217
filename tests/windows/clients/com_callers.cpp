// SPDX-License-Identifier: MIT
// Hosts of other makers' compilers: Visual Basic calls with a stack that is aligned to 4, and Delphi has the processor
// find faults in numbers.

#include "tests/windows/clients/Host.h"

#include <cstdint>
#include <xmmintrin.h>

namespace {

constexpr kelReaderType kVMR138 = kelReaderTypePDIVMR138;

class Callers : public HostTest {
protected:
    void SetUp() override
    {
        HostTest::SetUp();
        reader = newReader();
        ASSERT_TRUE(reader);
    }
    void TearDown() override
    {
        reader = {};
        HostTest::TearDown();
    }

    Ptr<_clsKELReader> reader;
};

#if !defined(_WIN64)

/// Calls a function of an object, which takes its arguments off the stack, with the stack so far from a multiple of 16.
HRESULT callOffBy(std::uint32_t distance, void* function, void* object, std::uint32_t first, void* second)
{
    HRESULT result = 0;
    asm volatile("movl %%esp, %%esi\n\t"
                 "andl $-16, %%esp\n\t"
                 "subl %%edi, %%esp\n\t"
                 "pushl %%ebx\n\t"
                 "pushl %%edx\n\t"
                 "pushl %%ecx\n\t"
                 "call *%%eax\n\t"
                 "movl %%esi, %%esp"
                 : "=a"(result), "+c"(object), "+d"(first)
                 : "0"(function), "b"(second), "D"(distance)
                 : "esi", "memory", "cc");
    return result;
}

TEST_F(Callers, MayAlignTheStackTo4)
{
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpmf-conversions"
    auto* const loadDefaults = reinterpret_cast<void*>(reader.get()->*&_clsKELReader::LoadDefaults);
#pragma GCC diagnostic pop
    for (const std::uint32_t distance : {0U, 4U, 8U, 12U}) {
        VARIANT_BOOL loaded = VARIANT_FALSE;
        EXPECT_EQ(callOffBy(distance, loadDefaults, reader.get(), kVMR138, &loaded), S_OK) << distance;
        EXPECT_EQ(loaded, VARIANT_TRUE);
        EXPECT_EQ(get(reader.get(), L"ReaderName").text(), L"Peripheral Dynamics Inc. VMR138");
    }
}

#endif

/// How the processor computes for this thread.
struct Numbers {
    std::uint16_t controlWord = 0;
    unsigned mxCsr = 0;

    static Numbers now()
    {
        Numbers numbers;
        asm volatile("fnstcw %0" : "=m"(numbers.controlWord));
        numbers.mxCsr = _mm_getcsr() & ~0x3FU;
        return numbers;
    }
    void use() const
    {
        asm volatile("fnclex\n\tfldcw %0" : : "m"(controlWord));
        _mm_setcsr(mxCsr);
    }
};

TEST_F(Callers, MayHaveTheProcessorFindFaultsInNumbers)
{
    const Numbers before = Numbers::now();
    // Invalid operations, divisions by zero and overflows.
    const Numbers delphis{0x1372, 0x1900};
    constexpr int kCurrentUser = 0x80000001;
    delphis.use();
    const bool loaded = get(reader.get(), L"LoadDefaults", {Value(static_cast<int>(kVMR138))}).truth();
    const bool saved =
        get(reader.get(), L"SaveSettings", {Value(kCurrentUser), Value(L"Software\\KELReader81U tests\\Callers")})
            .truth();
    const bool read =
        get(reader.get(), L"LoadSettings", {Value(kCurrentUser), Value(L"Software\\KELReader81U tests\\Callers")})
            .truth();
    const Numbers after = Numbers::now();
    before.use();
    EXPECT_TRUE(loaded);
    EXPECT_TRUE(saved);
    EXPECT_TRUE(read);
    EXPECT_EQ(after.controlWord, delphis.controlWord);
    EXPECT_EQ(after.mxCsr, delphis.mxCsr);
}

} // namespace
