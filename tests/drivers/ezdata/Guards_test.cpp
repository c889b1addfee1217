// SPDX-License-Identifier: MIT
#include "tests/failure/GuardTest.h"

#include "drivers/ezdata/basNCSEZData.h"

namespace kel::test {
namespace {

const std::vector<GuardCase> kEzDataGuards = {
    {"basNCSEZData.InitReaderNCSEZ", FailsBy::Statement, 8020,
     [](GuardBench& bench) {
         bench.line->failsAtOutput("\x12\x1BGETCONFIG\x12"
                                   "E");
         EXPECT_EQ(InitReaderNCSEZ(bench.reader), False);
     }},
    {"basNCSEZData.CloseReaderNCSEZ", FailsBy::Statement, 6,
     [](GuardBench& bench) {
         bench.reader.CancelScan(True);
         bench.reader.SleepTime(2147483647);
         EXPECT_EQ(CloseReaderNCSEZ(bench.reader), False);
     }},
    {"basNCSEZData.SetValuesNCSEZ", FailsBy::Statement, 8020,
     [](GuardBench& bench) {
         bench.line->waiting = "3G\r";
         bench.line->failsAtOutput("\x12\x1B"
                                   "CHECKSUM\x12"
                                   "E");
         EXPECT_EQ(SetValuesNCSEZ(bench.reader, "SETDECAY3", "3"), False);
     }},
    {"basNCSEZData.CheckThresholdNCSEZ", FailsBy::Processor, 0,
     [](GuardBench&) {
         const std::string sScannerThreshold = "66";
         SteppedFault::arm();
         const ComponentCode running;
         const Boolean bResult = CheckThresholdNCSEZ(3, sScannerThreshold);
         SteppedFault::disarm();
         EXPECT_EQ(bResult, False);
     }},
    {"basNCSEZData.ReadPageNCSEZ", FailsBy::Statement, 6,
     [](GuardBench& bench) {
         bench.reader.settings().RecognitionThreshold = 32767;
         EXPECT_EQ(ReadPageNCSEZ(bench.reader), False);
         EXPECT_EQ(bench.line->sent, "");
     }},
    {"basNCSEZData.RejectPageNCSEZ", FailsBy::Statement, 8020,
     [](GuardBench& bench) {
         bench.line->failsAtOutput("\x12\x1B"
                                   "ER\x12"
                                   "E");
         EXPECT_EQ(RejectPageNCSEZ(bench.reader, False), False);
     }},
    {"basNCSEZData.LocateReaderNCSEZ", FailsBy::Statement, 8020,
     [](GuardBench& bench) {
         bench.line->failsAtOutput("\x12R7777\x12I00\x12"
                                   "E");
         EXPECT_EQ(LocateReaderNCSEZ(bench.reader, 1), False);
         EXPECT_EQ(bench.line->PortOpen(), False) << "the line is closed behind a failure";
     }},
    // The closing of the line: the reader has been found by then.
    {"basNCSEZData.LocateReaderNCSEZ", FailsBy::Statement, 8020,
     [](GuardBench& bench) {
         bench.line->waiting = "G\r";
         bench.line->onOutput = [&](std::string_view) { bench.line->failsAt(4); };
         EXPECT_EQ(LocateReaderNCSEZ(bench.reader, 1), True);
     }},
    {"basNCSEZData.FirmwareVersionNCSEZ", FailsBy::Statement, 8020,
     [](GuardBench& bench) {
         std::string sReturn = "before";
         bench.line->failsAtOutput("\x12\x1BV\x12"
                                   "E");
         EXPECT_EQ(FirmwareVersionNCSEZ(bench.reader, sReturn), False);
         EXPECT_EQ(sReturn, "before");
         EXPECT_EQ(bench.line->PortOpen(), False);
     }},
    {"basNCSEZData.FirmwareVersionNCSEZ", FailsBy::Statement, 8020,
     [](GuardBench& bench) {
         std::string sReturn;
         bench.line->waiting = " 2.1 G\r";
         bench.line->onOutput = [&](std::string_view) { bench.line->failsAt(4); };
         EXPECT_EQ(FirmwareVersionNCSEZ(bench.reader, sReturn), True);
         EXPECT_EQ(sReturn, "2.1");
     }},
};

const GuardTable ezDataGuards("EzDataGuards", kEzDataGuards);

} // namespace
} // namespace kel::test
