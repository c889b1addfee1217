// SPDX-License-Identifier: MIT
#include "tests/platform/posix/MessagePumpTest.h"

#include <atomic>
#include <limits>
#include <thread>

namespace kel {
namespace {

using namespace std::chrono_literals;
using test::expectFailure;
using PosixMessagePumpTest = test::MessagePumpTest;

// --- Blocking

TEST_F(PosixMessagePumpTest, ATurnBlocksOnAnOpenLineWhereNothingHappens)
{
    const Pty pty;
    const auto line = openControl(pty);
    EXPECT_GE(timeOf(3), 55ms);
    EXPECT_EQ(pollsOf(3), 3U);
}

TEST_F(PosixMessagePumpTest, ATurnBlocksForAMomentWhereNoLineIsOpen)
{
    EXPECT_GE(timeOf(10), 9ms);
    EXPECT_EQ(pollsOf(10), 10U);
    // The caller may be waiting for a line of the host, which cannot be watched.
    EXPECT_LT(Inside::wait(machine.pump(), false), Inside::wait(machine.pump(), true));
}

TEST_F(PosixMessagePumpTest, AClosedLineIsNoOpenOne)
{
    const Pty pty;
    const auto line = openControl(pty);
    EXPECT_EQ(Inside::openLines(machine.pump()), 1U);
    line->PortOpen(False);
    EXPECT_EQ(Inside::openLines(machine.pump()), 0U);
}

TEST_F(PosixMessagePumpTest, AByteEndsATurn)
{
    Pty pty;
    const auto line = openControl(pty);
    std::thread reader([&] {
        sleepUntil(steadyTime() + 5ms);
        EXPECT_EQ(pty.write("a"), 1U);
    });
    while (line->InBufferCount() == 0)
        machine.pump().DoEvents();
    reader.join();
    EXPECT_EQ(line->Input(), "a");
}

TEST_F(PosixMessagePumpTest, WhatThePumpFetchesNeedsNoFurtherRead)
{
    Pty pty;
    const auto line = openControl(pty);
    ASSERT_EQ(pty.write("abc"), 3U);
    const Moment begin = steadyTime();
    machine.pump().DoEvents();
    const std::uint64_t reads = line->input().reads();
    EXPECT_EQ(line->InBufferCount(), 3);
    // Unless the machine is so busy otherwise that the fetching has grown old.
    EXPECT_LE(line->input().reads() - reads, static_cast<std::uint64_t>((steadyTime() - begin) / 1ms));
    EXPECT_EQ(line->Input(), "abc");
}

TEST_F(PosixMessagePumpTest, ATurnReturnsAtOnceWhileInputIsTakenBitByBit)
{
    Pty pty;
    const auto line = openControl(pty);
    arriveAndTell(pty, *line, "abcdefgh");
    line->InputLen(1);
    const std::uint64_t before = machine.pump().polls();
    for (int taken = 0; taken < 7; ++taken) {
        EXPECT_EQ(line->Input().size(), 1U);
        machine.pump().DoEvents();
    }
    EXPECT_EQ(machine.pump().polls(), before);
}

TEST_F(PosixMessagePumpTest, ATurnBlocksWhileTheCallerWaitsForMore)
{
    Pty pty;
    const auto line = openControl(pty);
    arriveAndTell(pty, *line, "abcd");
    line->InputLen(1);
    EXPECT_EQ(line->Input(), "a");
    machine.pump().DoEvents();
    EXPECT_EQ(pollsOf(2), 2U);
    EXPECT_GE(timeOf(3), 55ms);
    EXPECT_EQ(line->InBufferCount(), 3);
}

TEST_F(PosixMessagePumpTest, AByteEndsATurnOfACallerThatWaitsForMore)
{
    Pty pty;
    const auto line = openControl(pty);
    arriveAndTell(pty, *line, "abc");
    std::thread reader([&] {
        sleepUntil(steadyTime() + 5ms);
        EXPECT_EQ(pty.write("d"), 1U);
    });
    while (line->InBufferCount() < 4)
        machine.pump().DoEvents();
    reader.join();
    EXPECT_EQ(line->Input(), "abcd");
}

TEST_F(PosixMessagePumpTest, InputThatCameInAPauseEndsTheNextTurnOnly)
{
    Pty pty;
    const auto line = openControl(pty);
    machine.pump().DoEvents();
    arrive(pty, "a");
    machine.pump().Sleep(200);
    EXPECT_EQ(pollsOf(1), 0U);
    EXPECT_EQ(pollsOf(1), 1U);
    EXPECT_EQ(line->InBufferCount(), 1);
}

TEST_F(PosixMessagePumpTest, ABurstCostsOnePollAndOneRead)
{
    constexpr int kBursts = 200;
    constexpr std::size_t kBurst = 15;
    Pty pty;
    const auto line = openControl(pty);
    line->InputLen(1);
    const std::uint64_t polls = machine.pump().polls();
    const std::uint64_t reads = line->input().reads();
    const Moment begin = steadyTime();
    for (int burst = 0; burst < kBursts; ++burst) {
        ASSERT_EQ(pty.write(std::string(kBurst, 'x')), kBurst);
        for (std::size_t taken = 0; taken < kBurst;) {
            machine.pump().DoEvents();
            if (line->InBufferCount() > 0)
                taken += line->Input().size();
        }
    }
    // A machine that is busy otherwise makes looks grow old, and the pump sees a burst in two pieces now and then.
    const auto grownOld = static_cast<std::uint64_t>((steadyTime() - begin) / 1ms);
    const std::uint64_t calls = machine.pump().polls() - polls + line->input().reads() - reads;
    EXPECT_LE(calls, 2 * kBursts + kBursts / 5 + grownOld);
}

// --- Several lines

TEST_F(PosixMessagePumpTest, LinesOfOneThreadAreServedTogether)
{
    Pty first;
    Pty second;
    const auto one = openControl(first, 1);
    const auto two = openControl(second, 2);
    for (int round = 0; round < 20; ++round) {
        ASSERT_EQ(first.write("1"), 1U);
        while (one->InBufferCount() == 0)
            machine.pump().DoEvents();
        ASSERT_EQ(second.write("2"), 1U);
        while (two->InBufferCount() == 0)
            machine.pump().DoEvents();
        EXPECT_EQ(one->Input(), "1");
        EXPECT_EQ(two->Input(), "2");
    }
}

TEST_F(PosixMessagePumpTest, ALineThatNobodyReadsKeepsNoOtherFromBlocking)
{
    Pty first;
    Pty second;
    const auto one = openControl(first, 1);
    const auto two = openControl(second, 2);
    ASSERT_EQ(second.write("unread"), 6U);
    machine.pump().DoEvents();
    EXPECT_GE(timeOf(3), 55ms);
    EXPECT_EQ(one->InBufferCount(), 0);
    EXPECT_EQ(two->InBufferCount(), 6);
}

TEST_F(PosixMessagePumpTest, ALineThatHasHungUpKeepsNoOtherFromBlocking)
{
    Pty first;
    Pty second;
    const auto one = openControl(first, 1);
    const auto two = openControl(second, 2);
    second.hangUp();
    machine.pump().DoEvents();
    EXPECT_GE(timeOf(3), 55ms);
    EXPECT_EQ(one->InBufferCount(), 0);
    expectFailure(FailureCode::ErrorReadingDevice, {"Port 2"}, [&] { static_cast<void>(two->InBufferCount()); });
}

TEST_F(PosixMessagePumpTest, ThreadsWithAPlatformEachDoNotMeet)
{
    std::atomic<int> good{0};
    const auto session = [&](Int16 port) {
        PosixPlatform own(RegistryFolders(folder.path() / "registry"));
        const PlatformScope scope(own);
        Pty pty;
        const PortOverride device(port, pty.name());
        const auto line = platform().newSerialControl();
        const auto limit = platform().newScanTimer();
        limit->Interval(60000);
        line->CommPort(port);
        line->PortOpen(True);
        for (int round = 0; round < 50; ++round) {
            const std::string text = std::to_string(port) + ":" + std::to_string(round);
            if (pty.write(text) != text.size())
                return;
            limit->Enabled(True);
            while (line->InBufferCount() < static_cast<Int32>(text.size())) {
                DoEvents();
                if (!limit->Enabled())
                    return;
            }
            limit->Enabled(False);
            if (line->Input() != text)
                return;
            kel::Sleep(1);
        }
        ++good;
    };
    std::thread one(session, Int16{1});
    std::thread two(session, Int16{2});
    one.join();
    two.join();
    EXPECT_EQ(good, 2);
}

// --- Pauses

TEST_F(PosixMessagePumpTest, APauseTakesItsWholeTime)
{
    const Moment begin = steadyTime();
    machine.pump().Sleep(20);
    EXPECT_GE(steadyTime() - begin, 20ms);
}

TEST_F(PosixMessagePumpTest, APauseOfLessThanNothingIsNone)
{
    machine.pump().Sleep(0);
    machine.pump().Sleep(std::numeric_limits<Int32>::min()); // as an unsigned number it would be 24 days
}

TEST_F(PosixMessagePumpTest, LongPausesCollectMoreThanTheSystemHasRoomFor)
{
    // A pseudo-terminal takes some 22,000 bytes that nobody reads.
    const std::string much(60000, 'x');
    Pty pty;
    const auto line = openControl(pty);
    std::atomic<std::size_t> written{0};
    std::thread reader([&] {
        while (written < much.size()) {
            written += pty.write(std::string_view(much).substr(written, 1000));
            sleepUntil(steadyTime() + 1ms);
        }
    });
    // Without room the far end would never come to its end.
    while (written < much.size())
        machine.pump().Sleep(200);
    reader.join();
    EXPECT_EQ(line->InBufferCount(), static_cast<Int32>(much.size()));
}

TEST_F(PosixMessagePumpTest, TimeStandsOnTheSteadyClock)
{
    const Moment before = machine.pump().now();
    EXPECT_GE(before, Moment::zero());
    machine.pump().Sleep(5);
    EXPECT_GE(machine.pump().now() - before, 5ms);
}

// --- The host's pump

TEST_F(PosixMessagePumpTest, TheHostsPumpRunsInEachTurn)
{
    int turns = 0;
    machine.pump().hostPump([&] { ++turns; });
    timeOf(3);
    EXPECT_EQ(turns, 3);
    machine.pump().hostPump({});
    timeOf(3);
    EXPECT_EQ(turns, 3);
}

TEST_F(PosixMessagePumpTest, TheHostMayReplaceItsPumpWhileItRuns)
{
    std::string order;
    machine.pump().hostPump([&, text = std::string(100, 'a')] {
        machine.pump().hostPump([&] { order += "b"; });
        order += text.substr(0, 1);
    });
    timeOf(2);
    EXPECT_EQ(order, "ab");
}

TEST_F(PosixMessagePumpTest, TheHostMayOpenAndCloseLinesAndLetEventsRunInItsPump)
{
    Pty pty;
    auto line = openControl(pty);
    int depth = 0;
    machine.pump().hostPump([&] {
        if (++depth == 1) {
            line.reset();
            const auto other = openControl(pty);
            machine.pump().DoEvents();
        }
    });
    timeOf(1);
    EXPECT_EQ(depth, 2);
}

TEST_F(PosixMessagePumpTest, WhatTheHostsPumpThrowsComesOut)
{
    machine.pump().hostPump([] { throw RuntimeFailure(FailureCode::Overflow); });
    expectFailure(FailureCode::Overflow, {}, [&] { machine.pump().DoEvents(); });
}

} // namespace
} // namespace kel
