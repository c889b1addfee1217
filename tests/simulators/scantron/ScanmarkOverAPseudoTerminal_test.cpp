// SPDX-License-Identifier: MIT
#include "strings/VBLMRTSModule.h"
#include "tests/simulators/scantron/RandomWindows.h"
#include "tests/support/LongRun.h"
#include "tests/support/PtyReader.h"

#include <gmock/gmock.h>

// The reader object against the simulated Scanmark readers over a real line.

namespace kel::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(ScanmarkOverAPseudoTerminal, ThreeSheets)
{
    const SheetFeeder sheets = {{.side1 = {{1, 2, 3}}}, {.side1 = {{4}, {5}}}, {.side1 = {{}, {0, 6}}}};
    SheetFeeder expected = sheets;
    Scanmark device({.model = kelReaderTypeScantronScanMark2500, .sheets = sheets, .rate = Rate::Unlimited});
    PtyReader line(kelReaderTypeScantronScanMark2500, device);
    line.reader().RecognitionMode(kelRecognitionTypePage);
    line.reader().Side1Rows(pages({2}));
    line.reader().Side1Cols(pages({48}));
    line.reader().Side2Rows(pages({0}));
    line.reader().Side2Cols(pages({0}));
    Int32 count = 0;
    EXPECT_TRUE(line.reader().ReadBatch(False, 3, count));
    line.finish();
    EXPECT_THAT(device.errors(), IsEmpty());
    EXPECT_THAT(line.heard().reports, IsEmpty());
    ASSERT_EQ(line.heard().sheets.size(), 3U);
    for (const HeardSheet& sheet : line.heard().sheets)
        EXPECT_EQ(sheet.side1, arrayOf(expected.take().side1, 2, 48));
}

/// A form of windows and its sheets; whether all was well.
void readRandomWindows(std::uint64_t seed)
{
    const RandomWindows form(seed);
    SimulatorOptions options{.model = form.model(), .sheets = SheetFeeder::of(form.sheets()), .rate = Rate::Unlimited};
    options.settings = {{"reply-ms", "0"}, {"feed-ms", "0"}};
    Scanmark device(std::move(options));
    PtyReader line(form.model(), device);
    form.describeTo(line.reader());
    Int32 count = 0;
    EXPECT_TRUE(line.reader().ReadBatch(False, static_cast<Int32>(form.sheets().size()), count));
    line.finish();
    EXPECT_THAT(device.errors(), IsEmpty());
    for (const ErrorReport& report : line.heard().reports)
        ADD_FAILURE() << report.ErrorSource << ": " << report.ErrorDescription;
    ASSERT_EQ(line.heard().sheets.size(), form.sheets().size());
    for (std::size_t place = 0; place < form.sheets().size(); ++place) {
        const HeardSheet taken = form.takenOf(form.sheets()[place]);
        EXPECT_EQ(line.heard().sheets[place].side1, taken.side1);
        EXPECT_EQ(line.heard().sheets[place].side2, taken.side2);
    }
}

/// A hundred forms in a long run, from a seed on.
class ScanmarkFormsOverAPseudoTerminal : public testing::TestWithParam<std::uint64_t> {};

TEST_P(ScanmarkFormsOverAPseudoTerminal, WhatTheWindowsTakeArrives)
{
    for (std::uint64_t seed = GetParam(); seed < GetParam() + sampled(100, 2) && !HasFailure(); ++seed) {
        tally("forms of windows over a pseudo-terminal", 1);
        SCOPED_TRACE("seed " + std::to_string(seed));
        readRandomWindows(seed);
    }
}

INSTANTIATE_TEST_SUITE_P(AThousand, ScanmarkFormsOverAPseudoTerminal,
                         testing::Range(std::uint64_t{10'000}, std::uint64_t{11'000}, std::uint64_t{100}));

} // namespace
} // namespace kel::test
