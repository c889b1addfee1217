#include "platform/windows/WindowsFaultCapture.h"

#include "types/RuntimeFailure.h"

#include <gtest/gtest.h>

#include <thread>

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

    /// The code of the fault that a procedure of the component meets; what it had built is taken down on the way.
    template <class Procedure>
    std::uint32_t faultOf(Procedure procedure)
    {
        struct Built {
            explicit Built(int& count) : count_(++count) {}
            ~Built() { --count_; }
            Built(const Built&) = delete;
            Built& operator=(const Built&) = delete;
            int& count_;
        };
        const ComponentCode running;
        try {
            const Built built(living);
            procedure();
        } catch (const RuntimeFailure& failure) {
            EXPECT_FALSE(componentRuns());
            faultCaught();
            return static_cast<std::uint32_t>(failure.number());
        }
        return 0;
    }

    int living = 0;
};

TEST_F(WindowsFaultCaptureTest, AFaultIsAnExceptionOfTheFailingStatement)
{
    EXPECT_EQ(faultOf([] { *null<int> = 1; }), 0xC0000005U);
    EXPECT_EQ(faultOf([] { static_cast<void>(*null<volatile int>); }), 0xC0000005U);
    EXPECT_EQ(faultOf([] { zero = 7 / zero; }), 0xC0000094U);
    EXPECT_EQ(faultOf([] { asm volatile("ud2"); }), 0xC000001DU);
    EXPECT_EQ(faultOf([] { asm volatile("hlt"); }), 0xC0000096U);
    EXPECT_EQ(living, 0);
}

TEST_F(WindowsFaultCaptureTest, ACallToNowhereFailsInItsCaller)
{
    EXPECT_EQ(faultOf([] { (*null<void()>)(); }), 0xC0000005U);
    EXPECT_EQ(faultOf([] { (*nowhere)(); }), 0xC0000005U);
    EXPECT_EQ(living, 0);
}

TEST_F(WindowsFaultCaptureTest, AFaultThatALibraryDoesNotHandleIsItsCallers)
{
    using Fill = void(WINAPI*)(void*, SIZE_T, int);
    const auto fill = reinterpret_cast<Fill>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), "RtlFillMemory")));
    ASSERT_NE(fill, nullptr);
    EXPECT_EQ(faultOf([&] { fill(null<char>, 8, 'x'); }), 0xC0000005U);
    EXPECT_EQ(living, 0);
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
    fault->ContextRecord->Rip += 2; // the length of ud2
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
    EXPECT_EQ(living, 0);
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
