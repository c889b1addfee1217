// SPDX-License-Identifier: MIT
#include "tests/failure/GuardTest.h"

#include "dispatch/basRead.h"
#include "profiles/ReaderModels.h"

namespace kel::test {
namespace {

const std::vector<GuardCase> kDispatchGuards = {
    {"basRead.ReaderInit", FailsBy::Statement, 8020,
     [](GuardBench& bench) {
         bench.reader.ReaderType(kelReaderTypePDIVMR138);
         bench.reader.Port(1);
         bench.line->failsAt(4);
         EXPECT_EQ(ReaderInit(bench.reader), False);
         EXPECT_EQ(bench.reader.CancelScan(), False) << "the failure comes before that";
     }},
    // The driver has closed its reader; it is the line that cannot be closed.
    {"basRead.ReaderClose", FailsBy::Statement, 8020,
     [](GuardBench& bench) {
         bench.reader.ReaderType(kelReaderTypeChatsworthOMR2000);
         bench.line->failsAt(2);
         EXPECT_EQ(ReaderClose(bench.reader), True);
     }},
    {"basRead.ReaderRead", FailsBy::Caller, 7,
     [](GuardBench& bench) {
         bench.reader.ReaderType(kelReaderTypeNCSOpScan2);
         bench.failWithoutReport();
         EXPECT_EQ(ReaderRead(bench.reader), False);
         EXPECT_EQ(bench.reader.Side1TimingMarks(), -1);
         EXPECT_EQ(bench.reader.CancelScan(), False) << "the failure comes before that";
     }},
    {"basRead.ReaderPrint", FailsBy::Caller, 7,
     [](GuardBench& bench) {
         Boolean bSheetEjected = False;
         bench.reader.ReaderType(kelReaderTypeNCSOpScan2);
         bench.failWithoutReport();
         EXPECT_EQ(ReaderPrint(bench.reader, False, bSheetEjected), False);
     }},
    {"basRead.ReturnReaderName", FailsBy::Statement, 7,
     [](GuardBench&) {
         const FailingAllocation noMemory;
         EXPECT_EQ(ReturnReaderName(kelReaderTypeChatsworthALSAccelScanOMR), "");
     }},
};

const GuardTable dispatchGuards("DispatchGuards", kDispatchGuards);

} // namespace
} // namespace kel::test
