// SPDX-License-Identifier: MIT
#include "recording/TranscriptDevice.h"

#include "tests/simulators/DeviceBench.h"

#include <gtest/gtest.h>

namespace kel::test {
namespace {

using namespace std::chrono_literals;

using Texts = std::vector<std::string>;

constexpr const char* kReset = "# model: 13\n"
                               "# line: 19200,N,8,2\n"
                               "> 1B \"SRST\" 0D\n"
                               "+ 3.5\n"
                               "< 0D\n"
                               "+ 100\n"
                               "> \"Q\"\n"
                               "< \"AB\"\n"
                               "+ 2\n"
                               "< \"C\"\n";

LineParameters line19200()
{
    return {.baudRate = 19200, .stopBits = 2};
}

TEST(TranscriptDevice, PlaysTheReadersEnd)
{
    TranscriptDevice device(parseTranscript(kReset));
    DeviceBench bench(device, line19200());
    EXPECT_EQ(bench.wait(1s), "");
    bench.send("\x1BSRST");
    EXPECT_EQ(bench.wait(1s), "");
    bench.send("\r");
    EXPECT_EQ(bench.wait(3499us), "");
    EXPECT_EQ(bench.wait(1us), "\r");
    EXPECT_EQ(device.next(), "Line 7: > \"Q\"");
    EXPECT_FALSE(device.finished());
    bench.send("Q"); // sooner than it was recorded
    EXPECT_EQ(bench.wait(0ms), "AB");
    EXPECT_EQ(bench.wait(1999us), "");
    EXPECT_EQ(bench.wait(1us), "C");
    EXPECT_TRUE(device.finished());
    EXPECT_EQ(device.next(), "");
    EXPECT_TRUE(device.differences().empty());
}

TEST(TranscriptDevice, ADifferenceShowsBothSidesAndSilencesTheReader)
{
    TranscriptDevice device(parseTranscript(kReset));
    DeviceBench bench(device, line19200());
    bench.send("\x1BSRX");
    bench.send("T\r");
    EXPECT_EQ(bench.wait(1s), "");
    EXPECT_EQ(device.differences(), Texts{"Line 3: the host sent 1B \"SRX\" where the transcript has 1B \"SRST\" 0D."});
    EXPECT_FALSE(device.finished());
}

TEST(TranscriptDevice, TheHostMustWaitForTheReply)
{
    TranscriptDevice device(parseTranscript(kReset));
    DeviceBench bench(device, line19200());
    bench.send("\x1BSRST\rQ");
    EXPECT_EQ(device.differences(), Texts{"Line 5: the host sent \"Q\" where \"< 0D\" comes from the reader first."});
}

TEST(TranscriptDevice, NothingComesBehindTheEnd)
{
    TranscriptDevice device(parseTranscript("> 41\n"));
    DeviceBench bench(device);
    bench.send("AB");
    EXPECT_TRUE(device.finished());
    EXPECT_EQ(device.differences(), Texts{"The host sent \"B\" after the end of the transcript."});
}

TEST(TranscriptDevice, ThePartsOfOneCommandMayBeWrittenApart)
{
    TranscriptDevice device(parseTranscript("> 41\n+ 50\n> 42\n< 43\n"));
    DeviceBench bench(device);
    EXPECT_EQ(bench.ask("AB", 0ms), "C");
    EXPECT_TRUE(device.differences().empty());
}

TEST(TranscriptDevice, MaySpeakFirst)
{
    TranscriptDevice device(parseTranscript("+ 10\n< \"hello\"\n"));
    DeviceBench bench(device);
    EXPECT_EQ(bench.wait(9ms), "");
    EXPECT_EQ(bench.wait(1ms), "hello");
}

TEST(TranscriptDevice, PausesInARowAddUp)
{
    TranscriptDevice device(parseTranscript("+ 10\n+ 5\n< 41\n"));
    DeviceBench bench(device);
    EXPECT_EQ(bench.wait(14ms), "");
    EXPECT_EQ(bench.wait(1ms), "A");
}

TEST(TranscriptDevice, Unplugs)
{
    TranscriptDevice device(parseTranscript("> 41\n< 42\n+ 5\n! unplug\n"));
    DeviceBench bench(device);
    EXPECT_EQ(bench.ask("A", 4ms), "B");
    EXPECT_FALSE(device.hungUp());
    bench.wait(1ms);
    EXPECT_TRUE(device.hungUp());
    EXPECT_TRUE(device.finished());
    EXPECT_EQ(device.nextEvent(), std::nullopt);
}

TEST(TranscriptDevice, DemandsTheLineOfItsHead)
{
    TranscriptDevice device(parseTranscript(kReset));
    DeviceBench bench(device, {.baudRate = 9600});
    EXPECT_EQ(device.differences(), Texts{"The line is set to 9600,N,8,1; in the transcript it was 19200,N,8,2."});
}

// --- Recorded ones

Transcript recorded(const std::string& dialogue)
{
    return parseTranscript("# times: recorded\n" + dialogue);
}

TEST(RecordedTranscriptDevice, ALookShowsWhatOneMayHaveShownToTheRecordedHost)
{
    TranscriptDevice device(recorded("> 41\n+ 20 # not before 12\n< 42\n"));
    DeviceBench bench(device);
    EXPECT_EQ(bench.ask("A", 11ms), "");
    device.hostLooks(bench.now());
    EXPECT_EQ(device.nextEvent(), Moment(20ms));
    bench.wait(1ms);
    device.hostLooks(bench.now());
    EXPECT_EQ(bench.wait(0ms), "B");
}

TEST(RecordedTranscriptDevice, ThePauseAfterBytesBeginsWhenTheHostKnowsOfThem)
{
    TranscriptDevice device(recorded("> 41\n+ 1\n< 42\n+ 5\n< 43\n"));
    DeviceBench bench(device);
    EXPECT_EQ(bench.ask("A", 100ms), "B");
    device.hostKnows(bench.now());
    EXPECT_EQ(bench.wait(4999us), "");
    EXPECT_EQ(bench.wait(1us), "C");
}

TEST(RecordedTranscriptDevice, WhatComesBeforeAnOutputComesAtOnceIfThatIsEarly)
{
    TranscriptDevice device(recorded("> 41\n+ 50\n< 42\n+ 5\n< 43\n+ 5\n> 44\n+ 5\n< 45\n"));
    DeviceBench bench(device);
    bench.send("A");
    device.hostSends(bench.now(), "D");
    EXPECT_EQ(bench.wait(0ms), "BC");
    bench.send("D");
    EXPECT_EQ(bench.wait(4ms), "");
    EXPECT_EQ(bench.wait(1ms), "E");
    EXPECT_TRUE(device.differences().empty());
    EXPECT_TRUE(device.finished());
}

TEST(RecordedTranscriptDevice, ADifferenceShowsTheWholeOutput)
{
    TranscriptDevice device(recorded("> \"SRST\"\n"));
    DeviceBench bench(device);
    device.hostSends(bench.now(), "SQUIT");
    bench.send("SQUIT");
    EXPECT_EQ(device.differences(), Texts{"Line 2: the host sent \"SQUIT\" where the transcript has \"SRST\"."});
    EXPECT_EQ(device.unsent(), "Line 2: > \"SRST\"");
}

TEST(RecordedTranscriptDevice, ShowsWhenItsHostWentOn)
{
    TranscriptDevice device(recorded("+ 5\n> 41\n+ 10\n< 42\n+ 7\n> 43\n"));
    DeviceBench bench(device);
    EXPECT_EQ(device.nextOfHost(), Moment(5ms));
    bench.send("A");
    EXPECT_EQ(device.nextOfHost(), std::nullopt);
    bench.wait(10ms);
    device.hostKnows(bench.now());
    EXPECT_EQ(device.nextOfHost(), Moment(17ms));
}

TEST(RecordedTranscriptDevice, ALineOfItsHeadThatIsNoneIsADifference)
{
    TranscriptDevice device(parseTranscript("# line: fast\n> 41\n"));
    DeviceBench bench(device);
    EXPECT_EQ(device.differences(), Texts{"The line is set to 9600,N,8,1; in the transcript it was fast."});
}

} // namespace
} // namespace kel::test
