// SPDX-License-Identifier: MIT
#include "tests/simulators/framework/LittleReader.h"

#include <gtest/gtest.h>

namespace kel {
namespace {

using namespace std::chrono_literals;

TEST(SimulatorFaults, DropLosesOneByte)
{
    LittleReader reader(withFaults({"drop@byte=3"}));
    DeviceBench bench(reader);
    EXPECT_EQ(bench.ask("R"), "013456789");
    EXPECT_EQ(bench.ask("R"), "0123456789");
}

TEST(SimulatorFaults, CountBytesOverAllReplies)
{
    LittleReader reader(withFaults({"drop@byte=13"}));
    DeviceBench bench(reader);
    EXPECT_EQ(bench.ask("R"), "0123456789");
    EXPECT_EQ(bench.ask("R"), "013456789");
}

TEST(SimulatorFaults, ADroppedByteHasTakenItsTime)
{
    LittleReader reader(withFaults({"drop@byte=2"}, Rate::Wire));
    DeviceBench bench(reader, thousandBaud());
    bench.ask("R", 30ms);
    EXPECT_EQ(times(bench), (std::vector<Moment>{10ms, 30ms}));
}

TEST(SimulatorFaults, GarbleChangesOneByte)
{
    LittleReader reader(withFaults({"garble=1@byte=3", "garble@byte=5"}));
    DeviceBench bench(reader);
    EXPECT_EQ(bench.ask("R"), std::string("0133") + static_cast<char>('4' ^ 0x55) + "56789");
}

TEST(SimulatorFaults, SplitMakesAPause)
{
    LittleReader reader(withFaults({"split=500@byte=3"}));
    DeviceBench bench(reader);
    bench.send("R");
    EXPECT_EQ(bench.wait(499ms), "01");
    EXPECT_EQ(bench.wait(1ms), "23456789");
}

TEST(SimulatorFaults, DripMakesEachByteLater)
{
    LittleReader reader(withFaults({"drip=100@byte=8"}));
    DeviceBench bench(reader);
    bench.send("R");
    EXPECT_EQ(bench.wait(0ms), "0123456");
    EXPECT_EQ(bench.wait(100ms), "7");
    EXPECT_EQ(bench.wait(100ms), "8");
    EXPECT_EQ(bench.wait(99ms), "");
    EXPECT_EQ(bench.wait(1ms), "9");
    bench.send("R");
    EXPECT_EQ(bench.wait(1s), "0123456789");
    EXPECT_EQ(bench.arrivals().back().at, 1300ms);
}

TEST(SimulatorFaults, LateDelaysTheWholeReplyThatHoldsTheByte)
{
    LittleReader reader(withFaults({"late=2500@byte=11"}));
    DeviceBench bench(reader);
    EXPECT_EQ(bench.ask("R", 0ms), "0123456789");
    bench.send("R");
    EXPECT_EQ(bench.wait(2499ms), "");
    EXPECT_EQ(bench.wait(1ms), "0123456789");
    EXPECT_EQ(bench.ask("R", 0ms), "0123456789");
}

TEST(SimulatorFaults, LateReachesToTheLastByteOfAReply)
{
    LittleReader reader(withFaults({"late=2500@byte=10"}));
    DeviceBench bench(reader);
    bench.send("R");
    EXPECT_EQ(bench.wait(2499ms), "");
    EXPECT_EQ(bench.wait(1ms), "0123456789");
}

TEST(SimulatorFaults, SilentEndsAllOutput)
{
    LittleReader reader(withFaults({"silent@byte=4"}));
    DeviceBench bench(reader);
    EXPECT_EQ(bench.ask("R"), "012");
    EXPECT_EQ(bench.ask("R"), "");
    EXPECT_FALSE(reader.hungUp());
}

TEST(SimulatorFaults, UnplugAtAByteHangsUpBehindTheBytesBefore)
{
    LittleReader reader(withFaults({"unplug@byte=4"}, Rate::Wire));
    DeviceBench bench(reader, thousandBaud());
    bench.send("R");
    EXPECT_EQ(bench.wait(39ms), "012");
    EXPECT_FALSE(reader.hungUp());
    EXPECT_EQ(bench.wait(1ms), "");
    EXPECT_TRUE(reader.hungUp());
    EXPECT_EQ(bench.ask("Rx"), "");
    EXPECT_TRUE(reader.errors().empty());
}

TEST(SimulatorFaults, OfASheetCountFromItsFeeding)
{
    LittleReader reader(withFaults({"garble=1@sheet=2,byte=9", "late=100@sheet=3", "drop@sheet=1"}));
    DeviceBench bench(reader);
    EXPECT_EQ(bench.ask("R"), "0123456789");
    EXPECT_EQ(bench.ask("F"), "heet 1:1");
    EXPECT_EQ(bench.ask("F"), "sheet 2:3");
    bench.send("F");
    EXPECT_EQ(bench.wait(99ms), "");
    EXPECT_EQ(bench.wait(1ms), "sheet 3:3");
}

TEST(SimulatorFaults, AJamTakesTheSheet)
{
    LittleReader reader(withFaults({"jam@sheet=2"}));
    DeviceBench bench(reader);
    EXPECT_EQ(bench.ask("F"), "sheet 1:1");
    EXPECT_EQ(reader.nextFeed(), LittleReader::Feed::Jam);
    EXPECT_EQ(bench.ask("F"), "");
    EXPECT_EQ(reader.lastFeed, LittleReader::Feed::Jam);
    EXPECT_EQ(bench.ask("F"), "sheet 3:3");
    const std::vector<SheetRecord> expected = {{SheetEvent::Fed, 1},
                                               {SheetEvent::Read, 1},
                                               {SheetEvent::Jammed, 2},
                                               {SheetEvent::Fed, 3},
                                               {SheetEvent::Read, 3}};
    EXPECT_EQ(reader.log(), expected);
}

TEST(SimulatorFaults, AnEmptyFeederStaysEmpty)
{
    LittleReader reader(withFaults({"empty@sheet=2"}));
    DeviceBench bench(reader);
    EXPECT_EQ(bench.ask("F"), "sheet 1:1");
    EXPECT_EQ(bench.ask("F"), "");
    EXPECT_EQ(reader.lastFeed, LittleReader::Feed::Empty);
    EXPECT_EQ(bench.ask("F"), "");
    EXPECT_EQ(reader.log().back(), (SheetRecord{SheetEvent::Empty, 0}));
}

TEST(SimulatorFaults, UnplugAtASheetHangsUpWhenItIsFed)
{
    LittleReader reader(withFaults({"unplug@sheet=2"}));
    DeviceBench bench(reader);
    EXPECT_EQ(bench.ask("F"), "sheet 1:1");
    EXPECT_FALSE(reader.hungUp());
    EXPECT_EQ(bench.ask("F"), "");
    EXPECT_TRUE(reader.hungUp());
    EXPECT_EQ(reader.nextEvent(), std::nullopt);
}

} // namespace
} // namespace kel
