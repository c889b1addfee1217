// SPDX-License-Identifier: MIT
#include "drivers/sekonic_usb/ErrorCodes.h"

#include <gtest/gtest.h>

namespace kel {
namespace {

TEST(SekonicUsbErrorCodes, HaveTheirMessages)
{
    const struct {
        Int32 code, message;
    } rows[] = {
        {0x01020005, 498}, {0x20070000, 500}, {0x25070001, 502}, {0x30080000, 506}, {0x30080001, 508},
        {0x30080002, 510}, {0x30080003, 512}, {0x35090000, 514}, {0x35090001, 516}, {0x35090002, 518},
        {0x35090003, 520}, {0x40110001, 522}, {0x40110002, 524}, {0x40110003, 526}, {0x40140000, 528},
        {0x40140001, 530}, {0x40140002, 532}, {0x40120003, 542}, {0x41120003, 544}, {0x42120003, 546},
        {0x40120004, 548}, {0x41120004, 550}, {0x42120004, 552}, {0x45140003, 534}, {0x45140004, 536},
        {0x45140005, 538}, {0x45140006, 540},
    };
    for (const auto& row : rows)
        EXPECT_EQ(errorMessageSR(row.code).value(), row.message) << std::hex << row.code;
}

TEST(SekonicUsbErrorCodes, ShareOneMessageWhereTheyAreNotKnown)
{
    for (const Int32 code : {0, 1, -1, 0x30080004, 0x40110000, 0x42120005})
        EXPECT_EQ(errorMessageSR(code).value(), 554) << std::hex << code;
}

TEST(SekonicUsbErrorCodes, ThreeOfThemLeaveTheSheetRead)
{
    for (const Int32 code : {0, 0x40120003, 0x41120003, 0x42120003})
        EXPECT_EQ(feedResultSR(code), FeedResultSR::SheetRead) << std::hex << code;
    EXPECT_EQ(feedResultSR(0x40110000), FeedResultSR::QuietStop);
    for (const Int32 code : {0x40120004, 0x43120003, 0x40110001, 1, -1})
        EXPECT_EQ(feedResultSR(code), FeedResultSR::Failed) << std::hex << code;
}

TEST(SekonicUsbErrorCodes, AreShownByTheirDigits)
{
    EXPECT_EQ(shownErrorSR(0x40120003), 40120003);
    EXPECT_EQ(shownErrorSR(0x01020005), 1020005);
    EXPECT_EQ(shownErrorSR(0), 0);
    EXPECT_EQ(shownErrorSR(static_cast<Int32>(0x99999999U)), 99999999);
}

TEST(SekonicUsbErrorCodes, AreCutAtTheFirstLetterDigit)
{
    EXPECT_EQ(shownErrorSR(0x4011000A), 4011000);
    EXPECT_EQ(shownErrorSR(0x4B110000), 4);
    EXPECT_EQ(shownErrorSR(static_cast<Int32>(0xF0110000U)), 0);
    EXPECT_EQ(shownErrorSR(-1), 0);
    EXPECT_EQ(shownErrorSR(0x000000A1), 0);
    // No exponents: 20E70000 and 12D00003 are not numbers with as many zeros.
    EXPECT_EQ(shownErrorSR(0x20E70000), 20);
    EXPECT_EQ(shownErrorSR(0x12D00003), 12);
    EXPECT_EQ(shownErrorSR(0x000001E2), 1);
}

} // namespace
} // namespace kel
