// SPDX-License-Identifier: MIT
#include "simulators/platform/SimulatedPlatform.h"
#include "tests/simulators/platform/ScriptedDevice.h"

#include <gtest/gtest.h>

namespace kel {
namespace {

using namespace std::chrono_literals;

class SimulatedPumpTest : public ::testing::Test {
protected:
    SimulatedPumpTest() : scope_(machine_), control_(machine_.newSerialControl()), timer_(machine_.newScanTimer())
    {
        machine_.attach(1, device_);
    }

    void open() { control_->PortOpen(True); }

    SimulatedPlatform machine_;
    PlatformScope scope_;
    ScriptedDevice device_;
    std::unique_ptr<SerialControl> control_;
    std::unique_ptr<ScanTimer> timer_;
};

TEST_F(SimulatedPumpTest, MovesByFiveMillisecondsWhereNothingIsToCome)
{
    DoEvents();
    EXPECT_EQ(machine_.now(), 5ms);
    open();
    DoEvents();
    EXPECT_EQ(machine_.now(), 10ms);
}

TEST_F(SimulatedPumpTest, JumpsToTheNextByte)
{
    device_.sendAt(7s, "A");
    open();
    EXPECT_EQ(control_->InBufferCount(), 0);
    DoEvents();
    EXPECT_EQ(machine_.now(), 7s);
    EXPECT_EQ(control_->InBufferCount(), 1);
}

TEST_F(SimulatedPumpTest, AClosedLineDoesNotWakeTheHost)
{
    device_.sendAt(1ms, "A");
    DoEvents();
    EXPECT_EQ(machine_.now(), 5ms);
}

TEST_F(SimulatedPumpTest, ReturnsAtOnceWhileInputIsNewOrWasTakenFrom)
{
    device_.sendAt(1s, "AB");
    device_.sendAt(2s, "C");
    open();
    Sleep(1000);
    DoEvents(); // new input
    EXPECT_EQ(machine_.now(), 1s);
    control_->InputLen(1);
    EXPECT_EQ(control_->Input(), "A");
    DoEvents(); // taken from, and one still waits
    EXPECT_EQ(machine_.now(), 1s);
    DoEvents(); // seen, and nobody takes it
    EXPECT_EQ(machine_.now(), 2s);
    control_->InputLen(0);
    EXPECT_EQ(control_->Input(), "BC");
    DoEvents(); // taken from: a caller that pauses when nothing waits gets to its pause
    EXPECT_EQ(machine_.now(), 2s);
    DoEvents(); // nothing waits any more, and the caller did nothing
    EXPECT_EQ(machine_.now(), 2s + 5ms);
}

TEST_F(SimulatedPumpTest, ReturnsAtOnceBehindAnOutputAndAPause)
{
    device_.sendAt(1s, "A");
    open();
    control_->Output("x");
    DoEvents();
    EXPECT_EQ(machine_.now(), 0s);
    Sleep(10);
    DoEvents();
    EXPECT_EQ(machine_.now(), 10ms);
    DoEvents();
    EXPECT_EQ(machine_.now(), 1s);
}

TEST_F(SimulatedPumpTest, TheTimerFiresOnceAndOnlyInDoEvents)
{
    timer_->Interval(600000);
    timer_->Enabled(True);
    Sleep(700000);
    EXPECT_EQ(timer_->Enabled(), True);
    DoEvents();
    EXPECT_EQ(timer_->Enabled(), False);
    DoEvents();
    EXPECT_EQ(timer_->Enabled(), False);
}

TEST_F(SimulatedPumpTest, ATenMinuteWaitIsOneTurn)
{
    timer_->Interval(600000);
    timer_->Enabled(True);
    open();
    DoEvents();
    EXPECT_EQ(machine_.now(), 600s);
    EXPECT_EQ(timer_->Enabled(), False);
}

TEST_F(SimulatedPumpTest, EnablingStartsTheCountdownAnew)
{
    timer_->Interval(1000);
    timer_->Enabled(True);
    Sleep(900);
    timer_->Enabled(True);
    Sleep(900);
    device_.sendAt(machine_.now(), "A");
    open();
    DoEvents();
    EXPECT_EQ(timer_->Enabled(), True);
    DoEvents();
    EXPECT_EQ(machine_.now(), 1900ms);
    EXPECT_EQ(timer_->Enabled(), False);
}

TEST_F(SimulatedPumpTest, ATimerWithoutIntervalOrTurnedOffNeverFires)
{
    timer_->Enabled(True);
    DoEvents();
    EXPECT_EQ(timer_->Enabled(), True);
    EXPECT_EQ(machine_.now(), 5ms);
    timer_->Interval(1000);
    timer_->Enabled(False);
    DoEvents();
    EXPECT_EQ(machine_.now(), 10ms);
    EXPECT_THROW(timer_->Interval(-1), RuntimeFailure);
}

TEST_F(SimulatedPumpTest, AByteInTheSameMomentIsThereBeforeTheTimersEvent)
{
    timer_->Interval(1000);
    timer_->Enabled(True);
    device_.sendAt(1s, "A");
    open();
    DoEvents();
    EXPECT_EQ(machine_.now(), 1s);
    EXPECT_EQ(control_->InBufferCount(), 1);
    EXPECT_EQ(timer_->Enabled(), True);
    DoEvents();
    EXPECT_EQ(timer_->Enabled(), False);
}

TEST_F(SimulatedPumpTest, ADueTimerFiresThoughInputKeepsComing)
{
    timer_->Interval(10);
    timer_->Enabled(True);
    for (int count = 0; count < 100; ++count)
        device_.sendAt(std::chrono::milliseconds(count), "A");
    open();
    while (timer_->Enabled()) {
        static_cast<void>(control_->Input());
        DoEvents();
    }
    EXPECT_LE(machine_.now(), 11ms);
}

TEST_F(SimulatedPumpTest, ADueTimerFiresThoughInputWaits)
{
    timer_->Interval(10);
    timer_->Enabled(True);
    device_.sendAt(15ms, "A");
    open();
    Sleep(20);
    DoEvents();
    EXPECT_EQ(machine_.now(), 20ms);
    EXPECT_EQ(timer_->Enabled(), False);
}

TEST_F(SimulatedPumpTest, TheHostActsAtItsMoments)
{
    std::vector<std::pair<std::string, Moment>> done;
    machine_.at(3s, [&] { done.emplace_back("second", machine_.now()); });
    machine_.at(1s, [&] { done.emplace_back("first", machine_.now()); });
    machine_.at(3s, [&] { done.emplace_back("third", machine_.now()); });
    DoEvents();
    EXPECT_EQ(machine_.now(), 1s);
    DoEvents();
    const std::vector<std::pair<std::string, Moment>> expected = {{"first", 1s}, {"second", 3s}, {"third", 3s}};
    EXPECT_EQ(done, expected);
}

TEST_F(SimulatedPumpTest, TheHostActsLateWhereTheThreadSlept)
{
    Moment when{};
    machine_.at(1s, [&] { when = machine_.now(); });
    Sleep(5000);
    EXPECT_EQ(when, Moment{});
    DoEvents();
    EXPECT_EQ(when, 5s);
}

TEST_F(SimulatedPumpTest, TheHostActsAtItsTurns)
{
    std::vector<int> done;
    DoEvents();
    machine_.atDoEvents(2, [&] { done.push_back(2); });
    machine_.atDoEvents(1, [&] { done.push_back(1); });
    DoEvents();
    EXPECT_EQ(done, (std::vector<int>{1}));
    DoEvents();
    EXPECT_EQ(done, (std::vector<int>{1, 2}));
}

TEST_F(SimulatedPumpTest, AnActionMayYieldItself)
{
    int inner = 0;
    machine_.atDoEvents(1, [&] {
        machine_.atDoEvents(1, [&] { ++inner; });
        DoEvents();
    });
    DoEvents();
    EXPECT_EQ(inner, 1);
}

TEST_F(SimulatedPumpTest, TheHostPumpRunsAtEachTurnAndComesRoundEveryFiveMilliseconds)
{
    int turns = 0;
    bool nested = false;
    platform().pump().hostPump([&] {
        ++turns;
        if (!nested) {
            nested = true;
            DoEvents();
        }
    });
    timer_->Interval(20);
    timer_->Enabled(True);
    while (timer_->Enabled())
        DoEvents();
    EXPECT_EQ(machine_.now(), 20ms);
    EXPECT_EQ(turns, 3); // the first turn came round again within itself
    platform().pump().hostPump({});
    DoEvents();
    EXPECT_EQ(turns, 3);
}

TEST_F(SimulatedPumpTest, PausesAreRecordedAndRunNothing)
{
    machine_.at(1ms, [] { FAIL() << "an action ran in a pause"; });
    Sleep(250);
    Sleep(0);
    Sleep(-5);
    EXPECT_EQ(machine_.now(), 250ms);
    const std::vector<HostSleep> expected = {{0ms, 250}, {250ms, 0}, {250ms, -5}};
    EXPECT_EQ(machine_.sleeps(), expected);
}

TEST_F(SimulatedPumpTest, AHangUpEndsTheBlock)
{
    device_.unplugAt(2s);
    timer_->Interval(10000);
    timer_->Enabled(True);
    open();
    DoEvents();
    EXPECT_EQ(machine_.now(), 2s);
    EXPECT_THROW(static_cast<void>(control_->InBufferCount()), RuntimeFailure);
}

std::string stuckText(const std::function<void()>& dialogue)
{
    try {
        dialogue();
    } catch (const StuckDialogue& stuck) {
        return stuck.text;
    }
    return "ended";
}

TEST_F(SimulatedPumpTest, ADialogueThatGoesOnForEverIsStopped)
{
    open();
    testing::internal::CaptureStderr();
    const std::string text = stuckText([&] {
        try {
            for (;;)
                Sleep(60000);
        } catch (const std::exception&) {
            // A guard must not be able to take it.
        }
    });
    EXPECT_EQ(text, "The dialogue is stuck at 86460.000000 s of virtual time: no byte was sent or taken for "
                    "86400.000000 s.");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), text + "\n");
}

TEST_F(SimulatedPumpTest, AWaitThatNothingEndsIsStopped)
{
    machine_.pump().clock().limits(24h, 1000, 1000);
    open();
    device_.sendAt(1s, "A");
    testing::internal::CaptureStderr();
    const std::string text = stuckText([&] {
        while (control_->InBufferCount() < 2)
            DoEvents();
    });
    EXPECT_NE(text.find("the host yielded 1000 times"), std::string::npos) << text;
    static_cast<void>(testing::internal::GetCapturedStderr());
}

TEST_F(SimulatedPumpTest, ALoopThatNeverYieldsIsStopped)
{
    machine_.pump().clock().limits(24h, 1000, 100'000);
    open();
    testing::internal::CaptureStderr();
    const std::string text = stuckText([&] {
        while (control_->InBufferCount() == 0) {
        }
    });
    EXPECT_NE(text.find("without yielding"), std::string::npos) << text;
    static_cast<void>(testing::internal::GetCapturedStderr());
}

TEST_F(SimulatedPumpTest, ProgressKeepsALongDialogueAlive)
{
    machine_.pump().clock().limits(10s, 5, 1000);
    open();
    device_.echoAfter(1s);
    for (int count = 0; count < 100; ++count) {
        control_->Output("x");
        DoEvents(); // after the output
        DoEvents(); // until the answer comes
        EXPECT_EQ(control_->Input(), "x");
    }
    EXPECT_GT(machine_.now(), 100s);
}

} // namespace
} // namespace kel
