// SPDX-License-Identifier: MIT
#include "drivers/scanning_systems/SetUp.h"

#include <gtest/gtest.h>

#include <limits>

namespace kel {
namespace {

struct Step {
    int mode;
    int threshold;
    const char* text;
};

class ThresholdSS : public testing::TestWithParam<Step> {};

TEST_P(ThresholdSS, IsTakenByModeAndBound)
{
    const Step& step = GetParam();
    EXPECT_EQ(thresholdTextSS(static_cast<Int16>(step.mode), static_cast<Int16>(step.threshold)), step.text);
}

INSTANTIATE_TEST_SUITE_P(Mode0, ThresholdSS,
                         testing::Values(Step{0, -32768, "DL1"}, Step{0, 0, "DL1"}, Step{0, 5, "DL1"},
                                         Step{0, 6, "DL2"}, Step{0, 10, "DL2"}, Step{0, 11, "DL3"},
                                         Step{0, 32767, "DL3"}));
INSTANTIATE_TEST_SUITE_P(Mode1, ThresholdSS,
                         testing::Values(Step{1, -1, "DL1"}, Step{1, 4, "DL1"}, Step{1, 5, "DL2"}, Step{1, 8, "DL2"},
                                         Step{1, 9, "DL3"}, Step{1, 12, "DL3"}, Step{1, 13, "DL4"},
                                         Step{1, 32767, "DL4"}));
INSTANTIATE_TEST_SUITE_P(AnyOtherMode, ThresholdSS,
                         testing::Values(Step{2, 0, "DL00"}, Step{2, 7, "DL07"}, Step{2, 9, "DL09"},
                                         Step{2, 10, "DL10"}, Step{2, 12, "DL12"}, Step{2, 99, "DL99"},
                                         Step{2, 100, "DL100"}, Step{2, -5, "DL0-5"}, Step{3, 7, "DL07"},
                                         Step{-1, 16, "DL16"}, Step{32767, 5, "DL05"}));

clsKELReaderWindow window(Int16 startRow, Int16 numRows, Int16 rowGap, Int16 startCol, Int16 numCols, Int16 colGap,
                          Int16 page)
{
    clsKELReaderWindow result;
    result.StartRow(startRow);
    result.NumRows(numRows);
    result.RowGap(rowGap);
    result.StartCol(startCol);
    result.NumCols(numCols);
    result.ColGap(colGap);
    result.Page(page);
    return result;
}

TEST(WindowCommandSS, HasSixFieldsOfTwoDigitsAndAFixedEnd)
{
    EXPECT_EQ(windowCommandSS(window(3, 10, 1, 5, 4, 2, 1)), "\x10W\r\x02"
                                                             "031001050402112\r");
}

TEST(WindowCommandSS, IsForSideTwoOnEveryOtherPage)
{
    const std::string onSide2 = "/\x10W\r\x02"
                                "010203040506112\r";
    EXPECT_EQ(windowCommandSS(window(1, 2, 3, 4, 5, 6, 2)), onSide2);
    EXPECT_EQ(windowCommandSS(window(1, 2, 3, 4, 5, 6, 0)), onSide2);
    EXPECT_EQ(windowCommandSS(window(1, 2, 3, 4, 5, 6, -1)), onSide2);
}

TEST(WindowCommandSS, DoesNotCutAFieldAboveTwoDigits)
{
    EXPECT_EQ(windowCommandSS(window(100, 1, 1, 1, 1, 1, 1)), "\x10W\r\x02"
                                                              "1000101010101112\r");
    EXPECT_EQ(windowCommandSS(window(99, 1, 1, 1, 1, 32767, 1)), "\x10W\r\x02"
                                                                 "990101010132767112\r");
}

TEST(GapsSS, ANegativeRowGapStartsAtTheOtherEnd)
{
    clsKELReaderWindow cWindow = window(20, 3, -2, 5, 4, 1, 1);
    makeGapsPositiveSS(cWindow);
    EXPECT_EQ(cWindow.StartRow(), 16);
    EXPECT_EQ(cWindow.RowGap(), 2);
    EXPECT_EQ(cWindow.StartCol(), 5);
    EXPECT_EQ(cWindow.ColGap(), 1);
    makeGapsPositiveSS(cWindow);
    EXPECT_EQ(cWindow.StartRow(), 16) << "a positive gap is left alone";
}

TEST(GapsSS, ANegativeColumnGapStartsAtTheOtherEnd)
{
    clsKELReaderWindow cWindow = window(20, 3, 0, 40, 5, -3, 1);
    makeGapsPositiveSS(cWindow);
    EXPECT_EQ(cWindow.StartCol(), 28);
    EXPECT_EQ(cWindow.ColGap(), 3);
    EXPECT_EQ(cWindow.StartRow(), 20);
    EXPECT_EQ(cWindow.RowGap(), 0);
}

TEST(GapsSS, WhatDoesNotFitSixteenBitsFails)
{
    const auto failureOf = [](clsKELReaderWindow cWindow) {
        try {
            makeGapsPositiveSS(cWindow);
        } catch (const RuntimeFailure& failure) {
            return failure.number();
        }
        return Int32{0};
    };
    constexpr Int16 kLowest = std::numeric_limits<Int16>::min();
    EXPECT_EQ(failureOf(window(1, 200, -200, 1, 1, 1, 1)), 6) << "the product";
    EXPECT_EQ(failureOf(window(-30000, 3, -1000, 1, 1, 1, 1)), 6) << "the sum";
    EXPECT_EQ(failureOf(window(32767, 0, -1, 1, 1, 1, 1)), 6) << "the difference";
    EXPECT_EQ(failureOf(window(-1, 0, kLowest, 1, 1, 1, 1)), 6) << "the absolute value";
    EXPECT_EQ(failureOf(window(1, 1, 1, 1, 200, -200, 1)), 6) << "columns too";
    EXPECT_EQ(failureOf(window(32766, 0, -1, 1, 1, 1, 1)), 0);
}

} // namespace
} // namespace kel
