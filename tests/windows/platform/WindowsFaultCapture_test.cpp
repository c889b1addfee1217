// SPDX-License-Identifier: MIT
#include "platform/windows/WindowsFaultCapture.h"

#include "failure/guarded.h"
#include "types/RuntimeFailure.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <thread>
#include <xmmintrin.h>

namespace kel {
namespace {

/// What the processor is to be asked for, out of the optimizer's sight.
template <class T>
T* volatile null = nullptr;
volatile int zero = 0;
void (*volatile nowhere)() = reinterpret_cast<void (*)()>(0x10);

void raise(const FaultRecord& record)
{
    throw RuntimeFailure(static_cast<std::int32_t>(record.code), "fault");
}

class WindowsFaultCaptureTest : public ::testing::Test {
protected:
    WindowsFaultCaptureTest() { WindowsFaultCapture::instance().install(&raise); }
    void TearDown() override
    {
        EXPECT_EQ(std::current_exception(), nullptr);
        EXPECT_EQ(std::uncaught_exceptions(), 0);
    }

    /// The code of the fault that a procedure of the component meets.
    template <class Procedure>
    std::uint32_t faultOf(Procedure procedure)
    {
        const detail::CalledByHost running;
        try {
            running.run(procedure);
        } catch (const RuntimeFailure& failure) {
            faultCaught();
            EXPECT_TRUE(componentRuns());
            return static_cast<std::uint32_t>(failure.number());
        }
        return 0;
    }

    /// The same; what the procedure had built is taken down on the way.
    template <class Procedure>
    std::uint32_t cleanFaultOf(Procedure procedure)
    {
        struct Built {
            explicit Built(int& count) : count_(++count) {}
            ~Built() { --count_; }
            Built(const Built&) = delete;
            Built& operator=(const Built&) = delete;
            int& count_;
        };
        const std::uint32_t code = faultOf([&] {
            const Built built(living);
            procedure();
        });
        EXPECT_EQ(living, 0);
        return code;
    }

    int living = 0;
};

TEST_F(WindowsFaultCaptureTest, AFaultIsAnExceptionOfTheFailingStatement)
{
    EXPECT_EQ(cleanFaultOf([] { *null<int> = 1; }), 0xC0000005U);
    EXPECT_EQ(cleanFaultOf([] { static_cast<void>(*null<volatile int>); }), 0xC0000005U);
    EXPECT_EQ(cleanFaultOf([] { zero = 7 / zero; }), 0xC0000094U);
    EXPECT_EQ(cleanFaultOf([] { asm volatile("ud2"); }), 0xC000001DU);
    EXPECT_EQ(cleanFaultOf([] { asm volatile("hlt"); }), 0xC0000096U);
}

TEST_F(WindowsFaultCaptureTest, ACallToNowhereFailsInItsCaller)
{
    EXPECT_EQ(cleanFaultOf([] { (*null<void()>)(); }), 0xC0000005U);
    EXPECT_EQ(cleanFaultOf([] { (*nowhere)(); }), 0xC0000005U);
}

TEST_F(WindowsFaultCaptureTest, AFaultThatALibraryDoesNotHandleIsItsCallers)
{
    using Fill = void(WINAPI*)(void*, SIZE_T, int);
    const auto fill = reinterpret_cast<Fill>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), "RtlFillMemory")));
    ASSERT_NE(fill, nullptr);
    EXPECT_EQ(faultOf([&] { fill(null<char>, 8, 'x'); }), 0xC0000005U);
}

TEST_F(WindowsFaultCaptureTest, FaultsMayFollowOneAnother)
{
    for (int i = 0; i < 1000; ++i)
        ASSERT_EQ(faultOf([] { *null<int> = 1; }), 0xC0000005U);
}

TEST_F(WindowsFaultCaptureTest, EachThreadHasItsOwn)
{
    std::thread first([&] {
        for (int i = 0; i < 200; ++i)
            ASSERT_EQ(faultOf([] { *null<int> = 1; }), 0xC0000005U);
    });
    first.join();
    EXPECT_FALSE(componentRuns());
}

// The handler of a host skips its own faulty statement.
int seenByHost = 0;

LONG CALLBACK hostHandler(EXCEPTION_POINTERS* fault)
{
    if (fault->ExceptionRecord->ExceptionCode != static_cast<DWORD>(EXCEPTION_ILLEGAL_INSTRUCTION))
        return EXCEPTION_CONTINUE_SEARCH;
    ++seenByHost;
#if defined(_WIN64)
    fault->ContextRecord->Rip += 2; // the length of ud2
#else
    fault->ContextRecord->Eip += 2;
#endif
    return EXCEPTION_CONTINUE_EXECUTION;
}

TEST_F(WindowsFaultCaptureTest, AFaultOutsideTheComponentIsTheHosts)
{
    void* const handler = ::AddVectoredExceptionHandler(FALSE, &hostHandler);
    asm volatile("ud2");
    EXPECT_EQ(seenByHost, 1);
    {
        const ComponentCode running;
        const HostCode host;
        asm volatile("ud2");
    }
    EXPECT_EQ(seenByHost, 2);
    EXPECT_EQ(faultOf([] { asm volatile("ud2"); }), 0xC000001DU);
    EXPECT_EQ(seenByHost, 2);
    ::RemoveVectoredExceptionHandler(handler);
}

// A library's fault that the library handles itself is nobody else's: this one is met and swallowed by the system.
TEST_F(WindowsFaultCaptureTest, ALibraryMayHandleItsOwnFaults)
{
    EXPECT_EQ(faultOf([] { EXPECT_TRUE(::IsBadReadPtr(reinterpret_cast<const void*>(0x10), 4)); }), 0U);
}

TEST_F(WindowsFaultCaptureTest, WhateverIsRaisedAndNotHandledIsTheCallers)
{
    constexpr DWORD kGoesOn = 0;
    for (const DWORD code : std::initializer_list<DWORD>{
             0x80000001, 0x80000002, 0x80000003, 0x80000004, 0xC0000005, 0xC0000006, 0xC0000008, 0xC000001D, 0xC0000025,
             0xC0000026, 0xC000008C, 0xC000008D, 0xC000008E, 0xC000008F, 0xC0000090, 0xC0000091, 0xC0000092, 0xC0000093,
             0xC0000094, 0xC0000095, 0xC0000096, 0xC00000FD, 0xC000013A, 0xE06D7363, 0x12345678, 0xE0000001}) {
        for (const DWORD flags : {kGoesOn, DWORD{EXCEPTION_NONCONTINUABLE}})
            EXPECT_EQ(faultOf([&] { ::RaiseException(code, flags, 0, nullptr); }), code)
                << std::hex << code << ' ' << flags;
    }
}

TEST_F(WindowsFaultCaptureTest, TheInnermostRecordSaysWhatItWas)
{
    EXCEPTION_RECORD first{};
    first.ExceptionCode = 0xC0000094;
    EXCEPTION_RECORD second{};
    second.ExceptionCode = 0xC0000026;
    second.ExceptionRecord = &first;
    EXCEPTION_RECORD third{};
    third.ExceptionCode = 0xC0000025;
    third.ExceptionRecord = &second;
    using Raise = void(WINAPI*)(EXCEPTION_RECORD*);
    const auto raiseRecord = reinterpret_cast<Raise>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), "RtlRaiseException")));
    ASSERT_NE(raiseRecord, nullptr);
    EXPECT_EQ(faultOf([&] { raiseRecord(&third); }), 0xC0000094U);
    second.ExceptionRecord = &second; // a ring ends somewhere
    EXPECT_EQ(faultOf([&] { raiseRecord(&third); }), 0xC0000026U);
}

// What a function that throws nothing meets, its caller's caller reports.
[[gnu::noinline]] void throwsNothing() noexcept
{
    *null<int> = 1;
}

TEST_F(WindowsFaultCaptureTest, AFunctionThatThrowsNothingIsLeftTheWayBack)
{
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(faultOf([] { throwsNothing(); }), 0xC0000005U);
}

[[gnu::noinline]] int deep(volatile int* depth)
{
    volatile char room[512];
    room[0] = static_cast<char>(*depth);
    *depth = *depth + 1;
    return *depth != 0 ? deep(depth) + room[0] : 0;
}

TEST_F(WindowsFaultCaptureTest, AFullStackIsGivenBackAgainAndAgain)
{
    volatile int depth = 0;
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(faultOf([&] { static_cast<void>(deep(&depth)); }), 0xC00000FDU);
        EXPECT_EQ(faultOf([] { zero = 7 / zero; }), 0xC0000094U);
    }
}

// The way back of a procedure deep down leaves no room: the one of its caller does.
TEST_F(WindowsFaultCaptureTest, AFullStackIsGivenBackThroughTheProceduresThatFilledIt)
{
    struct Recursion {
        static int next(WindowsFaultCaptureTest& test, int depth)
        {
            const detail::CalledByHost running;
            return running.run([&] { return next(test, depth + 1) + 1; });
        }
    };
    EXPECT_EQ(faultOf([&] { Recursion::next(*this, 0); }), 0xC00000FDU);
    EXPECT_EQ(cleanFaultOf([] { *null<int> = 1; }), 0xC0000005U);
}

TEST_F(WindowsFaultCaptureTest, NumericFaultsThatTheHostWantsAreNotTheComponents)
{
    std::uint16_t before = 0;
    asm volatile("fnstcw %0" : "=m"(before));
    const unsigned mxCsrBefore = _mm_getcsr();
    const std::uint16_t delphis = 0x1332; // invalid operations, divisions by zero and overflows are faults
    asm volatile("fldcw %0" : : "m"(delphis));
    _mm_setcsr(0x1900);
    const auto controlWord = [] {
        std::uint16_t word = 0;
        asm volatile("fnstcw %0" : "=m"(word));
        return word & 0xF3F; // without what is always set
    };
    const std::uint32_t code = faultOf([&] {
        volatile double nothing = 0;
        volatile double endless = 1 / nothing;
        volatile long double wideNothing = 0;
        volatile long double wide = 1 / wideNothing;
        EXPECT_GT(endless, 1);
        EXPECT_GT(wide, 1);
        const HostCode host;
        EXPECT_EQ(controlWord(), delphis & 0xF3F);
        EXPECT_EQ(_mm_getcsr() & ~0x3FU, 0x1900U);
    });
    const int wordAfter = controlWord();
    const unsigned mxCsrAfter = _mm_getcsr() & ~0x3FU;
    asm volatile("fnclex; fldcw %0" : : "m"(before));
    _mm_setcsr(mxCsrBefore);
    EXPECT_EQ(code, 0U);
    EXPECT_EQ(wordAfter, delphis & 0xF3F);
    EXPECT_EQ(mxCsrAfter, 0x1900U);
}

// A library may switch the x87's faults on: they come up once, and not again at the next statement that computes.
TEST_F(WindowsFaultCaptureTest, ANumericFaultComesUpOnce)
{
    const std::uint16_t allFaults = 0x1370;
    std::uint16_t before = 0;
    asm volatile("fnstcw %0" : "=m"(before));
    volatile long double nothing = 0;
    EXPECT_EQ(faultOf([&] {
                  asm volatile("fldcw %0" : : "m"(allFaults));
                  volatile long double endless = 1 / nothing;
                  asm volatile("fwait");
                  static_cast<void>(endless);
              }),
              0xC000008EU);
    volatile long double sum = nothing + 1;
    EXPECT_EQ(sum, 1);
    asm volatile("fnclex; fldcw %0" : : "m"(before));
}

TEST_F(WindowsFaultCaptureTest, TheLastErrorOfTheSystemStays)
{
    ::SetLastError(1234);
    {
        const ComponentCode running;
        const HostCode host;
    }
    EXPECT_EQ(::GetLastError(), 1234U);
}

} // namespace
} // namespace kel
