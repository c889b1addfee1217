// SPDX-License-Identifier: MIT
#include "tests/failure/GuardTest.h"

#include "drivers/scantron/basScantron.h"

namespace kel::test {
namespace {

/// A reader that answers its status: a sheet is ready.
void answerInOneLine(GuardBench& bench)
{
    bench.line->onOutput = [&](std::string_view bytes) {
        if (bytes == "\x1BQSTS\r")
            bench.line->waiting = " 0      \x01  \r";
    };
}

const std::vector<GuardCase> kScantronGuards = {
    {"basScantron.InitReaderST", FailsBy::Caller, 7,
     [](GuardBench& bench) {
         bench.failWithoutReport();
         EXPECT_EQ(InitReaderST(bench.reader), False);
         EXPECT_EQ(bench.line->sent, "");
     }},
    {"basScantron.CloseReaderST", FailsBy::Caller, 7,
     [](GuardBench& bench) {
         bench.failWithoutReport();
         EXPECT_EQ(CloseReaderST(bench.reader), False);
     }},
    {"basScantron.ResetReaderST", FailsBy::Statement, 8020,
     [](GuardBench& bench) {
         bench.line->failsAt(1);
         EXPECT_EQ(ResetReaderST(bench.reader), False);
     }},
    {"basScantron.SendCommandST", FailsBy::Statement, 8020,
     [](GuardBench& bench) {
         bench.line->failsAtOutput("\x1BSRST\r");
         EXPECT_EQ(SendCommandST(bench.reader, "\x1BSRST\r"), False);
     }},
    // The status would be good: it is not looked at.
    {"basScantron.CheckStatusST", FailsBy::Statement, 8020,
     [](GuardBench& bench) {
         answerInOneLine(bench);
         bench.line->failsAt(1 + 1 + 1 + 2 * 11 + 1);
         EXPECT_EQ(CheckStatusST(bench.reader), ScantronReady::Fault);
         EXPECT_EQ(bench.line->waiting, "\r");
     }},
    {"basScantron.RejectPageST", FailsBy::Statement, 8020,
     [](GuardBench& bench) {
         bench.line->failsAtOutput("\x1B"
                                   "EJCT C\r");
         EXPECT_EQ(RejectPageST(bench.reader, True), False);
         EXPECT_EQ(bench.line->sent, "\x1BPRN$ 1 N \r");
     }},
    {"basScantron.PrintST", FailsBy::Statement, 91,
     [](GuardBench& bench) {
         bench.reader.Printer(nullptr);
         EXPECT_EQ(PrintST(bench.reader), False);
     }},
    // A form without pages.
    {"basScantron.DownloadFormST", FailsBy::Statement, 9,
     [](GuardBench& bench) { EXPECT_EQ(DownloadFormST(bench.reader), False); }},
    {"basScantron.ReadPageST", FailsBy::Statement, 8020,
     [](GuardBench& bench) {
         bench.reader.settings().Feeder = True;
         answerInOneLine(bench);
         bench.line->failsAtOutput("\x1BREAD 5 Y\r");
         EXPECT_EQ(ReadPageST(bench.reader), False);
     }},
    {"basScantron.ReadWindowsST", FailsBy::Statement, 91,
     [](GuardBench& bench) {
         bench.reader.Windows(nullptr);
         EXPECT_EQ(ReadWindowsST(bench.reader), False);
         EXPECT_EQ(bench.line->sent, "");
     }},
};

const GuardTable scantronGuards("ScantronGuards", kScantronGuards);

} // namespace
} // namespace kel::test
