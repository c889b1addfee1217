// SPDX-License-Identifier: MIT
#include "simulators/SimulatorTable.h"
#include "simulators/pseudo_terminal/PtyDeviceHost.h"
#include "tests/cli/CommandRun.h"

#include <gtest/gtest.h>

namespace kel::test {
namespace {

TEST(ReadBatchExample, PrintsTheMarksOfEachSheet)
{
    SimulatorOptions options;
    options.rate = Rate::Unlimited;
    options.sheets = SheetFeeder::fromJson(R"([{"side1":[[1,0,0],[0,1,0]]},{"side1":[[0],[0]]}])");
    const auto reader = makeSimulator(kelReaderTypeChatsworthALSAccelScanOMR, std::move(options));
    PtyDeviceHost host(*reader);
    host.start();

    ASSERT_EQ(runCommand({"ports", "set", "1", host.deviceFile()}).status, 0);
    const CommandOutcome outcome = RunningCommand({"22", "2"}, readBatchProgram()).finish();
    EXPECT_EQ(runCommand({"ports", "clear", "1"}).status, 0);
    EXPECT_EQ(outcome.output, "Sheet 1 \n"
                              "  row 1, column 1: 2\n"
                              "  row 2, column 2: 2\n"
                              "Sheet 2 \n");
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.status, 0);
}

TEST(ReadBatchExample, PrintsWhatFails)
{
    const CommandOutcome outcome = RunningCommand({"22", "1"}, readBatchProgram()).finish();
    EXPECT_EQ(outcome.output, "");
    EXPECT_NE(outcome.errors.find("Port 1 has no device"), std::string::npos) << outcome.errors;
    EXPECT_EQ(outcome.status, 1);
}

} // namespace
} // namespace kel::test
