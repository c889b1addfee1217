// SPDX-License-Identifier: MIT
#include "simulators/platform/ReplayCarrier.h"

#include "types/RuntimeFailure.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace kel::test {
namespace {

using namespace std::chrono_literals;

class ReplayCarrierTest : public testing::Test {
protected:
    /// The line is open to a dialogue.
    void play(const std::string& dialogue)
    {
        replay_ = std::make_unique<ReplayCarrier>(parseTranscript(dialogue));
        line().PortOpen(True);
    }

    [[nodiscard]] ReplayCarrier& replay() { return *replay_; }
    [[nodiscard]] SerialControl& line() { return replay_->mscComm(); }
    [[nodiscard]] ScanTimer& timer() { return replay_->tmrScan(); }
    [[nodiscard]] MessagePump& pump() { return replay_->pump(); }

    void startTimer(Int32 milliseconds)
    {
        timer().Interval(milliseconds);
        timer().Enabled(True);
    }

    /// The number and the text of the failure of a statement.
    [[nodiscard]] static std::string failure(const std::function<void()>& statement)
    {
        try {
            statement();
        } catch (const RuntimeFailure& failed) {
            return std::to_string(failed.number()) + " " + failed.text();
        }
        return "nothing failed";
    }

private:
    std::unique_ptr<ReplayCarrier> replay_;
};

TEST_F(ReplayCarrierTest, ATurnLastsUntilTheReaderAnswers)
{
    play("> 41\n+ 30000\n< 42\n");
    EXPECT_EQ(timer().Interval(), 10000);
    startTimer(60000);
    line().Output("A");
    while (line().InBufferCount() == 0)
        pump().DoEvents();
    EXPECT_EQ(line().Input(), "B");
    EXPECT_EQ(pump().now(), 30s);
    EXPECT_TRUE(timer().Enabled());
    EXPECT_EQ(replay().unsent(), "");
}

TEST_F(ReplayCarrierTest, AnyPortLeadsToTheReader)
{
    play("> 41\n");
    line().PortOpen(False);
    line().CommPort(77);
    EXPECT_EQ(line().CommPort(), 77);
    line().PortOpen(True);
    line().Output("A");
    EXPECT_EQ(replay().unsent(), "");
}

TEST_F(ReplayCarrierTest, TheTimerEndsBeforeBytesThatTheRecordedHostSawAfterIt)
{
    play("# times: recorded\n> 41\n+ 120 # not before 40\n< 42\n");
    line().Output("A");
    startTimer(100);
    while (pump().now() == 0ms)
        pump().DoEvents();
    EXPECT_EQ(pump().now(), 100ms);
    EXPECT_FALSE(timer().Enabled());
}

TEST_F(ReplayCarrierTest, AHostThatWaitsWhereTheRecordedOneWentOnIsToStop)
{
    play("# times: recorded\n> 41\n+ 100\n> 43\n");
    line().Output("A");
    startTimer(1000);
    while (!replay().stopped()) {
        EXPECT_TRUE(timer().Enabled());
        pump().DoEvents();
    }
    EXPECT_GE(pump().now(), 100ms);
    EXPECT_LT(pump().now(), 1000ms);
    while (timer().Enabled())
        pump().DoEvents();
    EXPECT_EQ(pump().now(), 1000ms);
}

TEST_F(ReplayCarrierTest, AHostThatDoesNotStopHearsThatTheLineHasHungUp)
{
    play("> 41\n");
    line().Output("A");
    std::string failed;
    while (failed.empty()) {
        pump().DoEvents();
        try {
            static_cast<void>(line().InBufferCount());
        } catch (const RuntimeFailure& failure) {
            failed = failure.text();
        }
    }
    EXPECT_TRUE(replay().stopped());
    EXPECT_EQ(failed, "Error reading comm device");
}

TEST_F(ReplayCarrierTest, ADeadLineFailsAsItDidAndShowsWhatIsLeftOnItThrice)
{
    play("> 41\n< 42\n! unplug # Error reading comm device: Port 1\n");
    line().Output("A");
    EXPECT_EQ(line().InBufferCount(), 1);
    EXPECT_EQ(line().InBufferCount(), 1);
    EXPECT_EQ(failure([&] { static_cast<void>(line().InBufferCount()); }), "8020 Error reading comm device: Port 1");
    EXPECT_EQ(line().Input(), "B");
    EXPECT_EQ(failure([&] { static_cast<void>(line().Input()); }), "8020 Error reading comm device: Port 1");
}

TEST_F(ReplayCarrierTest, AnOutputMeetsTheHangUpBeforeIt)
{
    play("# times: recorded\n> 41\n+ 500\n! unplug # Gone\n");
    line().Output("A");
    EXPECT_EQ(failure([&] { line().Output("B"); }), "8020 Gone");
}

TEST_F(ReplayCarrierTest, AReplyBetweenTwoOutputsIsWaitedFor)
{
    play("> 41\n< 42\n> 43\n");
    line().Output("AC");
    ASSERT_EQ(replay().differences().size(), 1U);
    EXPECT_EQ(replay().differences()[0], "Line 2: the host sent \"C\" where \"< \"B\"\" comes from the reader first.");
}

TEST_F(ReplayCarrierTest, FailsWhereTheRecordedLineDid)
{
    ReplayCarrier refused(parseTranscript("# refused: PortOpen 8005 Port already open: Port 1\n"));
    EXPECT_EQ(failure([&] { refused.mscComm().PortOpen(True); }), "8005 Port already open: Port 1");
    EXPECT_FALSE(refused.mscComm().PortOpen());
    ReplayCarrier noPort(parseTranscript("# refused: CommPort 8002 Invalid port number\n"));
    EXPECT_EQ(failure([&] { noPort.mscComm().CommPort(9); }), "8002 Invalid port number");
    EXPECT_EQ(noPort.mscComm().CommPort(), 1);
}

} // namespace
} // namespace kel::test
