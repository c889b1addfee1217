// SPDX-License-Identifier: MIT
// How long turns wait, and what a line shows, on a clock of the test's own.

#include "platform/TurnPump.h"

#include "platform/TurnTimer.h"
#include "tests/platform/FakeLine.h"
#include "types/RuntimeFailure.h"

#include <gtest/gtest.h>

namespace kel {
namespace {

using namespace std::chrono_literals;

class TurnPumpTest : public ::testing::Test {
protected:
    TurnPumpTest() { pump->add(line); }
    ~TurnPumpTest() override { pump->remove(line); }

    /// Waits for a byte as drivers do; how many turns that took.
    int turnsUntil(const std::function<bool()>& ended)
    {
        int turns = 0;
        while (line.count() == 0 && !ended()) {
            pump->DoEvents();
            ++turns;
        }
        return turns;
    }

    std::unique_ptr<TurnTimer> timer(Int32 interval)
    {
        auto made = std::make_unique<TurnTimer>(pump);
        made->Interval(interval);
        made->Enabled(True);
        return made;
    }

    test::FakeTime time;
    std::shared_ptr<test::FakePump> pump = std::make_shared<test::FakePump>(time);
    test::FakeLine line{time};
};

// --- Waiting

TEST_F(TurnPumpTest, AWaitWithATimerHasNoClock)
{
    const auto limit = timer(600'000);
    EXPECT_LE(turnsUntil([&] { return !limit->Enabled(); }), 2);
    EXPECT_GE(time.passed(), 600s);
}

TEST_F(TurnPumpTest, AWaitWithoutATimerOfOursLooksAfterTheHostsNowAndThen)
{
    EXPECT_LE(turnsUntil([&] { return time.passed() >= 60s; }), 5 * 60);
}

TEST_F(TurnPumpTest, TheHostsPumpRunsEvery20Milliseconds)
{
    const auto limit = timer(1000);
    int runs = 0;
    pump->hostPump([&] { ++runs; });
    turnsUntil([&] { return !limit->Enabled(); });
    EXPECT_GE(runs, 50);
    EXPECT_LE(runs, 52);
}

TEST_F(TurnPumpTest, AByteEndsAWait)
{
    const auto limit = timer(600'000);
    line.arrives(7s, "a");
    EXPECT_LE(turnsUntil([&] { return !limit->Enabled(); }), 2);
    EXPECT_EQ(limit->Enabled(), True);
    EXPECT_LT(time.passed(), 8s);
}

TEST_F(TurnPumpTest, ACallEndsAWait)
{
    const auto limit = timer(600'000);
    pump->calledAt(10s);
    pump->DoEvents();
    EXPECT_EQ(pump->waits().size(), 1U);
    EXPECT_EQ(limit->Enabled(), True);
    EXPECT_LT(time.passed(), 11s);
}

TEST_F(TurnPumpTest, ABurstIsOneReadWhereNothingCameMeanwhile)
{
    const auto limit = timer(600'000);
    constexpr int kBursts = 100;
    for (int burst = 0; burst < kBursts; ++burst)
        line.arrives(burst * 10ms + 10ms, std::string(15, 'x'));
    const std::uint64_t reads = line.reads();
    for (int taken = 0; taken < 15 * kBursts; ++taken) {
        while (line.count() == 0)
            pump->DoEvents();
        EXPECT_EQ(line.take(1), "x");
    }
    // The very first look at the line finds nothing.
    EXPECT_LE(line.reads() - reads, kBursts + 1U);
    EXPECT_LE(pump->waits().size(), kBursts + 0U);
}

TEST_F(TurnPumpTest, ASecondLookAtAnEmptyLineIsAReal)
{
    line.arrives(5ms, "a");
    pump->DoEvents();
    EXPECT_EQ(line.take(1), "a");
    line.arrives(time.passed(), "b");
    EXPECT_EQ(line.count(), 0);
    EXPECT_EQ(line.count(), 1);
}

// --- A process that is stopped

TEST_F(TurnPumpTest, AStopMakesNoPauseShorter)
{
    pump->stoppedAt(200ms, 5s);
    pump->Sleep(500);
    EXPECT_GE(time.passed(), 5400ms);
    EXPECT_LE(time.passed(), 5700ms);
}

TEST_F(TurnPumpTest, ATimerThatEndedInAStopGoesOnOnce)
{
    const auto limit = timer(1000);
    pump->stoppedAt(100ms, 5s);
    pump->DoEvents();
    EXPECT_EQ(limit->Enabled(), True);
    turnsUntil([&] { return !limit->Enabled(); });
    EXPECT_GE(time.passed(), 6s);
    EXPECT_LT(time.passed(), 7s);
}

TEST_F(TurnPumpTest, AMachineThatIsAlwaysLateDoesNotKeepATimerFromEnding)
{
    const auto limit = timer(1000);
    for (int i = 0; i < 1000; ++i)
        pump->stoppedAt(i * 100ms, 500ms);
    turnsUntil([&] { return !limit->Enabled(); });
    EXPECT_LT(time.passed(), 60s);
}

TEST_F(TurnPumpTest, ATimerThatIsALittleLateEnds)
{
    const auto limit = timer(1000);
    pump->stoppedAt(950ms, 60ms);
    turnsUntil([&] { return !limit->Enabled(); });
    EXPECT_LT(time.passed(), 1100ms);
}

// --- Opening

TEST_F(TurnPumpTest, OpeningDropsWhatComesUntilTheLineIsSilent)
{
    for (const Moment at : {0ms, 10ms, 55ms, 100ms})
        line.arrives(at, "old");
    line.arrives(155ms, "new");
    line.dropUntilSilent();
    EXPECT_GE(time.passed(), 150ms);
    EXPECT_LT(time.passed(), 155ms);
    EXPECT_EQ(line.count(), 0);
    pump->DoEvents();
    EXPECT_EQ(line.take(0), "new");
}

TEST_F(TurnPumpTest, OpeningASilentLineTakesAMoment)
{
    line.dropUntilSilent();
    EXPECT_GE(time.passed(), 50ms);
    EXPECT_LT(time.passed(), 51ms);
}

TEST_F(TurnPumpTest, OpeningDoesNotWaitForALineThatNeverIsSilent)
{
    for (int i = 0; i < 1000; ++i)
        line.arrives(i * 10ms, "x");
    line.dropUntilSilent();
    EXPECT_GE(time.passed(), 300ms);
    EXPECT_LT(time.passed(), 310ms);
}

TEST_F(TurnPumpTest, OpeningALineThatHasHungUpEnds)
{
    line.hangUp();
    line.dropUntilSilent();
    EXPECT_THROW(static_cast<void>(line.count()), RuntimeFailure);
}

// --- A sender without end

TEST_F(TurnPumpTest, ADrainOfAnEndlessSenderFails)
{
    line.endless([] { return '\0'; });
    try {
        while (line.count() > 0)
            static_cast<void>(line.take(1));
        FAIL() << "an endless sender has an end";
    } catch (const RuntimeFailure& failure) {
        EXPECT_EQ(failure.code(), FailureCode::ErrorReadingDevice);
        EXPECT_NE(failure.text().find("Port 1 (a line) sends without end"), std::string::npos) << failure.text();
    }
    EXPECT_LE(line.given(), ReceivedInput::kLongestStream + 2 * ReceivedInput::kRoom);
}

TEST_F(TurnPumpTest, WhatNobodyTakesIsBounded)
{
    line.endless([] { return 'x'; });
    for (int i = 0; i < 100; ++i)
        pump->Sleep(100);
    EXPECT_LE(line.given(), ReceivedInput::kRoom + 4096);
    EXPECT_GE(line.count(), 60'000);
}

TEST_F(TurnPumpTest, RepliesOfAnySumAreNoEndlessSender)
{
    for (int reply = 0; reply < 100; ++reply) {
        line.answerMayCome();
        line.arrives(time.passed(), std::string(60'000, 'x'));
        std::size_t taken = 0;
        while (taken < 60'000)
            taken += line.take(0).size();
    }
}

TEST_F(TurnPumpTest, SheetsThatComeUnaskedWithPausesAreNoEndlessSender)
{
    for (int sheet = 1; sheet <= 2000; ++sheet)
        line.arrives(sheet * 300ms, std::string(1000, 'x'));
    std::size_t taken = 0;
    while (taken < 2'000'000) {
        pump->DoEvents();
        taken += line.take(0).size();
    }
}

} // namespace
} // namespace kel
