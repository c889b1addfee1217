// SPDX-License-Identifier: MIT
#include "cli/check/Verdict.h"

#include <gtest/gtest.h>

namespace kel::test {
namespace {

CheckResult result(CheckStatus status, Cause cause = Cause::None, CheckStage stage = CheckStage::Answers)
{
    return {.stage = stage, .name = "something", .status = status, .cause = cause};
}

TEST(CheckVerdict, NothingWrongIsUsable)
{
    const CheckResults results{result(CheckStatus::Pass), result(CheckStatus::NotApplicable),
                               result(CheckStatus::Pass, Cause::None, CheckStage::Sheets)};
    const Verdict verdict = judge(results);
    EXPECT_TRUE(verdict.usable);
    EXPECT_EQ(verdict.cause, Cause::None);
    EXPECT_EQ(verdict.sentence, "The reader can be used.");
    EXPECT_EQ(exitStatus(results), 0);
}

TEST(CheckVerdict, WithoutSheetsItSaysSo)
{
    const CheckResults results{result(CheckStatus::Pass),
                               result(CheckStatus::Skipped, Cause::None, CheckStage::Sheets)};
    EXPECT_EQ(judge(results).sentence, "The reader answers; no sheet was read (--sheets N reads some).");
}

TEST(CheckVerdict, OfSeveralCausesTheOneThatExplainsTheOthersIsNamed)
{
    const CheckResults results{result(CheckStatus::Fail, Cause::NoAnswer), result(CheckStatus::Fail, Cause::WrongSpeed),
                               result(CheckStatus::Warn, Cause::Lumps)};
    const Verdict verdict = judge(results);
    EXPECT_FALSE(verdict.usable);
    EXPECT_EQ(verdict.cause, Cause::WrongSpeed);
    EXPECT_EQ(verdict.sentence, "The reader cannot be used. " + std::string(entryOf(Cause::WrongSpeed).sentence));
    EXPECT_EQ(verdict.advice, entryOf(Cause::WrongSpeed).advice);
    EXPECT_EQ(exitStatus(results), 1);
}

TEST(CheckVerdict, AWarningIsNamedAndLeavesTheReaderUsable)
{
    const CheckResults results{result(CheckStatus::Warn, Cause::Lumps, CheckStage::Sheets)};
    const Verdict verdict = judge(results);
    EXPECT_TRUE(verdict.usable);
    EXPECT_EQ(verdict.cause, Cause::Lumps);
    EXPECT_EQ(exitStatus(results), 0);
}

TEST(CheckVerdict, ACauseOfACheckThatPassedIsNone)
{
    EXPECT_EQ(judge(CheckResults{result(CheckStatus::Pass, Cause::Echo)}).cause, Cause::None);
}

TEST(CheckVerdict, TheAdviceOfTheCheckGoesFirst)
{
    CheckResult found = result(CheckStatus::Fail, Cause::OtherModel);
    found.advice = "Try --model 23.";
    EXPECT_EQ(judge(CheckResults{found}).advice, "Try --model 23.");
}

TEST(CheckVerdict, AStopIsItsOwnStatus)
{
    const CheckResults results{result(CheckStatus::Fail, Cause::NoAnswer),
                               result(CheckStatus::Warn, Cause::Interrupted)};
    EXPECT_EQ(exitStatus(results), 130);
    EXPECT_EQ(judge(results).cause, Cause::NoAnswer);
}

TEST(CheckCauses, HaveNamesThatLeadBack)
{
    for (const CauseEntry& entry : causes()) {
        EXPECT_EQ(causeNamed(entry.name), entry.cause);
        EXPECT_EQ(nameOf(entry.cause), entry.name);
        EXPECT_TRUE(entry.sentence.ends_with('.')) << entry.name;
        EXPECT_TRUE(entry.advice.ends_with('.')) << entry.name;
    }
    EXPECT_EQ(causeNamed("no such"), Cause::None);
}

} // namespace
} // namespace kel::test
