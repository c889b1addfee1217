// SPDX-License-Identifier: MIT
#include "simulators/ezdata/EZData.h"

#include "tests/simulators/DeviceBench.h"
#include "tests/simulators/ezdata/PackedRoundTrip.h"

namespace kel::test {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;

constexpr kelReaderType kEZDataModels[] = {kelReaderTypeNCSEZData, kelReaderTypeChatsworthACF100};
constexpr Int32 kRows = 150;

/// What changes nothing at a start of the model.
std::map<std::string, std::string> rightFor(kelReaderType model)
{
    return {{"threshold", model == kelReaderTypeNCSEZData ? "68" : "76"}};
}

class EZDataTest : public testing::Test {
protected:
    void start(std::map<std::string, std::string> settings = {}, SheetFeeder sheets = {})
    {
        reader_.emplace(
            SimulatorOptions{.sheets = std::move(sheets), .rate = Rate::Unlimited, .settings = std::move(settings)});
        bench_.emplace(*reader_);
    }
    std::string ask(const std::string& text) { return bench_->ask(frame(text)); }

    std::optional<EZData> reader_;
    std::optional<DeviceBench> bench_;
};

TEST_F(EZDataTest, AnswersEachCommandInItsForm)
{
    start({{"between", "abcd"}, {"spare-bit", "clear"}}, {{.side1 = {{1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}, {}}}});
    EXPECT_EQ(ask("GETCONFIG"), "22a03b80abcdINL68c1.5\rG\r");
    EXPECT_EQ(ask("S"), "\x10G\r");
    EXPECT_EQ(ask("V"), "EZData 4.10 G\r");
    EXPECT_EQ(ask("EF"), "?\r");
    EXPECT_EQ(ask("E"), "G\r\x01@  \r");
    EXPECT_EQ(ask("S"), "\x11G\r");
    EXPECT_EQ(ask("ER"), "G\r");
    EXPECT_EQ(ask("E"), "?\r");
    EXPECT_EQ(ask("D"), "G\r");
    EXPECT_EQ(bench_->ask("\x12R7777\x12I00\x12"
                          "E"),
              "G\r");
    EXPECT_TRUE(reader_->errors().empty());
    const std::vector<SheetRecord> expected = {{SheetEvent::Fed, 1},
                                               {SheetEvent::Read, 1},
                                               {SheetEvent::Ejected, 1},
                                               {SheetEvent::Empty, 0},
                                               {SheetEvent::Ended, 1}};
    EXPECT_EQ(reader_->log(), expected);
}

TEST_F(EZDataTest, AChangeCountsBehindTheRestart)
{
    start({{"flags", "11"}, {"timing", "85"}, {"threshold", "60"}, {"decay", "0.5"}, {"between", "----"}});
    const std::pair<const char*, std::string> changes[] = {
        {"SETFLAGS03", "\x03G\r"}, {"SETTMCH0", "0G\r"}, {"SETTHRESH4", "4G\r"}, {"SETDECAY3", "3G\r"}};
    EXPECT_EQ(reader_->configuration(), "22-11-85----INL60-0.5");
    for (const auto& [command, reply] : changes) {
        EXPECT_EQ(ask(command), reply);
        EXPECT_EQ(ask("CHECKSUM"), "PG\r");
        EXPECT_EQ(ask("RESET"), "");
    }
    EXPECT_EQ(reader_->configuration(), "22-03-80----INL68-1.5");
    EXPECT_TRUE(reader_->errors().empty());
}

TEST_F(EZDataTest, RefusesAThresholdOfTwoDigits)
{
    start();
    EXPECT_EQ(ask("SETTHRESH12"), "12?\r");
}

TEST_F(EZDataTest, ComplainsOfWhatAHostMustNotDo)
{
    const std::pair<std::vector<std::string>, const char*> mistakes[] = {
        {{frame("SETTHRESH4")}, "command SETTHRESH4 though that is set already"},
        {{frame("SETTHRESH5"), frame("S")}, "command S though a change was not sealed and followed by RESET"},
        {{frame("SETTHRESH5"), frame("SETDECAY2")},
         "command SETDECAY2 though the change before it was not sealed and followed by RESET"},
        {{frame("CHECKSUM")}, "command CHECKSUM without a change to seal"},
        {{frame("RESET")}, "command RESET without a sealed change"},
        {{frame("E")}, "command E without a status query in this session"},
        {{frame("S") + frame("D")}, "D while the reader is busy with S"},
        {{frame("X")}, "unknown command X"},
        {{"\x12"
          "R7777I00E"},
         "the joined probe, which is for other readers"},
        {{"Q"}, "no command: \"Q\""}};
    for (const auto& [commands, complaint] : mistakes) {
        start({}, {{.side1 = MarkRows(1)}});
        for (const std::string& command : commands)
            bench_->ask(command);
        EXPECT_THAT(reader_->errors(), testing::ElementsAre(complaint));
    }
    start();
    ask("SETTHRESH5");
    ask("CHECKSUM");
    bench_->send(frame("RESET"));
    EXPECT_EQ(bench_->wait(1199ms), "");
    bench_->send(frame("S"));
    EXPECT_THAT(reader_->errors(), testing::ElementsAre("S while the reader is busy with RESET"));
}

class EZDataRoundTrip : public testing::TestWithParam<kelReaderType> {};

TEST_P(EZDataRoundTrip, EverySheetAndItsWay)
{
    const std::vector<SimulatedSheet> sheets = randomSheets(300, kRows, 11);
    PackedReader bench(GetParam(), sheets);
    expectRoundTrip(bench, sheets, kRows);
    std::vector<Int32> rejected;
    for (Int32 sheet = 7; sheet <= 300; sheet += 7)
        rejected.push_back(sheet);
    EXPECT_EQ(bench.logged(SheetEvent::Rejected), rejected);
    EXPECT_EQ(bench.logged(SheetEvent::Ejected), std::vector<Int32>{300});
}

TEST_P(EZDataRoundTrip, ARightConfigurationCostsTwoCommands)
{
    PackedReader bench(GetParam(), {}, rightFor(GetParam()));
    EXPECT_EQ(bench.reader().StartReader(), True);
    EXPECT_EQ(bench.host.sent(), frame("GETCONFIG") + frame("S"));
    EXPECT_EQ(bench.reader().EndReader(), True);
    EXPECT_EQ(bench.host.sent(), frame("D"));
    bench.expectNoComplaints();
}

TEST_P(EZDataRoundTrip, EachWrongValueCostsAFullCycle)
{
    PackedReader bench(GetParam(), {}, {{"flags", "00"}, {"timing", "81"}, {"threshold", "60"}, {"decay", "2.0"}});
    const std::string digit = GetParam() == kelReaderTypeNCSEZData ? "4" : "8";
    EXPECT_EQ(bench.reader().StartReader(), True);
    const std::string seal = frame("CHECKSUM") + frame("RESET");
    EXPECT_EQ(bench.host.sent(), frame("GETCONFIG") + frame("SETFLAGS03") + seal + frame("SETTMCH0") + seal +
                                     frame("SETTHRESH" + digit) + seal + frame("SETDECAY3") + seal + frame("S"));
    EXPECT_EQ(bench.reader().EndReader(), True);
    bench.expectNoComplaints();
}

TEST_P(EZDataRoundTrip, AnUnknownThresholdIsLeftAlone)
{
    PackedReader bench(GetParam(), {}, {{"threshold", "61"}});
    EXPECT_EQ(bench.reader().StartReader(), True);
    EXPECT_EQ(bench.host.sent(), frame("GETCONFIG") + frame("S"));
    bench.expectNoComplaints();
}

TEST_P(EZDataRoundTrip, SheetsInThePathAreTakenOutAtTheStart)
{
    for (const Int32 stranded : {1, 2, 3}) {
        auto settings = rightFor(GetParam());
        settings["stranded"] = std::to_string(stranded);
        PackedReader bench(GetParam(), {}, settings);
        EXPECT_EQ(bench.reader().StartReader(), True);
        const std::string second = stranded > 1 ? frame("EF") : "";
        EXPECT_EQ(bench.host.sent(), frame("GETCONFIG") + frame("S") + frame("EF") + frame("S") + second);
        bench.expectNoComplaints();
    }
}

TEST_P(EZDataRoundTrip, ACancelEndsTheStartBetweenItsReplies)
{
    for (const std::uint64_t turn : {1U, 5U, 22U, 23U}) {
        PackedReader bench(GetParam(), {}, rightFor(GetParam()));
        bench.host.machine.atDoEvents(turn, [&] { bench.reader().CancelScan(True); });
        EXPECT_EQ(bench.reader().StartReader(), False) << turn;
        EXPECT_EQ(bench.host.sent(), frame("GETCONFIG")) << turn;
        bench.expectNoComplaints();
    }
}

TEST_P(EZDataRoundTrip, AConfigurationWithoutItsEndIsAwaitedUntilTheHostStops)
{
    auto settings = rightFor(GetParam());
    settings["last-byte"] = "00";
    PackedReader bench(GetParam(), {}, settings, {"garble=64@byte=22"});
    bench.host.machine.at(1h, [&] { bench.reader().CancelScan(True); });
    EXPECT_EQ(bench.reader().StartReader(), False);
    EXPECT_GE(bench.host.machine.now(), 1h);
    EXPECT_EQ(bench.host.sent(), frame("GETCONFIG"));
    // All of it was taken: nothing waits that would look like a sheet.
    EXPECT_EQ(bench.reader().EndReader(), True);
    EXPECT_EQ(bench.host.sent(), frame("D"));
    bench.expectNoComplaints();
}

TEST_P(EZDataRoundTrip, ACancelEndsTheWaitForAPage)
{
    auto settings = rightFor(GetParam());
    settings["feed-ms"] = "60000";
    PackedReader bench(GetParam(), {{.side1 = MarkRows(3)}}, settings);
    ASSERT_EQ(bench.reader().StartReader(), True);
    bench.host.machine.at(bench.host.machine.now() + 20s, [&] { bench.reader().CancelScan(True); });
    EXPECT_EQ(bench.reader().ReadPage(False), False);
    bench.host.sent();
    EXPECT_EQ(bench.reader().EndReader(), True);
    EXPECT_EQ(bench.host.sent(), frame("D")); // nothing came, so nothing is taken out
    bench.expectNoComplaints();
}

TEST_P(EZDataRoundTrip, TheCloseTakesAStrandedSheetOut)
{
    auto settings = rightFor(GetParam());
    settings["feed-ms"] = "3000";
    PackedReader bench(GetParam(), {{.side1 = MarkRows(150)}}, settings);
    ASSERT_EQ(bench.reader().StartReader(), True);
    bench.host.machine.at(bench.host.machine.now() + 2800ms, [&] { bench.reader().CancelScan(True); });
    EXPECT_EQ(bench.reader().ReadPage(False), False);
    bench.host.sent();
    EXPECT_EQ(bench.reader().EndReader(), True);
    EXPECT_EQ(bench.host.sent(), frame("EF") + frame("D"));
    EXPECT_EQ(bench.logged(SheetEvent::Rejected), std::vector<Int32>{1});
    bench.expectNoComplaints();
}

TEST_P(EZDataRoundTrip, ACancelWithinAPageLeavesTheRestToTheClose)
{
    PackedReader bench(GetParam(), {{.side1 = MarkRows(150)}}, rightFor(GetParam()));
    ASSERT_EQ(bench.reader().StartReader(), True);
    bench.host.machine.at(bench.host.machine.now() + 900ms, [&] { bench.reader().CancelScan(True); });
    EXPECT_EQ(bench.reader().ReadPage(False), False);
    bench.host.sent();
    EXPECT_EQ(bench.reader().EndReader(), True);
    EXPECT_EQ(bench.host.sent(), frame("EF") + frame("D"));
    EXPECT_EQ(bench.logged(SheetEvent::Rejected), std::vector<Int32>{1});
    bench.expectNoComplaints();
}

TEST_P(EZDataRoundTrip, AJamIsSilenceAndTheNextStartClearsIt)
{
    PackedReader bench(GetParam(), {{.side1 = MarkRows(3)}, {.side1 = MarkRows(2)}}, rightFor(GetParam()),
                       {"jam@sheet=1"});
    ASSERT_EQ(bench.reader().StartReader(), True);
    bench.host.machine.at(bench.host.machine.now() + 600s, [&] { bench.reader().CancelScan(True); });
    EXPECT_EQ(bench.reader().ReadPage(False), False);
    EXPECT_EQ(bench.reader().EndReader(), True);
    EXPECT_EQ(bench.reader().StartReader(), True);
    EXPECT_EQ(bench.reader().ReadPage(False), True);
    EXPECT_EQ(bench.logged(SheetEvent::Rejected), std::vector<Int32>{1});
    bench.expectNoComplaints();
}

TEST_P(EZDataRoundTrip, AnEmptyFeederIsToldTheHost)
{
    PackedReader bench(GetParam(), {}, rightFor(GetParam()));
    ASSERT_EQ(bench.reader().StartReader(), True);
    EXPECT_EQ(bench.reader().ReadPage(False), False);
    ASSERT_EQ(bench.host.heard().reports.size(), 1U);
    EXPECT_EQ(bench.host.heard().reports[0].ErrorDescription, VBLM_RTString(TextNumber(336)));
    EXPECT_EQ(bench.host.heard().reports[0].ErrorTitle, VBLM_RTString(TextNumber(292)));
    // The byte after "?" was not read: the close takes it for a sheet, which is not there.
    bench.host.sent();
    EXPECT_EQ(bench.reader().EndReader(), True);
    EXPECT_EQ(bench.host.sent(), frame("EF") + frame("D"));
    ASSERT_EQ(bench.host.heard().reports.size(), 2U);
    EXPECT_EQ(bench.host.heard().reports[1].ErrorDescription, VBLM_RTString(TextNumber(342)));
    EXPECT_TRUE(bench.device->errors().empty());
}

INSTANTIATE_TEST_SUITE_P(Models, EZDataRoundTrip, testing::ValuesIn(kEZDataModels));

} // namespace
} // namespace kel::test
