// SPDX-License-Identifier: MIT
#include "tests/cli/CommandRun.h"

#include <gtest/gtest.h>

namespace kel::test {
namespace {

CommandOutcome scriptedOptions(const std::vector<std::string>& arguments)
{
    return RunningCommand(arguments, scriptedOptionsProgram()).finish();
}

TEST(ScriptedOptionsExample, WorksTheDialogWithoutAWindow)
{
    const CommandOutcome outcome = scriptedOptions({"33", "txtMarkCutOff=99", "txtRecognitionThreshold=7"});
    EXPECT_EQ(outcome.output, "Sekonic SR3500 (USB): port 0, 0 baud, threshold 7, mark cut-off 15\n");
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.status, 0);
}

TEST(ScriptedOptionsExample, ASerialModelNeedsAPort)
{
    const CommandOutcome outcome = scriptedOptions({"13", "cboBaud=4800"});
    EXPECT_EQ(outcome.output, "");
    EXPECT_NE(outcome.errors.find("Cannot do cboBaud=4800"), std::string::npos);
    EXPECT_NE(outcome.errors.find("No Port Chosen"), std::string::npos);
    EXPECT_EQ(outcome.status, 1);
}

} // namespace
} // namespace kel::test
