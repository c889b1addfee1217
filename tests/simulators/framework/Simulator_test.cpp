// SPDX-License-Identifier: MIT
#include "simulators/framework/LatestEntries.h"
#include "tests/simulators/framework/LittleReader.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace kel {
namespace {

using namespace std::chrono_literals;

TEST(Simulator, SendsByteAfterByteAtWireRate)
{
    LittleReader reader({.rate = Rate::Wire});
    DeviceBench bench(reader, thousandBaud());
    bench.wait(5ms);
    bench.send("R");
    EXPECT_EQ(bench.wait(35ms), "012");
    EXPECT_TRUE(reader.isSending());
    EXPECT_EQ(bench.wait(65ms), "3456789");
    EXPECT_FALSE(reader.isSending());
    ASSERT_EQ(bench.arrivals().size(), 10U);
    EXPECT_EQ(bench.arrivals().front().at, 15ms);
    EXPECT_EQ(bench.arrivals().back().at, 105ms);
}

TEST(Simulator, QueuesRepliesBehindEachOther)
{
    LittleReader reader({.rate = Rate::Wire});
    DeviceBench bench(reader, thousandBaud());
    reader.send("AB");
    bench.wait(5ms);
    bench.send("R");
    EXPECT_EQ(bench.wait(25ms), "AB0");
    EXPECT_EQ(times(bench), (std::vector<Moment>{10ms, 20ms, 30ms}));
}

TEST(Simulator, SendsAllAtOnceAtUnlimitedRate)
{
    LittleReader reader({.rate = Rate::Unlimited});
    DeviceBench bench(reader, thousandBaud());
    bench.wait(5ms);
    EXPECT_EQ(bench.ask("R", 0ms), "0123456789");
    EXPECT_EQ(bench.arrivals().back().at, 5ms);
}

TEST(Simulator, ActsAndSendsLaterInTheOrderOfTime)
{
    LittleReader reader({.rate = Rate::Unlimited});
    DeviceBench bench(reader);
    std::string order;
    Moment seen{};
    reader.schedule(20ms, [&] {
        order += "b";
        seen = reader.now();
    });
    reader.schedule(20ms, [&] { order += "c"; });
    reader.schedule(10ms, [&] {
        order += "a";
        reader.schedule(30ms, [&] { order += "d"; });
    });
    reader.sendAfter(15ms, "X");
    reader.send("Y");
    EXPECT_TRUE(reader.isScheduled());
    EXPECT_EQ(bench.wait(1s), "YX");
    EXPECT_EQ(order, "abcd");
    EXPECT_EQ(seen, 20ms);
    EXPECT_EQ(times(bench), (std::vector<Moment>{0ms, 15ms}));
    EXPECT_EQ(reader.nextEvent(), std::nullopt);
}

TEST(Simulator, KeepsItsOwnTimesWhereTheCallerComesLate)
{
    LittleReader reader({.rate = Rate::Wire});
    reader.lineOpened(0ms, thousandBaud());
    Moment seen{};
    reader.schedule(20ms, [&] {
        seen = reader.now();
        reader.send("A");
    });
    EXPECT_EQ(reader.takeByte(1s), Byte{'A'});
    EXPECT_EQ(seen, 20ms);
}

TEST(Simulator, ALongSessionKeepsTheLatestOfItsLogAndTheFirstOfItsErrors)
{
    constexpr Int32 kSheets = 12'000;
    SimulatorOptions options{.rate = Rate::Unlimited};
    options.sheets.put({.side1Rows = 1, .side1Columns = 1}, {.seed = 1, .count = kSheets});
    LittleReader reader(std::move(options));
    Int32 heard = 0;
    reader.onLog([&](const SheetRecord&) { ++heard; });
    reader.onError([&](const std::string&) { ++heard; });
    DeviceBench bench(reader);
    for (Int32 sheet = 0; sheet < kSheets; ++sheet)
        bench.ask(sheet == 0 ? "?F" : "!F");
    EXPECT_EQ(heard, 3 * kSheets);
    EXPECT_LE(reader.log().size(), kMostEntries);
    EXPECT_EQ(reader.log().back(), (SheetRecord{SheetEvent::Read, kSheets}));
    EXPECT_EQ(reader.errors().size(), kMostEntries);
    EXPECT_EQ(reader.errors().front(), "unknown command 3F");
}

TEST(Simulator, AResetForgetsWhatIsOutstanding)
{
    LittleReader reader({.rate = Rate::Wire});
    DeviceBench bench(reader, thousandBaud());
    reader.send("ABC");
    reader.sendAfter(50ms, "D");
    EXPECT_EQ(bench.wait(15ms), "A");
    reader.dropPending();
    EXPECT_EQ(bench.wait(1s), "");
    EXPECT_FALSE(reader.isScheduled());
    EXPECT_EQ(bench.ask("R", 10ms), "0");
}

TEST(Simulator, WhatIsSentBehindAClosedLineIsLost)
{
    LittleReader reader({.rate = Rate::Wire});
    DeviceBench bench(reader, thousandBaud());
    bool acted = false;
    reader.send("ABC");
    reader.sendAfter(50ms, "lost");
    reader.schedule(60ms, [&] { acted = true; });
    reader.sendAfter(2s, "Z");
    EXPECT_EQ(bench.wait(15ms), "A");
    bench.close();
    reader.send("lost");
    EXPECT_FALSE(reader.isSending());
    Moment opened = 1s;
    reader.lineOpened(opened, thousandBaud());
    EXPECT_TRUE(acted);
    EXPECT_EQ(reader.takeByte(1500ms), std::nullopt);
    EXPECT_EQ(reader.nextEvent(), Moment(2s));
    EXPECT_EQ(reader.takeByte(3s), Byte{'Z'});
}

TEST(Simulator, FaultsOfTheHostAreKept)
{
    LittleReader reader;
    std::vector<std::string> heard;
    reader.onError([&](const std::string& text) { heard.push_back(text); });
    DeviceBench bench(reader);
    bench.send("\x01z");
    EXPECT_EQ(reader.errors(), (std::vector<std::string>{"unknown command 01", "unknown command 7A"}));
    EXPECT_EQ(heard, reader.errors());
}

TEST(Simulator, TheLineMustBeSetAsDemanded)
{
    LittleReader reader;
    reader.demandLine("19200,n,8,2");
    DeviceBench good(reader, {.baudRate = 19200, .stopBits = 2});
    EXPECT_TRUE(reader.errors().empty());
    DeviceBench bad(reader, {.baudRate = 19200, .parity = 'E', .stopBits = 2});
    EXPECT_EQ(reader.errors(),
              (std::vector<std::string>{"the line is set to 19200,E,8,2, and the reader to 19200,N,8,2"}));
}

TEST(Simulator, TheSettingLineWinsOverTheModels)
{
    LittleReader reader({.settings = {{"line", "300,N,8,1"}}});
    reader.demandLine("19200,N,8,2");
    DeviceBench bench(reader, {.baudRate = 300});
    EXPECT_TRUE(reader.errors().empty());
    EXPECT_THROW(LittleReader({.settings = {{"line", "fast"}}}), std::invalid_argument);
}

TEST(Simulator, SettingsAreNumbersFlagsAndTexts)
{
    EXPECT_EQ(LittleReader().depth, 7);
    EXPECT_EQ(LittleReader({.settings = {{"depth", "-12"}}}).depth, -12);
    EXPECT_EQ(LittleReader({.settings = {{"depth", "0xC5"}}}).depth, 0xC5);
    EXPECT_FALSE(LittleReader().flag);
    EXPECT_TRUE(LittleReader({.settings = {{"flag", "Yes"}}}).flag);
    EXPECT_FALSE(LittleReader({.settings = {{"flag", "0"}}}).flag);
    for (const char* text : {"x", "1x", "0x", "99999999999"})
        EXPECT_THROW(LittleReader({.settings = {{"depth", text}}}), std::invalid_argument) << text;
    EXPECT_THROW(LittleReader({.settings = {{"flag", "perhaps"}}}), std::invalid_argument);
    const LittleReader reader({.settings = {{"depth", "1"}, {"deepness", "2"}}});
    EXPECT_EQ(reader.unknownSettings(), std::vector<std::string>{"deepness"});
    EXPECT_EQ(reader.knownSettings(), (std::set<std::string>{"depth", "flag", "line"}));
}

TEST(Simulator, FeedsSheetsAndLogsThem)
{
    LittleReader reader(withFaults({}));
    std::vector<SheetRecord> heard;
    reader.onLog([&](const SheetRecord& record) { heard.push_back(record); });
    DeviceBench bench(reader);
    EXPECT_EQ(reader.nextFeed(), LittleReader::Feed::Sheet);
    EXPECT_EQ(bench.ask("F"), "sheet 1:1");
    EXPECT_EQ(bench.ask("F"), "sheet 2:2");
    EXPECT_EQ(bench.ask("F"), "sheet 3:3");
    EXPECT_EQ(reader.nextFeed(), LittleReader::Feed::Empty);
    EXPECT_EQ(bench.ask("F"), "");
    reader.putSheet({.side1 = {{9}}});
    EXPECT_EQ(reader.sheetsPut, 1);
    EXPECT_EQ(bench.ask("F"), "sheet 4:9");
    const std::vector<SheetRecord> expected = {{SheetEvent::Fed, 1},   {SheetEvent::Read, 1}, {SheetEvent::Fed, 2},
                                               {SheetEvent::Read, 2},  {SheetEvent::Fed, 3},  {SheetEvent::Read, 3},
                                               {SheetEvent::Empty, 0}, {SheetEvent::Fed, 4},  {SheetEvent::Read, 4}};
    EXPECT_EQ(reader.log(), expected);
    EXPECT_EQ(heard, expected);
}

TEST(SheetLog, IsWrittenAsJson)
{
    EXPECT_EQ(toJson({SheetEvent::Fed, 1}), R"({"event":"fed","sheet":1})");
    EXPECT_EQ(toJson({SheetEvent::Printed, 2, "A\"B", 1, 10}),
              R"({"event":"printed","sheet":2,"text":"A\"B","line":1,"position":10})");
    EXPECT_EQ(toJson({SheetEvent::Empty}), R"({"event":"empty"})");
    EXPECT_EQ(toJson({SheetEvent::Ejected, 3, "upper"}), R"({"event":"ejected","sheet":3,"text":"upper"})");
}

} // namespace
} // namespace kel
