// SPDX-License-Identifier: MIT
// Scan modes that no session asks for.

#include "tests/failure/GuardTest.h"

#include "drivers/ncs/basNCS.h"
#include "strings/VBLMRTSModule.h"

namespace kel::test {
namespace {

TEST(ScanMode, NoneIsRefusedBehindTheDrain)
{
    GuardBench bench;
    bench.line->waiting = "rest";
    EXPECT_EQ(SetScanModeNCS(bench.reader, eScanModeNone), False);
    EXPECT_EQ(bench.line->waiting, "");
    EXPECT_EQ(bench.line->sent, "");
    ASSERT_EQ(bench.host->reports.size(), 1U);
    const ErrorReport& report = bench.host->reports[0];
    EXPECT_EQ(report.ErrorNumber, 286);
    EXPECT_EQ(report.ErrorDescription, VBLM_RTString(286));
    EXPECT_EQ(report.ErrorTitle, VBLM_RTString(288));
    EXPECT_EQ(report.ErrorSource, "basNCS.SetScanModeNCS");
    EXPECT_EQ(report.ErrorType, 2);
}

TEST(ScanMode, EachHasItsLetterAndNoOtherOneHas)
{
    const char* const commands[] = {"ei\x04", "ee\x04", "et\x04", "ed\x04", "ew\x04", "es\x04", "e\x04", "e\x04"};
    int mode = 1;
    for (const char* command : commands) {
        GuardBench bench;
        EXPECT_EQ(SetScanModeNCS(bench.reader, static_cast<eScanMode>(mode)), True);
        EXPECT_EQ(bench.line->sent, command) << mode;
        ++mode;
    }
}

} // namespace
} // namespace kel::test
