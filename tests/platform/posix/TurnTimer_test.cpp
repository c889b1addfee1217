// SPDX-License-Identifier: MIT
// Timers: they are the pump's, and end within its turns.

#include "platform/TurnTimer.h"

#include "tests/platform/posix/MessagePumpTest.h"

namespace kel {
namespace {

using namespace std::chrono_literals;
using test::expectFailure;
using TurnTimerTest = test::MessagePumpTest;

TEST_F(TurnTimerTest, ATimerTurnsItselfOffWithinATurn)
{
    const auto limit = timer(5);
    EXPECT_EQ(limit->Enabled(), False);
    limit->Enabled(True);
    machine.pump().Sleep(10);
    EXPECT_EQ(limit->Enabled(), True);
    machine.pump().DoEvents();
    EXPECT_EQ(limit->Enabled(), False);
}

TEST_F(TurnTimerTest, ATimerRunsForItsInterval)
{
    const Pty pty;
    const auto line = openControl(pty);
    const auto limit = timer(50);
    const Moment begin = steadyTime();
    limit->Enabled(True);
    while (limit->Enabled())
        machine.pump().DoEvents();
    EXPECT_GE(steadyTime() - begin, 50ms);
}

TEST_F(TurnTimerTest, ADueTimerEndsATurnAtOnce)
{
    const Pty pty;
    const auto line = openControl(pty);
    const auto limit = timer(1);
    limit->Enabled(True);
    machine.pump().Sleep(2);
    const std::uint64_t polls = machine.pump().polls();
    machine.pump().DoEvents();
    EXPECT_EQ(limit->Enabled(), False);
    // One look at the lines, that does not wait.
    EXPECT_EQ(machine.pump().polls(), polls + 1);
}

TEST_F(TurnTimerTest, ATimerOfNoIntervalNeverFires)
{
    const auto limit = timer(0);
    limit->Enabled(True);
    timeOf(5);
    EXPECT_EQ(limit->Enabled(), True);
}

TEST_F(TurnTimerTest, ATimerThatIsTurnedOffDoesNotFireLater)
{
    const auto limit = timer(1);
    limit->Enabled(True);
    limit->Enabled(False);
    limit->Interval(60000);
    limit->Enabled(True);
    machine.pump().Sleep(3);
    timeOf(2);
    EXPECT_EQ(limit->Enabled(), True);
}

TEST_F(TurnTimerTest, AnotherIntervalOfARunningTimerCounts)
{
    const auto limit = timer(5);
    limit->Enabled(True);
    machine.pump().Sleep(10);
    limit->Interval(60000);
    machine.pump().DoEvents();
    EXPECT_EQ(limit->Enabled(), True);
    limit->Interval(5);
    machine.pump().Sleep(10);
    machine.pump().DoEvents();
    EXPECT_EQ(limit->Enabled(), False);
    EXPECT_EQ(limit->Interval(), 5);
}

TEST_F(TurnTimerTest, IntervalAndEnablingStartARunningTimerAnew)
{
    TurnTimer limit(pump());
    limit.Interval(60000);
    EXPECT_EQ(limit.end(), std::nullopt);
    limit.Enabled(True);
    const std::optional<Moment> first = limit.end();
    machine.pump().Sleep(3);
    limit.Enabled(True);
    const std::optional<Moment> second = limit.end();
    machine.pump().Sleep(3);
    limit.Interval(60000);
    const std::optional<Moment> third = limit.end();
    ASSERT_TRUE(first && second && third);
    EXPECT_GE(*second, *first + 3ms);
    EXPECT_GE(*third, *second + 3ms);
}

TEST_F(TurnTimerTest, ANegativeIntervalIsRefused)
{
    const auto limit = timer(7);
    expectFailure(FailureCode::InvalidPropertyValue, {}, [&] { limit->Interval(-1); });
    EXPECT_EQ(limit->Interval(), 7);
}

TEST_F(TurnTimerTest, ATimerMayGoWhileItRuns)
{
    auto limit = timer(1);
    limit->Enabled(True);
    machine.pump().Sleep(3);
    limit.reset();
    machine.pump().DoEvents();
}

TEST_F(TurnTimerTest, AReplyInTheTurnOfTheTimersEndIsSeenFirst)
{
    Pty pty;
    const auto line = openControl(pty);
    const auto limit = timer(5);
    EXPECT_EQ(line->InBufferCount(), 0);
    machine.pump().hostPump([&] {
        limit->Enabled(True);
        arrive(pty, "a");
        machine.pump().Sleep(10);
    });
    machine.pump().DoEvents();
    machine.pump().hostPump(nullptr);
    EXPECT_EQ(limit->Enabled(), True);
    EXPECT_EQ(line->InBufferCount(), 1);
    machine.pump().DoEvents();
    EXPECT_EQ(limit->Enabled(), False);
}

TEST_F(TurnTimerTest, ATimerThatHasEndedInAPauseEndsWhateverHasComeMeanwhile)
{
    Pty pty;
    const auto line = openControl(pty);
    const auto limit = timer(1);
    limit->Enabled(True);
    arrive(pty, "a");
    machine.pump().Sleep(5);
    EXPECT_EQ(limit->Enabled(), True);
    machine.pump().DoEvents();
    EXPECT_EQ(limit->Enabled(), False);
    EXPECT_EQ(line->InBufferCount(), 1);
}

TEST_F(TurnTimerTest, BytesThatDripInPutATimerOffOnceOnly)
{
    Pty pty;
    const auto line = openControl(pty);
    const auto limit = timer(5);
    int turns = 0;
    machine.pump().hostPump([&] {
        if (++turns == 1)
            limit->Enabled(True);
        arrive(pty, "a");
        machine.pump().Sleep(10);
    });
    do
        machine.pump().DoEvents();
    while (limit->Enabled() && turns < 100);
    machine.pump().hostPump(nullptr);
    EXPECT_EQ(turns, 2);
    EXPECT_EQ(line->InBufferCount(), 2);
}

} // namespace
} // namespace kel
