// SPDX-License-Identifier: MIT
#include "tests/cli/check/VirtualCheck.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// What a check sends before it comes to its sheets moves no paper, prints nothing, and stores nothing.

namespace kel::test {
namespace {

using namespace std::chrono_literals;

bool movesPaper(const SheetRecord& record)
{
    switch (record.event) {
    case SheetEvent::Fed:
    case SheetEvent::Read:
    case SheetEvent::Jammed:
    case SheetEvent::Printed:
    case SheetEvent::Ejected:
    case SheetEvent::Rejected: return true;
    default: return false;
    }
}

void expectHarmless(const VirtualOutcome& outcome)
{
    EXPECT_FALSE(std::ranges::any_of(outcome.logBeforeSheets, movesPaper));
    // What an EZData stores.
    for (const char* stores : {"SETFLAGS", "SETTMCH", "SETTHRESH", "SETDECAY", "CHECKSUM", "RESET"})
        EXPECT_THAT(outcome.sentBeforeSheets, testing::Not(testing::HasSubstr(stores)));
}

class CheckBeforeSheets : public testing::TestWithParam<kelReaderType> {};

TEST_P(CheckBeforeSheets, LeavesAHealthyReaderAlone)
{
    const VirtualOutcome outcome = checkVirtually(GetParam());
    EXPECT_NE(outcome.sentBeforeSheets, "");
    expectHarmless(outcome);
}

TEST_P(CheckBeforeSheets, TakesLessThanTwentySeconds)
{
    CheckPlan plan = fullPlan(GetParam());
    plan.sheets = 0;
    plan.search = false;
    const VirtualOutcome outcome = checkVirtually(GetParam(), {.plan = plan});
    EXPECT_TRUE(outcome.verdict.usable);
    EXPECT_LT(outcome.took, 20s);
    // Only commands of the protocol, as the simulated reader sees it.
    EXPECT_THAT(outcome.errors, testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Models, CheckBeforeSheets, testing::ValuesIn(modelsOfCatalogue(false)),
                         [](const auto& model) { return "Model" + std::to_string(model.param); });

class CheckOfFaults : public testing::TestWithParam<SimulatedFamily> {};

/// A reader that a killed session has left with a sheet under way is the exception: that sheet comes by itself.
TEST_P(CheckOfFaults, LeavesTheReaderAloneToo)
{
    for (const std::string& fault : faultsOf(GetParam())) {
        if (fault == "left-in-mode")
            continue;
        SCOPED_TRACE(fault);
        expectHarmless(checkVirtually(representative(GetParam()), {.faults = {fault}}));
    }
}

TEST_P(CheckOfFaults, FindsOutInTimeThatNothingAnswers)
{
    CheckPlan plan = fullPlan(representative(GetParam()));
    plan.sheets = 0;
    const VirtualOutcome searched =
        checkVirtually(representative(GetParam()), {.faults = {"switched-off:0"}, .plan = plan});
    EXPECT_EQ(searched.verdict.cause, Cause::NoAnswer);
    EXPECT_LT(searched.took, 180s);
    plan.search = false;
    const VirtualOutcome plain =
        checkVirtually(representative(GetParam()), {.faults = {"switched-off:0"}, .plan = plan});
    EXPECT_EQ(plain.verdict.cause, Cause::NoAnswer);
    EXPECT_LT(plain.took, 60s);
}

INSTANTIATE_TEST_SUITE_P(Families, CheckOfFaults,
                         testing::Values(SimulatedFamily::Apperson, SimulatedFamily::Chatsworth,
                                         SimulatedFamily::EZData, SimulatedFamily::OpScan,
                                         SimulatedFamily::PeripheralDynamics, SimulatedFamily::Scanmark,
                                         SimulatedFamily::SekonicSerial),
                         [](const auto& family) {
                             std::string name = nameOf(family.param);
                             std::erase(name, ' ');
                             return name;
                         });

} // namespace
} // namespace kel::test
