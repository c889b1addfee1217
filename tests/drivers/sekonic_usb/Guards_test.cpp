// SPDX-License-Identifier: MIT
#include "tests/failure/GuardTest.h"

#include "FakeOmrApi.h"
#include "drivers/sekonic_usb/basSekonicSR.h"

namespace kel::test {
namespace {

/// A library one of whose functions fails at run time.
class FailingLibrary {
public:
    FailingLibrary(GuardBench& bench, const char* function)
    {
        library_.failures.emplace(function, RuntimeFailure(FailureCode::LibraryFunctionNotFound));
        bench.machine.omrApiLoader().set(&library_);
    }

private:
    sekonic_usb_test::FakeOmrApi library_;
};

const std::vector<GuardCase> kSekonicUsbGuards = {
    {"basSekonicSR.InitReaderSR", FailsBy::Statement, 453,
     [](GuardBench& bench) {
         const FailingLibrary library(bench, "OMR_GetSheetFeedMode");
         EXPECT_EQ(InitReaderSR(bench.reader), False);
     }},
    {"basSekonicSR.CloseReaderSR", FailsBy::Statement, 453,
     [](GuardBench& bench) {
         const FailingLibrary library(bench, "OMR_CloseDevice");
         EXPECT_EQ(CloseReaderSR(), False);
     }},
    {"basSekonicSR.InitBarcodeSR", FailsBy::Statement, 453,
     [](GuardBench& bench) {
         const FailingLibrary library(bench, "OMR_GetBarcodeReaderUnit");
         EXPECT_EQ(InitBarcodeSR(), False);
     }},
    {"basSekonicSR.ReturnErrorSR", FailsBy::Statement, 7,
     [](GuardBench&) {
         const FailingAllocation noMemory;
         ReturnErrorSR(1);
     }},
    // The front has been counted, and nothing is handed over.
    {"basSekonicSR.ReadPageSR", FailsBy::Statement, 453,
     [](GuardBench& bench) {
         const FailingLibrary library(bench, "OMR_GetBarcodeInfo");
         bench.reader.Barcodes()->Add(makeReference<clsKELReaderBarcode>());
         bench.reader.settings().Barcode = True;
         EXPECT_EQ(ReadPageSR(bench.reader, 5), False);
         EXPECT_EQ(bench.reader.Side1TimingMarks(), 200);
         EXPECT_FALSE(bench.reader.side1().isDimensioned());
     }},
    {"basSekonicSR.PrintSR", FailsBy::Statement, 453,
     [](GuardBench& bench) {
         const FailingLibrary library(bench, "OMR_SetPrintPosition");
         bench.reader.ReaderType(kelReaderTypeSekonicSR2300);
         bench.reader.Printer()->Enabled(True);
         bench.reader.Printer()->Active(True);
         bench.reader.CancelScan(True);
         bench.reader.ReadPage(True); // initializes the printer and stops
         EXPECT_EQ(PrintSR(bench.reader.Printer()), False);
     }},
    {"basSekonicSR.RejectPageSR", FailsBy::Statement, 453,
     [](GuardBench& bench) {
         const FailingLibrary library(bench, "OMR_EjectSheet");
         EXPECT_EQ(RejectPageSR(bench.reader), False);
     }},
    // An eject is told under the same name.
    {"basSekonicSR.RejectPageSR", FailsBy::Statement, 453,
     [](GuardBench& bench) {
         const FailingLibrary library(bench, "OMR_EjectSheet");
         EXPECT_EQ(EjectPageSR(bench.reader), False);
     }},
};

const GuardTable sekonicUsbGuards("SekonicUsbGuards", kSekonicUsbGuards);

} // namespace
} // namespace kel::test
