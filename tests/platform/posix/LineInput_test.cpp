// SPDX-License-Identifier: MIT
#include "platform/posix/LineInput.h"
#include "platform/posix/LineOutput.h"
#include "platform/posix/SteadyTime.h"
#include "tests/platform/posix/PosixTest.h"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <sys/ioctl.h>
#include <thread>

namespace kel {
namespace {

using namespace std::chrono_literals;
using test::expectFailure;

// Looks at a line of this test's speed stay fresh for so long.
constexpr Moment kLook = 1ms;

class LineInputTest : public test::PosixTest {
protected:
    LineInputTest() : line(openControl(pty)) {}

    /// Bytes from the far end, which are there when this returns.
    void arrive(const std::string& bytes)
    {
        const int before = unread();
        ASSERT_EQ(pty.write(bytes), bytes.size());
        while (unread() < before + static_cast<int>(bytes.size()))
            std::this_thread::yield();
    }

    [[nodiscard]] int unread() const
    {
        int count = 0;
        ::ioctl(line->input().handle(), FIONREAD, &count);
        return count;
    }

    /// Lets the last look grow old.
    static void growOld() { sleepUntil(steadyTime() + 2 * kLook); }

    /// Runs a waiting loop up to its failure; how many turns it took.
    int turnsUntilFailure(Int32 wanted)
    {
        int turns = 0;
        expectFailure(FailureCode::ErrorReadingDevice, {"Port 1 (" + pty.name() + ") has hung up"}, [&] {
            while (line->InBufferCount() < wanted && ++turns < 100)
                machine.pump().DoEvents();
        });
        return turns;
    }

    Pty pty;
    std::unique_ptr<PosixSerialControl> line;
};

TEST_F(LineInputTest, SeesWhatHasArrivedWithoutAPump)
{
    EXPECT_EQ(line->InBufferCount(), 0);
    arrive("abc");
    EXPECT_EQ(line->InBufferCount(), 3);
}

TEST_F(LineInputTest, GivesAsManyBytesAsAreWanted)
{
    arrive("abcdef");
    line->InputLen(1);
    EXPECT_EQ(line->Input(), "a");
    line->InputLen(3);
    EXPECT_EQ(line->Input(), "bcd");
    line->InputLen(10);
    EXPECT_EQ(line->Input(), "ef");
    EXPECT_EQ(line->Input(), "");
    arrive("gh");
    line->InputLen(0);
    EXPECT_EQ(line->Input(), "gh");
    EXPECT_EQ(line->InBufferCount(), 0);
}

TEST_F(LineInputTest, ZeroBytesAreBytes)
{
    arrive(std::string("\0a\0", 3));
    EXPECT_EQ(line->Input(), std::string("\0a\0", 3));
}

TEST_F(LineInputTest, AllThatWaitsIsAlsoWhatCameSinceTheLastLook)
{
    arrive("ab");
    EXPECT_EQ(line->InBufferCount(), 2);
    arrive("cd");
    growOld();
    EXPECT_EQ(line->Input(), "abcd");
}

TEST_F(LineInputTest, LooksAgainBehindAPause)
{
    arrive("a");
    EXPECT_EQ(line->InBufferCount(), 1);
    arrive("b");
    machine.pump().Sleep(1);
    EXPECT_EQ(line->InBufferCount(), 2);
}

TEST_F(LineInputTest, LooksAgainBehindAnOutput)
{
    arrive("a");
    EXPECT_EQ(line->InBufferCount(), 1);
    const std::uint64_t reads = line->input().reads();
    line->Output("x");
    EXPECT_EQ(line->InBufferCount(), 1);
    EXPECT_EQ(line->input().reads(), reads + 1);
}

TEST_F(LineInputTest, LooksAgainWhenACharacterCouldHaveCome)
{
    arrive("a");
    EXPECT_EQ(line->InBufferCount(), 1);
    arrive("b");
    growOld();
    EXPECT_EQ(line->InBufferCount(), 2);
}

TEST_F(LineInputTest, ALoopByteByByteMakesNoSystemCallForAByte)
{
    const std::string page(4000, 'x');
    arrive(page);
    line->InputLen(1);
    const std::uint64_t reads = line->input().reads();
    const Moment begin = steadyTime();
    std::size_t taken = 0;
    while (line->InBufferCount() > 0)
        taken += line->Input().size();
    EXPECT_EQ(taken, page.size());
    // The first look, the last one, and one for each time that the last one had grown old.
    const auto grownOld = static_cast<std::uint64_t>((steadyTime() - begin) / kLook);
    EXPECT_LE(line->input().reads() - reads, 2 + grownOld);
}

TEST_F(LineInputTest, ALoopThatWaitsForMoreBytesSeesThemCome)
{
    std::thread reader([&] {
        for (int i = 0; i < 5; ++i) {
            sleepUntil(steadyTime() + 3ms);
            EXPECT_EQ(pty.write("x"), 1U);
        }
    });
    while (line->InBufferCount() < 5) {
    }
    reader.join();
    EXPECT_EQ(line->Input(), "xxxxx");
}

// --- The end of a line

TEST_F(LineInputTest, GivesWhatCameBeforeAHangUpAndThenFails)
{
    arrive("abc");
    EXPECT_EQ(line->InBufferCount(), 3);
    pty.hangUp();
    machine.pump().DoEvents();
    line->InputLen(1);
    EXPECT_EQ(line->InBufferCount(), 3);
    EXPECT_EQ(line->Input(), "a");
    EXPECT_EQ(line->Input(), "b");
    EXPECT_EQ(line->InBufferCount(), 1);
    EXPECT_EQ(line->Input(), "c");
    expectFailure(FailureCode::ErrorReadingDevice, {"has hung up"}, [&] { static_cast<void>(line->InBufferCount()); });
    expectFailure(FailureCode::ErrorReadingDevice, {"has hung up"}, [&] { static_cast<void>(line->Input()); });
    expectFailure(FailureCode::ErrorReadingDevice, {"has hung up"}, [&] { line->Output("x"); });
    EXPECT_EQ(line->PortOpen(), True);
    line->PortOpen(False);
}

TEST_F(LineInputTest, EachAccessFindsTheHangUpByItself)
{
    pty.hangUp();
    expectFailure(FailureCode::ErrorReadingDevice, {"has hung up"}, [&] { static_cast<void>(line->InBufferCount()); });
}

TEST_F(LineInputTest, InputFindsTheHangUpByItself)
{
    pty.hangUp();
    expectFailure(FailureCode::ErrorReadingDevice, {"has hung up"}, [&] { static_cast<void>(line->Input()); });
}

TEST_F(LineInputTest, OutputFindsTheHangUpByItself)
{
    pty.hangUp();
    expectFailure(FailureCode::ErrorReadingDevice, {"has hung up"}, [&] { line->Output("x"); });
    expectFailure(FailureCode::ErrorReadingDevice, {"has hung up"}, [&] { line->Output(""); });
}

TEST_F(LineInputTest, AWaitForMoreThanAHungUpLineHasEnds)
{
    arrive("abc");
    EXPECT_EQ(line->InBufferCount(), 3);
    pty.hangUp();
    EXPECT_LE(turnsUntilFailure(4), 5);
    // What came is there all the same.
    EXPECT_EQ(line->Input(), "abc");
}

TEST_F(LineInputTest, LooksInOneGoAreNoWait)
{
    arrive("abc");
    EXPECT_EQ(line->InBufferCount(), 3);
    pty.hangUp();
    machine.pump().DoEvents();
    for (int look = 0; look < 20; ++look)
        EXPECT_EQ(line->InBufferCount(), 3);
}

TEST_F(LineInputTest, AWaitWithPausesOnAHungUpLineEnds)
{
    arrive("a");
    EXPECT_EQ(line->InBufferCount(), 1);
    pty.hangUp();
    int pauses = 0;
    expectFailure(FailureCode::ErrorReadingDevice, {}, [&] {
        while (line->InBufferCount() < 2 && ++pauses < 100)
            machine.pump().Sleep(1);
    });
    EXPECT_LE(pauses, 5);
}

TEST_F(LineInputTest, NewSettingsOnAHungUpLineAreRefused)
{
    pty.hangUp();
    expectFailure(FailureCode::CannotSetLineState, {"Input/output error"}, [&] { line->Settings("300,N,8,1"); });
}

// --- Output

TEST_F(LineInputTest, OutputLosesNothingWhenTheReaderIsSlow)
{
    std::string sent;
    for (int i = 0; i < 100000; ++i)
        sent += static_cast<char>('a' + i % 23);
    std::string received;
    std::thread reader([&] {
        while (received.size() < sent.size()) {
            const std::string part = pty.read();
            received += part;
            if (part.empty())
                sleepUntil(steadyTime() + 1ms);
        }
    });
    line->Output(sent);
    reader.join();
    EXPECT_EQ(received, sent);
}

TEST_F(LineInputTest, BothSidesMaySendMoreThanTheOtherHasRoomForAtATime)
{
    const std::string much(60000, 'x');
    std::size_t received = 0;
    std::thread reader([&] {
        for (std::string_view left = much; !left.empty();)
            left.remove_prefix(pty.write(left));
        while (received < much.size())
            received += pty.read().size();
    });
    line->Output(much);
    reader.join();
    EXPECT_EQ(received, much.size());
    std::size_t taken = 0;
    while (taken < much.size()) {
        machine.pump().DoEvents();
        taken += line->Input().size();
    }
    EXPECT_EQ(taken, much.size());
}

TEST_F(LineInputTest, OutputToALineThatTakesNothingIsGivenUp)
{
    const std::string much(100000, 'x');
    expectFailure(FailureCode::ErrorReadingDevice, {"Port 1 (" + pty.name() + ")", "takes no output", "bytes are left"},
                  [&] { writeAll(line->input(), much, 50ms); });
    // The line itself is there.
    arrive("a");
    EXPECT_EQ(line->InBufferCount(), 1);
}

TEST_F(LineInputTest, AHangUpWhileOutputWaitsIsFound)
{
    const std::string much(100000, 'x');
    std::thread reader([&] {
        sleepUntil(steadyTime() + 20ms);
        pty.hangUp();
    });
    expectFailure(FailureCode::ErrorReadingDevice, {"has hung up"}, [&] { line->Output(much); });
    reader.join();
}

// --- Signals

std::atomic<int> signals{0};

/// Interrupts the system calls of the thread that made it, again and again.
class Interruptions {
public:
    Interruptions() : victim_(::pthread_self())
    {
        struct sigaction action {};
        action.sa_handler = [](int) { ++signals; };
        ::sigaction(SIGUSR1, &action, &before_);
        signals = 0;
        thread_ = std::thread([this] {
            while (!end_) {
                ::pthread_kill(victim_, SIGUSR1);
                sleepUntil(steadyTime() + 500us);
            }
        });
    }
    ~Interruptions()
    {
        end_ = true;
        thread_.join();
        ::sigaction(SIGUSR1, &before_, nullptr);
    }
    Interruptions(const Interruptions&) = delete;
    Interruptions& operator=(const Interruptions&) = delete;

private:
    pthread_t victim_;
    struct sigaction before_ {};
    std::atomic<bool> end_{false};
    std::thread thread_;
};

TEST_F(LineInputTest, SignalsNeitherShortenAPauseNorLoseAByte)
{
    const std::string much(60000, 'x');
    std::string received;
    std::thread reader([&] {
        while (received.size() < much.size()) {
            received += pty.read();
            sleepUntil(steadyTime() + 1ms);
        }
        for (std::string_view left = much; !left.empty();)
            left.remove_prefix(pty.write(left));
    });
    std::size_t taken = 0;
    {
        const Interruptions interruptions;
        line->Output(much);
        const Moment begin = steadyTime();
        machine.pump().Sleep(30);
        EXPECT_GE(steadyTime() - begin, 30ms);
        while (taken < much.size()) {
            machine.pump().DoEvents();
            taken += line->Input().size();
        }
        while (signals <= 5)
            machine.pump().Sleep(1);
    }
    reader.join();
    EXPECT_EQ(received, much);
    EXPECT_EQ(taken, much.size());
}

} // namespace
} // namespace kel
