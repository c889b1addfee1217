// SPDX-License-Identifier: MIT
#include "tests/failure/GuardTest.h"

#include "options/OptionsPresenter.h"
#include "options/ShowOptions.h"
#include "reader/OptionsDialog.h"
#include "reader/SettingsStore.h"
#include "tests/drivers/sekonic_usb/FakeOmrApi.h"

namespace kel::test {
namespace {

constexpr kelReaderRegistryKey kHive = kelReaderRegistryKeyCurrentUser;
constexpr const char* kKey = "Software\\Host";

/// A presenter without a screen.
class NowhereToShow final : public OptionsPresenter {
public:
    bool show(frmOptions&, void*, std::string& reason) override
    {
        reason = "There is no screen.";
        return false;
    }
};

const std::vector<GuardCase> kSessionGuards = {
    {"clsKELReader.StartReader", FailsBy::Caller, 7,
     [](GuardBench& bench) {
         bench.reader.ReaderType(kelReaderTypePDIVMR138);
         bench.reader.Port(1);
         bench.reader.CancelScan(True);
         bench.failWithoutReport();
         EXPECT_EQ(bench.reader.StartReader(), False);
         EXPECT_EQ(bench.reader.CancelScan(), False);
     }},
    // The sheet has been read: what the host does with it does not change that.
    {"clsKELReader.ReadPage", FailsBy::Statement, 13,
     [](GuardBench& bench) {
         sekonic_usb_test::FakeOmrApi library;
         bench.machine.omrApiLoader().set(&library);
         bench.reader.ReaderType(kelReaderTypeSekonicSR2300);
         bench.host->onReadSheet = [](MarkArray&, MarkArray&, TextArray&, Boolean&) {
             throw RuntimeFailure(FailureCode::TypeMismatch);
         };
         EXPECT_EQ(bench.reader.ReadPage(False), True);
         EXPECT_EQ(bench.host->order.at(1), "ReadSheet");
         EXPECT_EQ(bench.host->order.size(), 3U) << "and the report";
     }},
    {"clsKELReader.ReadBatch", FailsBy::Statement, 6,
     [](GuardBench& bench) {
         sekonic_usb_test::FakeOmrApi library;
         bench.machine.omrApiLoader().set(&library);
         bench.reader.ReaderType(kelReaderTypeSekonicSR2300);
         Int32 lSheetCount = 2147483647;
         EXPECT_EQ(bench.reader.ReadBatch(False, -1, lSheetCount), False);
         EXPECT_EQ(lSheetCount, 2147483647);
     }},
    {"clsKELReader.EndReader", FailsBy::Caller, 7,
     [](GuardBench& bench) {
         bench.reader.ReaderType(kelReaderTypeChatsworthOMR2000);
         bench.failWithoutReport();
         EXPECT_EQ(bench.reader.EndReader(), False);
     }},
    // The sheet is not taken for ejected.
    {"clsKELReader.RejectPage", FailsBy::Caller, 7,
     [](GuardBench& bench) {
         bench.reader.ReaderType(kelReaderTypePDIVMR138);
         bench.failWithoutReport();
         bench.reader.RejectPage();
         bench.reader.RejectPage();
         EXPECT_EQ(bench.line->sent, "3");
     }},
    // The sheet is taken for ejected.
    {"clsKELReader.EjectPage", FailsBy::Caller, 7,
     [](GuardBench& bench) {
         bench.reader.ReaderType(kelReaderTypePDIVMR138);
         bench.failWithoutReport();
         bench.reader.EjectPage();
         bench.reader.EjectPage();
         EXPECT_EQ(bench.line->sent, "");
     }},
    {"clsKELReader.LoadDefaults", FailsBy::Statement, 91,
     [](GuardBench& bench) {
         EXPECT_EQ(bench.reader.LoadDefaults(static_cast<kelReaderType>(99)), False);
         EXPECT_EQ(bench.reader.ReaderType(), 99);
     }},
    {"clsKELReader.Locate", FailsBy::Statement, 91,
     [](GuardBench& bench) {
         bench.reader.Profiles(nullptr);
         EXPECT_EQ(bench.reader.Locate(1), False);
     }},
    {"clsKELReader.Firmware", FailsBy::Statement, 91,
     [](GuardBench& bench) {
         std::string sReturn = "before";
         bench.reader.Profiles(nullptr);
         EXPECT_EQ(bench.reader.Firmware(sReturn), False);
         EXPECT_EQ(sReturn, "before");
     }},
    // An array without bounds is kept, and the largest entry is gone.
    {"clsKELReader.Side1Rows", FailsBy::Statement, 9,
     [](GuardBench& bench) {
         bench.reader.Side1Rows(pages({63}));
         bench.reader.Side1Rows(PageArray());
         EXPECT_EQ(bench.reader.LargestSide1Rows(), 0);
         EXPECT_FALSE(bench.reader.Side1Rows().isDimensioned());
     }},
    {"clsKELReader.Side1Cols", FailsBy::Statement, 9,
     [](GuardBench& bench) {
         bench.reader.Side1Cols(pages({48}));
         bench.reader.Side1Cols(PageArray());
         EXPECT_EQ(bench.reader.LargestSide1Cols(), 0);
     }},
    {"clsKELReader.Side2Rows", FailsBy::Statement, 9,
     [](GuardBench& bench) {
         bench.reader.Side2Rows(pages({63}));
         bench.reader.Side2Rows(PageArray());
         EXPECT_EQ(bench.reader.LargestSide2Rows(), 0);
     }},
    {"clsKELReader.Side2Cols", FailsBy::Statement, 9,
     [](GuardBench& bench) {
         bench.reader.Side2Cols(pages({48}));
         bench.reader.Side2Cols(PageArray());
         EXPECT_EQ(bench.reader.LargestSide2Cols(), 0);
     }},
    {"clsKELReader.ShowOptions", FailsBy::Statement, 68,
     [](GuardBench&) {
         clsKELReader reader;
         setOptionsDialog(&showOptionsDialog);
         setOptionsPresenter(std::make_shared<NowhereToShow>());
         EXPECT_EQ(reader.ShowOptions(nullptr), False);
         setOptionsPresenter(nullptr);
     }},
    // What stands in front of the failure has been loaded, and saved.
    {"clsKELReader.LoadSettings", FailsBy::Statement, 6,
     [](GuardBench& bench) {
         bench.machine.registry().text(kHive, kKey, "ScannerType", "13");
         bench.machine.registry().text(kHive, kKey, "ScannerPort", "99999");
         EXPECT_EQ(SettingsStore(kHive, kKey).LoadSettings(bench.reader), False);
         EXPECT_EQ(bench.reader.ReaderType(), kelReaderTypeScantronScanMark2500);
     }},
    {"clsKELReader.SaveSettings", FailsBy::Statement, 91,
     [](GuardBench& bench) {
         bench.reader.Printer(nullptr);
         EXPECT_EQ(SettingsStore(kHive, kKey).SaveSettings(bench.reader), False);
         EXPECT_EQ(bench.machine.registry().text(kHive, kKey, "Duplex"), "False");
         EXPECT_EQ(bench.machine.registry().text(kHive, kKey, "SleepTime"), "");
     }},
    {"clsKELReader.LoadValue", FailsBy::Statement, 7,
     [](GuardBench&) {
         const SettingsStore store(kHive, kKey);
         const std::string sDefault = "longer than a text without memory";
         const FailingAllocation noMemory;
         EXPECT_EQ(store.LoadValue("ScannerParity", sDefault), "");
     }},
    {"clsKELReader.SaveValue", FailsBy::Statement, 7,
     [](GuardBench&) {
         const SettingsStore store(kHive, kKey);
         std::string sValue;
         const FailingAllocation noMemory;
         EXPECT_EQ(store.SaveValue("ScannerParity", sValue), False);
         EXPECT_EQ(sValue, "") << "its key could not be made";
     }},
};

const GuardTable sessionGuards("SessionGuards", kSessionGuards);

const std::vector<GuardCase> kCollectionGuards = {
    {"clsKELReaderWindows.Add", FailsBy::Statement, 5,
     [](GuardBench&) {
         clsKELReaderWindows windows;
         windows.Add(makeReference<clsKELReaderWindow>(), 1, 1);
         EXPECT_EQ(windows.Count(), 0);
     }},
    {"clsKELReaderWindows.Remove", FailsBy::Statement, 9,
     [](GuardBench&) {
         clsKELReaderWindows windows;
         windows.Add(makeReference<clsKELReaderWindow>());
         windows.Remove(2);
         EXPECT_EQ(windows.Count(), 1);
     }},
    {"clsKELReaderWindows.RemoveAll", FailsBy::Processor, 0,
     [](GuardBench&) {
         clsKELReaderWindows windows;
         windows.Add(makeReference<clsKELReaderWindow>());
         SteppedFault::arm();
         windows.RemoveAll();
         SteppedFault::disarm();
         EXPECT_EQ(windows.Count(), 1);
     }},
    {"clsKELReaderWindows.Item", FailsBy::Processor, 0,
     [](GuardBench&) {
         clsKELReaderWindows windows;
         windows.Add(makeReference<clsKELReaderWindow>());
         SteppedFault::arm();
         const Reference<clsKELReaderWindow> oResult = windows.Item(1);
         SteppedFault::disarm();
         EXPECT_TRUE(oResult.isNothing());
     }},
    {"clsKELReaderBarcodes.Add", FailsBy::Statement, 5,
     [](GuardBench&) {
         clsKELReaderBarcodes barcodes;
         barcodes.Add(makeReference<clsKELReaderBarcode>(), 1, 1);
         EXPECT_EQ(barcodes.Count(), 0);
     }},
    {"clsKELReaderBarcodes.Remove", FailsBy::Statement, 9,
     [](GuardBench&) {
         clsKELReaderBarcodes barcodes;
         barcodes.Add(makeReference<clsKELReaderBarcode>());
         barcodes.Remove(2);
         EXPECT_EQ(barcodes.Count(), 1);
     }},
    {"clsKELReaderBarcodes.RemoveAll", FailsBy::Processor, 0,
     [](GuardBench&) {
         clsKELReaderBarcodes barcodes;
         barcodes.Add(makeReference<clsKELReaderBarcode>());
         SteppedFault::arm();
         barcodes.RemoveAll();
         SteppedFault::disarm();
         EXPECT_EQ(barcodes.Count(), 1);
     }},
    {"clsKELReaderBarcodes.Item", FailsBy::Processor, 0,
     [](GuardBench&) {
         clsKELReaderBarcodes barcodes;
         barcodes.Add(makeReference<clsKELReaderBarcode>());
         SteppedFault::arm();
         const Reference<clsKELReaderBarcode> oResult = barcodes.Item(1);
         SteppedFault::disarm();
         EXPECT_TRUE(oResult.isNothing());
     }},
    {"clsKELReaderPrinter.SetType", FailsBy::Processor, 0,
     [](GuardBench&) {
         clsKELReaderPrinter printer;
         SteppedFault::arm();
         printer.SetType(kelReaderTypeScanningSystemsSR601);
         SteppedFault::disarm();
         EXPECT_EQ(printer.Distance(), 0);
     }},
    {"clsKELReaderPrinter.Enabled", FailsBy::Processor, 0,
     [](GuardBench&) {
         clsKELReaderPrinter printer;
         printer.SetType(kelReaderTypeScanningSystemsSR601);
         SteppedFault::arm();
         printer.Enabled(True);
         SteppedFault::disarm();
         EXPECT_EQ(printer.Enabled(), False);
     }},
};

const GuardTable collectionGuards("CollectionGuards", kCollectionGuards);

} // namespace
} // namespace kel::test
