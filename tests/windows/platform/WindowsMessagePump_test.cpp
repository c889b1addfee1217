// SPDX-License-Identifier: MIT
#include "tests/windows/platform/PortTest.h"

#include <chrono>
#include <thread>

namespace kel {
namespace {

using std::chrono::milliseconds;

class WindowsMessagePumpTest : public test::PortTest {
protected:
    template <class Action>
    static Moment duration(Action action)
    {
        const Moment begin = steadyTime();
        action();
        return steadyTime() - begin;
    }
};

// A port that cannot be watched, such as one under Wine, is looked at every millisecond.
TEST_F(WindowsMessagePumpTest, ATurnBlocksOnAnOpenLineWhereNothingHappens)
{
    open();
    machine.pump().DoEvents();
    const Moment turns = duration([&] {
        for (int turn = 0; turn < 5; ++turn)
            machine.pump().DoEvents();
    });
    EXPECT_GE(turns, milliseconds(4));
}

TEST_F(WindowsMessagePumpTest, EachByteIsSeenInATurn)
{
    open();
    ask("echo warm");
    waitFor(4);
    static_cast<void>(line->Input());
    for (int i = 0; i < 20; ++i) {
        ask("echo x");
        ASSERT_EQ(waitFor(1), 1);
        EXPECT_EQ(line->Input(), "x");
    }
}

TEST_F(WindowsMessagePumpTest, AWaitLooksAtTheLineOnceAMillisecond)
{
    open();
    const Moment end = steadyTime() + std::chrono::seconds(1);
    while (steadyTime() < end) {
        machine.pump().DoEvents();
        ASSERT_EQ(line->InBufferCount(), 0);
    }
    EXPECT_LE(machine.pump().waits(), 1100U);
}

LRESULT CALLBACK addUp(HWND window, UINT message, WPARAM first, LPARAM second)
{
    if (message == WM_APP)
        *reinterpret_cast<int*>(second) += static_cast<int>(first);
    return ::DefWindowProcW(window, message, first, second);
}

TEST_F(WindowsMessagePumpTest, ATurnRunsTheMessagesOfTheThread)
{
    WNDCLASSW kind{};
    kind.lpfnWndProc = &addUp;
    kind.lpszClassName = L"KELReader81U pump test";
    kind.hInstance = ::GetModuleHandleW(nullptr);
    ASSERT_NE(::RegisterClassW(&kind), 0);
    const HWND window =
        ::CreateWindowW(kind.lpszClassName, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, kind.hInstance, nullptr);
    ASSERT_NE(window, nullptr);
    int sum = 0;
    ::PostMessageW(window, WM_APP, 2, reinterpret_cast<LPARAM>(&sum));
    ::PostMessageW(window, WM_APP, 3, reinterpret_cast<LPARAM>(&sum));
    machine.pump().DoEvents();
    EXPECT_EQ(sum, 5);

    // A message of another thread ends a turn that blocks.
    open();
    machine.pump().DoEvents();
    std::thread other([&] { ::PostMessageW(window, WM_APP, 7, reinterpret_cast<LPARAM>(&sum)); });
    other.join();
    machine.pump().DoEvents();
    EXPECT_EQ(sum, 12);
    ::DestroyWindow(window);
}

TEST_F(WindowsMessagePumpTest, TheEndOfTheThreadsLoopIsLeftToTheHost)
{
    ::PostQuitMessage(7);
    machine.pump().DoEvents();
    EXPECT_GE(duration([&] {
                  for (int turn = 0; turn < 5; ++turn)
                      machine.pump().DoEvents();
              }),
              milliseconds(4));
    MSG message{};
    ASSERT_TRUE(::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(message.message, static_cast<UINT>(WM_QUIT));
    EXPECT_EQ(message.wParam, 7U);
}

TEST_F(WindowsMessagePumpTest, ATimerTurnsItselfOffWithinATurn)
{
    const auto timer = machine.newScanTimer();
    timer->Interval(60);
    timer->Enabled(True);
    ::Sleep(100);
    EXPECT_EQ(timer->Enabled(), True);
    machine.pump().DoEvents();
    EXPECT_EQ(timer->Enabled(), False);

    const Moment wait = duration([&] {
        timer->Enabled(True);
        while (timer->Enabled())
            machine.pump().DoEvents();
    });
    EXPECT_GE(wait, milliseconds(55));
}

TEST_F(WindowsMessagePumpTest, ATimerTurnsItselfOffInTheHostsLoop)
{
    const auto timer = machine.newScanTimer();
    timer->Interval(50);
    timer->Enabled(True);
    MSG message{};
    const Moment end = steadyTime() + test::kPatience;
    while (timer->Enabled() && steadyTime() < end) {
        ::MsgWaitForMultipleObjectsEx(0, nullptr, 100, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
        while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
            ::DispatchMessageW(&message);
    }
    EXPECT_EQ(timer->Enabled(), False);
}

TEST_F(WindowsMessagePumpTest, APauseTakesItsWholeTimeAndRunsNoEvent)
{
    open();
    const auto timer = machine.newScanTimer();
    timer->Interval(10);
    timer->Enabled(True);
    ask("late 50 x");
    EXPECT_GE(duration([&] { machine.pump().Sleep(250); }), milliseconds(250));
    EXPECT_EQ(timer->Enabled(), True);
    EXPECT_EQ(waitFor(1), 1);
}

} // namespace
} // namespace kel
