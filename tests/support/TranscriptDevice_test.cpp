// SPDX-License-Identifier: MIT
#include "tests/simulators/DeviceBench.h"
#include "tests/support/TranscriptDevice.h"

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
    EXPECT_EQ(device.next(), "line 7: > \"Q\"");
    EXPECT_FALSE(device.finished());
    bench.send("Q"); // sooner than it was recorded
    EXPECT_EQ(bench.wait(0ms), "AB");
    EXPECT_EQ(bench.wait(1999us), "");
    EXPECT_EQ(bench.wait(1us), "C");
    EXPECT_TRUE(device.finished());
    EXPECT_EQ(device.next(), "");
    EXPECT_TRUE(device.errors().empty());
}

TEST(TranscriptDevice, ADifferenceShowsBothSidesAndSilencesTheReader)
{
    TranscriptDevice device(parseTranscript(kReset));
    DeviceBench bench(device, line19200());
    bench.send("\x1BSRX");
    bench.send("T\r");
    EXPECT_EQ(bench.wait(1s), "");
    EXPECT_EQ(device.errors(), Texts{"line 3: the host sent 1B \"SRX\" where the transcript has 1B \"SRST\" 0D"});
    EXPECT_FALSE(device.finished());
}

TEST(TranscriptDevice, TheHostMustWaitForTheReply)
{
    TranscriptDevice device(parseTranscript(kReset));
    DeviceBench bench(device, line19200());
    bench.send("\x1BSRST\rQ");
    EXPECT_EQ(device.errors(), Texts{"line 5: the host sent \"Q\" where the transcript has \"< 0D\" from the reader "
                                     "first"});
}

TEST(TranscriptDevice, NothingComesBehindTheEnd)
{
    TranscriptDevice device(parseTranscript("> 41\n"));
    DeviceBench bench(device);
    bench.send("AB");
    EXPECT_TRUE(device.finished());
    EXPECT_EQ(device.errors(), Texts{"the host sent \"B\" after the end of the transcript"});
}

TEST(TranscriptDevice, ThePartsOfOneCommandMayBeWrittenApart)
{
    TranscriptDevice device(parseTranscript("> 41\n+ 50\n> 42\n< 43\n"));
    DeviceBench bench(device);
    EXPECT_EQ(bench.ask("AB", 0ms), "C");
    EXPECT_TRUE(device.errors().empty());
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
    EXPECT_EQ(device.errors(), Texts{"the line is set to 9600,N,8,1, and the transcript to 19200,N,8,2"});
}

} // namespace
} // namespace kel::test
