// SPDX-License-Identifier: MIT
#include "tests/failure/GuardTest.h"

#include "drivers/scanning_systems/basScanningSystems.h"

namespace kel::test {
namespace {

const std::vector<GuardCase> kScanningSystemsGuards = {
    {"basScanningSystems.InitReaderSS", FailsBy::Statement, 8020,
     [](GuardBench& bench) {
         bench.line->failsAt(1);
         EXPECT_EQ(InitReaderSS(bench.reader), False);
     }},
    // What has been taken of the reply is no result yet.
    {"basScanningSystems.SendCommandSS", FailsBy::Statement, 8020,
     [](GuardBench& bench) {
         bench.line->onOutput = [&](std::string_view) {
             bench.line->waiting = "OK";
             bench.line->failsAt(5);
         };
         EXPECT_EQ(SendCommandSS(bench.reader, "?T\r", False), "");
         EXPECT_EQ(bench.line->waiting, "K");
     }},
    {"basScanningSystems.ReturnErrorSS", FailsBy::Statement, 7,
     [](GuardBench& bench) {
         bench.reader.ReaderType(kelReaderTypeSekonicSR430);
         const FailingAllocation noMemory;
         ReturnErrorSS(bench.reader, "50");
     }},
    {"basScanningSystems.ReadPageSS", FailsBy::Statement, 8020,
     [](GuardBench& bench) {
         bench.line->failsAt(1);
         EXPECT_EQ(ReadPageSS(bench.reader), False);
     }},
    // A form without rows has no array.
    {"basScanningSystems.ReadEntirePageSS", FailsBy::Statement, 9,
     [](GuardBench& bench) {
         EXPECT_EQ(ReadEntirePageSS(bench.reader), False);
         EXPECT_EQ(bench.line->sent, "");
     }},
    {"basScanningSystems.ReadWindowsSS", FailsBy::Statement, 9,
     [](GuardBench& bench) {
         EXPECT_EQ(ReadWindowsSS(bench.reader), False);
         EXPECT_EQ(bench.line->sent, "");
     }},
    {"basScanningSystems.AddToArraySS", FailsBy::Statement, 91,
     [](GuardBench& bench) {
         MarkArray iPageArr(1, 1);
         iPageArr(1, 1) = 7;
         bench.reader.Windows(nullptr);
         AddToArraySS(bench.reader, "", 1, iPageArr);
         EXPECT_EQ(iPageArr(1, 1), 7);
     }},
    {"basScanningSystems.PrintSS", FailsBy::Statement, 8020,
     [](GuardBench& bench) {
         bench.line->failsAt(2);
         EXPECT_EQ(PrintSS(bench.reader, True), False);
         EXPECT_EQ(bench.line->sent, "?F\r");
     }},
    {"basScanningSystems.RejectPageSS", FailsBy::Statement, 91,
     [](GuardBench& bench) {
         bench.reader.Printer(nullptr);
         RejectPageSS(bench.reader, True);
         EXPECT_EQ(bench.line->sent, "");
     }},
    {"basScanningSystems.RejectPrintSS", FailsBy::Statement, 8020,
     [](GuardBench& bench) {
         bench.line->failsAt(2);
         RejectPrintSS(bench.reader);
         EXPECT_EQ(bench.line->sent, "?F\r");
     }},
};

const GuardTable scanningSystemsGuards("ScanningSystemsGuards", kScanningSystemsGuards);

} // namespace
} // namespace kel::test
