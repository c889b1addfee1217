// SPDX-License-Identifier: MIT
#include "tests/failure/GuardTest.h"

#include "drivers/ncs/basNCS.h"

namespace kel::test {
namespace {

/// A reader in scan mode "i" that answers the question for its report.
void answerReport(GuardBench& bench)
{
    bench.line->onOutput = [&](std::string_view bytes) {
        if (bytes == "s0")
            bench.line->waiting = std::string(34, ' ') + "N" + std::string(13, ' ') + "i  ";
    };
}

const std::vector<GuardCase> kOpScanGuards = {
    {"basNCS.InitReaderNCS", FailsBy::Statement, 8020,
     [](GuardBench& bench) {
         answerReport(bench);
         bench.line->failsAtOutput("r");
         EXPECT_EQ(InitReaderNCS(bench.reader), False);
     }},
    {"basNCS.CloseReaderNCS", FailsBy::Statement, 6,
     [](GuardBench& bench) {
         bench.reader.SleepTime(2147483647);
         EXPECT_EQ(CloseReaderNCS(bench.reader), False);
     }},
    {"basNCS.CheckStatusNCS", FailsBy::Statement, 8020,
     [](GuardBench& bench) {
         bench.line->failsAtOutput("s1");
         EXPECT_EQ(CheckStatusNCS(bench.reader), False);
     }},
    // The mode is known by the time that the rest of the report is dropped.
    {"basNCS.GetScanModeNCS", FailsBy::Statement, 8020,
     [](GuardBench& bench) {
         eScanMode eMode = eScanModeNone;
         answerReport(bench);
         bench.line->failsAt(3 + 1 + 2 * 51 + 1 + 1);
         EXPECT_EQ(GetScanModeNCS(bench.reader, eMode), False);
         EXPECT_EQ(eMode, eScanModeI);
     }},
    {"basNCS.SetScanModeNCS", FailsBy::Statement, 8020,
     [](GuardBench& bench) {
         bench.line->failsAtOutput("ew\x04");
         EXPECT_EQ(SetScanModeNCS(bench.reader, eScanModeW), False);
     }},
    {"basNCS.ReadPageNCS", FailsBy::Statement, 8020,
     [](GuardBench& bench) {
         bench.line->failsAtOutput("\x11");
         EXPECT_EQ(ReadPageNCS(bench.reader), False);
     }},
    {"basNCS.PrintNCS", FailsBy::Statement, 8020,
     [](GuardBench& bench) {
         bench.reader.Printer()->Buffer1("Sheet 1");
         bench.line->failsAtOutput("2Sheet 1 \x04");
         EXPECT_EQ(PrintNCS(bench.reader), False);
         EXPECT_EQ(bench.line->sent, "100\x04");
     }},
    {"basNCS.RejectPageNCS", FailsBy::Statement, 8020,
     [](GuardBench& bench) {
         bench.line->failsAtOutput("\x1B\x12");
         RejectPageNCS(bench.reader);
     }},
    {"basNCS.EjectPageNCS", FailsBy::Statement, 8020,
     [](GuardBench& bench) {
         bench.line->failsAtOutput("\x12");
         EjectPageNCS(bench.reader);
     }},
};

const GuardTable opScanGuards("OpScanGuards", kOpScanGuards);

} // namespace
} // namespace kel::test
