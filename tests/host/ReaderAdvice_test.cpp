// SPDX-License-Identifier: MIT
#include "host/ReaderAdvice.h"

#include "simulators/platform/SimulatedPlatform.h"
#include "strings/VBLMRTSModule.h"
#include "types/Text.h"

#include <gmock/gmock.h>

namespace kel {
namespace {

using host::adviceOn;
using host::AdviceRow;
using testing::HasSubstr;
using testing::StartsWith;

host::Failure report(const std::string& description, const std::string& source, Int32 number = 0)
{
    return {.number = number, .description = description, .source = "KELReader81 - " + source, .title = {}};
}

TEST(ReaderAdvice, IsThatOfThePageOfTheDriver)
{
    SimulatedPlatform platform;
    const AdviceRow* const advice = adviceOn(report(VBLM_RTString(472), "basScantron.RejectPageST"));
    ASSERT_NE(advice, nullptr);
    EXPECT_STREQ(advice->remedy, "Take the sheet out by hand and check the cable.");
    EXPECT_EQ(adviceOn(report(VBLM_RTString(472), "basNCS.RejectPageNCS")), nullptr);
}

TEST(ReaderAdvice, WhatIsAsAboveIsSaidAgain)
{
    SimulatedPlatform platform;
    const AdviceRow* const advice = adviceOn(report(VBLM_RTString(468), "basScantron.CheckStatusST"));
    ASSERT_NE(advice, nullptr);
    EXPECT_STREQ(advice->remedy, "Clear the sheet path and read the sheet again.");
}

TEST(ReaderAdvice, ATextMayHaveSomethingFilledIn)
{
    SimulatedPlatform platform;
    const std::string text = replaceAll(VBLM_RTString(368), "%1", "17");
    ASSERT_THAT(text, HasSubstr("17"));
    EXPECT_NE(adviceOn(report(text, "basRead.ReaderInit")), nullptr);
}

TEST(ReaderAdvice, AFailureIsKnownByItsNumber)
{
    SimulatedPlatform platform;
    const AdviceRow* const advice = adviceOn(report("whatever", "basNCS.ReadPageNCS", 9));
    ASSERT_NE(advice, nullptr);
    EXPECT_EQ(advice->failure, 9);
    EXPECT_EQ(adviceOn(report("whatever", "basNCS.ReadPageNCS", 31999)), nullptr);
}

TEST(ReaderAdvice, WhatThePagesDoNotHaveHasNone)
{
    SimulatedPlatform platform;
    EXPECT_EQ(adviceOn(report("", "basScantron.ReadPageST")), nullptr);
    EXPECT_EQ(adviceOn(report("The moon is full.", "basScantron.ReadPageST")), nullptr);
}

} // namespace
} // namespace kel
