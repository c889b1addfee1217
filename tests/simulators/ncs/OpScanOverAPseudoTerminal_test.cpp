// SPDX-License-Identifier: MIT
#include "strings/VBLMRTSModule.h"
#include "tests/simulators/ncs/RandomSession.h"
#include "tests/support/LongRun.h"
#include "tests/support/PtyReader.h"

#include <gmock/gmock.h>

// The reader object against the simulated OpScan readers over a real line.

namespace kel::test {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::IsEmpty;
using testing::StartsWith;

// Long enough for a whole reply, which is there at once, to be through: a pause in it would end the barcodes.
constexpr Int32 kSleepTime = 250;

TEST(OpScanOverAPseudoTerminal, ThreeSheets)
{
    const std::vector<SimulatedSheet> sheets = {{.side1 = {{1, 2, 15}}, .barcodes = {"4711"}},
                                                {.side1 = {{}, {4}}, .side2 = {{5}}, .barcodes = {"1", "22", "333"}},
                                                {.side1 = MarkRows(63, std::vector<Int16>(48, 9))}};
    SimulatorOptions options{
        .model = kelReaderTypeNCSOpScan5, .sheets = SheetFeeder::of(sheets), .rate = Rate::Unlimited};
    options.settings = {{"mode", "t"}, {"end", "silence"}};
    OpScan device(std::move(options));
    PtyReader line(kelReaderTypeNCSOpScan5, device);
    line.reader().SleepTime(kSleepTime);
    line.reader().Duplex(True);
    line.reader().DuplexForm(True);
    Int32 count = 0;
    EXPECT_TRUE(line.reader().ReadBatch(False, 3, count));
    line.finish();
    EXPECT_THAT(device.errors(), IsEmpty());
    EXPECT_THAT(line.heard().reports, IsEmpty());
    ASSERT_EQ(line.heard().sheets.size(), 3U);
    for (std::size_t index = 0; index < sheets.size(); ++index) {
        EXPECT_EQ(line.heard().sheets[index].side1, heardOf(sheets[index].side1));
        EXPECT_EQ(line.heard().sheets[index].side2, heardOf(sheets[index].side2));
        EXPECT_EQ(line.heard().sheets[index].barcodes.elements(), heardOf(sheets[index].barcodes, {}).texts);
    }
}

// Four characters of a status, or a fifth that is there already, are all that is taken of it. What a longer one has
// after them arrives when the next sheet has been asked for, and counts as positions in front of its first row.
TEST(OpScanOverAPseudoTerminal, ALongStatusAtWireSpeedRunsIntoTheNextSheet)
{
    constexpr int kStatusLength = 400;
    const std::vector<SimulatedSheet> sheets = {{.side1 = {{1, 2, 15}}}, {.side1 = {{4}, {5}}}};
    SimulatorOptions options{.model = kelReaderTypeNCSOpScan5, .sheets = SheetFeeder::of(sheets), .rate = Rate::Wire};
    options.settings = {{"status-length", std::to_string(kStatusLength)}};
    OpScan device(std::move(options));
    PtyReader line(kelReaderTypeNCSOpScan5, device, true);
    line.reader().SleepTime(kSleepTime);
    Int32 count = 0;
    EXPECT_TRUE(line.reader().ReadBatch(False, 2, count));
    line.finish();
    EXPECT_THAT(device.errors(), IsEmpty());
    ASSERT_EQ(line.heard().sheets.size(), 2U);
    EXPECT_EQ(line.heard().sheets[0].side1, heardOf(sheets[0].side1));
    EXPECT_EQ(line.heard().sheets[1].side1, heardOf(sheets[1].side1));

    ASSERT_EQ(line.heard().reports.size(), 1U);
    const std::string begin = VBLM_RTString(TextNumber(276)) + "\r\n\r\n" + VBLM_RTString(TextNumber(278));
    const std::string end = "\r\n" + VBLM_RTString(TextNumber(280)) + "0";
    const std::string report = line.heard().reports[0].ErrorDescription;
    ASSERT_THAT(report, AllOf(StartsWith(begin), EndsWith(end)));
    const int positions = std::stoi(report.substr(begin.size()));
    EXPECT_GT(positions, 48);
    EXPECT_LE(positions, 48 + kStatusLength - 4);
}

/// A session of many sheets, by a seed.
class OpScanSheetsOverAPseudoTerminal : public testing::TestWithParam<std::uint64_t> {};

TEST_P(OpScanSheetsOverAPseudoTerminal, WhatTheSheetsHoldArrives)
{
    const RandomSession session(GetParam(), {.fewestSheets = 25, .mostSheets = 25, .mostRows = 20});
    SimulatorOptions options = session.options(Rate::Unlimited);
    options.settings["reply-ms"] = "0";
    options.settings["feed-ms"] = "0";
    OpScan device(std::move(options));
    PtyReader line(session.model(), device);
    tally("sheets over a pseudo-terminal", session.sheets().size());
    session.describeTo(line.reader());
    line.reader().SleepTime(kSleepTime);
    Int32 count = 0;
    EXPECT_TRUE(line.reader().ReadBatch(False, static_cast<Int32>(session.sheets().size()), count));
    line.finish();
    session.expectHeard(line.reader(), line.heard(), device);
}

INSTANTIATE_TEST_SUITE_P(AThousand, OpScanSheetsOverAPseudoTerminal,
                         testing::Range(std::uint64_t{1}, std::uint64_t{1} + sampled(40, 4)));

} // namespace
} // namespace kel::test
