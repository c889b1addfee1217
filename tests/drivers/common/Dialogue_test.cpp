// SPDX-License-Identifier: MIT
#include "drivers/common/Dialogue.h"

#include "reader/ReaderSession.h"
#include "simulators/platform/SimulatedPlatform.h"
#include "tests/drivers/scanning_systems/ScriptedReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kel {
namespace {

using namespace std::chrono_literals;
using scanning_systems_test::ScriptedReader;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr Int32 kPause = 50;

/// A reader object with an open line to a device that sends when it is told to.
class DialogueTest : public testing::Test {
protected:
    DialogueTest() : scope_(machine)
    {
        machine.attach(1, device);
        machine.hostPace(HostPace::Instant);
        reader.CancelScan(False);
        reader.SleepTime(kPause);
        reader.fComm().mscComm().InputLen(1);
        reader.fComm().tmrScan().Interval(10000);
        reader.settings().BaudRate = kelReaderBaudRate9600;
        reader.settings().DataBits = kelReaderDataBits8;
        reader.settings().StopBits = 1;
        openLine(reader, 1);
    }

    [[nodiscard]] bool timerRuns() { return reader.fComm().tmrScan().Enabled() == True; }

    /// Bytes that wait on the host's side.
    void leave(const std::string& bytes)
    {
        device.sendUnasked(machine.now(), bytes);
        machine.pump().Sleep(1);
    }

    /// What happens in the next turn of the message loop.
    void inTheNextTurn(std::function<void()> action) { machine.atDoEvents(1, std::move(action)); }

    [[nodiscard]] std::string collected(CollectRules rules = {})
    {
        std::string sData = "before";
        collectText(reader, sData, rules);
        return sData;
    }

    [[nodiscard]] std::vector<Int32> pauses() const
    {
        std::vector<Int32> result;
        for (const HostSleep& sleep : machine.sleeps())
            result.push_back(sleep.milliseconds);
        return result;
    }

    SimulatedPlatform machine;

private:
    PlatformScope scope_;

protected:
    ScriptedReader device;
    ReaderSession reader;
};

TEST_F(DialogueTest, AReplyThatWaitsAlreadyIsTakenWithoutATurn)
{
    leave("x");
    reader.CancelScan(True);
    const std::uint64_t turns = machine.pump().turns();
    EXPECT_EQ(waitForReply(reader), Wait::Reply);
    EXPECT_EQ(machine.pump().turns(), turns);
    EXPECT_FALSE(timerRuns());
}

TEST_F(DialogueTest, AReplyInTheMomentInWhichTheTimeIsUpCounts)
{
    device.sendUnasked(machine.now() + 10s, "x");
    EXPECT_EQ(waitForReply(reader), Wait::Reply);
    EXPECT_EQ(machine.now(), 10s);
    device.sendUnasked(machine.now() + 10s + 1ns, "y");
    drainInput(reader);
    EXPECT_EQ(waitForReply(reader), Wait::TimedOut);
}

TEST_F(DialogueTest, ACancelLeavesTheTimerRunning)
{
    machine.pump().hostPump([] {}); // the host looks round every few milliseconds
    inTheNextTurn([&] { reader.CancelScan(True); });
    EXPECT_EQ(waitForReply(reader), Wait::Cancelled);
    EXPECT_TRUE(timerRuns());
}

TEST_F(DialogueTest, ACancelCountsBeforeATimeOut)
{
    inTheNextTurn([&] {
        reader.CancelScan(True);
        reader.fComm().tmrScan().Enabled(False);
    });
    EXPECT_EQ(waitForReply(reader), Wait::Cancelled);
}

TEST_F(DialogueTest, SilenceLastsAsLongAsTheTimer)
{
    EXPECT_EQ(waitForReply(reader), Wait::TimedOut);
    EXPECT_EQ(machine.now(), 10s);
    EXPECT_FALSE(timerRuns());
}

TEST_F(DialogueTest, AWaitWithoutTheStopFlagOrTheTimerDoesNotLookAtThem)
{
    reader.CancelScan(True);
    EXPECT_EQ(waitForReply(reader, {.cancellable = false}), Wait::TimedOut);
    device.sendUnasked(machine.now() + 60s, "x");
    EXPECT_EQ(waitForReply(reader, {.cancellable = false, .timed = false}), Wait::Reply);
}

TEST_F(DialogueTest, AWaitForMoreEndsWithTheLastOfThem)
{
    device.sendUnasked(machine.now() + 1s, "ab");
    device.sendUnasked(machine.now() + 3s, "c");
    EXPECT_EQ(waitForReply(reader, {.minimumCount = 3}), Wait::Reply);
    EXPECT_EQ(machine.now(), 3s);
}

TEST_F(DialogueTest, ADrainTakesWhatIsThere)
{
    for (const Int32 length : {1, 2, 0}) {
        leave("abcde");
        reader.fComm().mscComm().InputLen(length);
        drainInput(reader);
        EXPECT_EQ(reader.fComm().mscComm().InBufferCount(), 0);
        EXPECT_EQ(reader.fComm().mscComm().InputLen(), length);
    }
}

TEST_F(DialogueTest, ADrainWithPausesWaitsForWhatIsLate)
{
    leave("ab");
    device.sendUnasked(machine.now() + 40ms, "c");
    device.sendUnasked(machine.now() + 80ms, "d");
    const Moment begun = machine.now();
    drainInputWithPauses(reader);
    EXPECT_EQ(machine.now() - begun, 3 * 50ms);

    drainInputWithPauses(reader); // nothing waits, and no pause is made
    EXPECT_EQ(machine.now() - begun, 3 * 50ms);
}

TEST_F(DialogueTest, ATextIsWhatIsThere)
{
    leave("abc");
    reader.fComm().mscComm().InputLen(0);
    EXPECT_EQ(collected({.mostCharacters = 2}), "ab");
    EXPECT_EQ(collected(), "c");
    EXPECT_EQ(collected(), "");
    EXPECT_EQ(reader.fComm().mscComm().InputLen(), 1);
    EXPECT_THAT(pauses(), ElementsAre(1));
}

TEST_F(DialogueTest, ATextWithPausesEndsWithOneThatBringsNothing)
{
    leave("a");
    device.sendUnasked(machine.now() + 49ms, "bc");
    device.sendUnasked(machine.now() + 49ms + 52ms, "d");
    EXPECT_EQ(collected({.pauseWhenEmpty = true}), "abc");
    EXPECT_THAT(pauses(), ElementsAre(1, kPause, kPause));
}

TEST_F(DialogueTest, BytesAreCountedAndTheLastOneIsKept)
{
    leave("ab\xFFz");
    ReplyBytes reply{.sData = "before", .bDataArr = {}, .iByteCount = 7};
    collectBytes(reader, reply, {.mostCharacters = 3});
    EXPECT_EQ(reply.sData, "ab\xFF");
    EXPECT_EQ(reply.bDataArr[0], 0xFF);
    EXPECT_EQ(reply.iByteCount, 3);
    EXPECT_EQ(reader.fComm().mscComm().InBufferCount(), 1);
}

TEST_F(DialogueTest, AByteThatIsNotThereIsASubscriptFailure)
{
    leave("\xFF");
    EXPECT_EQ(takeByte(reader), 0xFF);
    EXPECT_THROW(static_cast<void>(takeByte(reader)), RuntimeFailure);
}

TEST_F(DialogueTest, TheLineIsSetBeforeItIsOpened)
{
    reader.fComm().mscComm().PortOpen(False);
    reader.settings().FlowControl = kelReaderFlowControlHardware;
    reader.settings().BaudRate = kelReaderBaudRate1200;
    reader.settings().Parity = "E";
    reader.settings().DataBits = kelReaderDataBits7;
    reader.settings().StopBits = 1.5F;
    openLine(reader, 1);
    EXPECT_EQ(reader.fComm().mscComm().Handshaking(), 2);
    EXPECT_EQ(reader.fComm().mscComm().Settings(), "1200,E,7,1.5");
    EXPECT_EQ(reader.fComm().mscComm().PortOpen(), True);
    EXPECT_THROW(openLine(reader, 1), RuntimeFailure);
}

} // namespace
} // namespace kel
