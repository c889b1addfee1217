// SPDX-License-Identifier: MIT
#include "drivers/scanning_systems/SheetReplies.h"

#include "drivers/scanning_systems/Framing.h"

#include <gtest/gtest.h>

namespace kel {
namespace {

TEST(FramingSS, EachClassHasItsByteInFrontAndCRBehind)
{
    EXPECT_EQ(querySS("OM"), "\x05OM\r");
    EXPECT_EQ(readingSS("R*"), "\x10R*\r");
    EXPECT_EQ(settingSS("BA05"), "\x13"
                                 "BA05\r");
    EXPECT_EQ(kResetSS, "\x18\r");
}

TEST(TimingMarksSS, AreTheNumberInTheFirstThreeCharacters)
{
    EXPECT_EQ(timingMarksSS("063"), 63);
    EXPECT_EQ(timingMarksSS("0639"), 63);
    EXPECT_EQ(timingMarksSS("63\r"), 63);
    EXPECT_EQ(timingMarksSS("7"), 7);
    EXPECT_EQ(timingMarksSS(" 9 9"), 9);
    EXPECT_EQ(timingMarksSS("-12"), -12);
    EXPECT_EQ(timingMarksSS("abc"), 0);
    EXPECT_EQ(timingMarksSS(""), 0);
    EXPECT_EQ(timingMarksSS("2.5"), 2) << "halves go to the even neighbour";
    EXPECT_EQ(timingMarksSS("3.5"), 4);
    EXPECT_THROW(static_cast<void>(timingMarksSS("9e9")), RuntimeFailure);
}

Int32 failureOfFrame(std::string_view frame)
{
    try {
        static_cast<void>(barcodeOfFrameSS(frame));
    } catch (const RuntimeFailure& failure) {
        return failure.number();
    }
    return 0;
}

TEST(BarcodeFrameSS, IsWhatStandsBetweenTheFirstAndTheLastCharacter)
{
    EXPECT_EQ(barcodeOfFrameSS("*12345*"), "12345");
    EXPECT_EQ(barcodeOfFrameSS("a?b"), "?");
    EXPECT_EQ(barcodeOfFrameSS(std::string_view("\x02\x00\x03", 3)), std::string(1, '\0'));
    EXPECT_EQ(barcodeOfFrameSS("12"), "");
}

TEST(BarcodeFrameSS, AQuestionMarkSaysThatNoBarcodeWasRead)
{
    EXPECT_EQ(barcodeOfFrameSS("?"), "?");
    EXPECT_EQ(barcodeOfFrameSS("?\r"), "?");
    EXPECT_EQ(barcodeOfFrameSS("?12345*"), "?");
}

TEST(BarcodeFrameSS, LessThanTwoCharactersAreNoFrame)
{
    EXPECT_EQ(failureOfFrame("*"), 5);
    EXPECT_EQ(failureOfFrame(""), 5);
    EXPECT_EQ(failureOfFrame("**"), 0);
}

} // namespace
} // namespace kel
