// SPDX-License-Identifier: MIT
#include "simulators/sekonic_usb/OmrApiSimulation.h"

#include "failure/basError.h"
#include "platform/posix/PosixOmrApiLoader.h"
#include "reader/clsKELReader.h"
#include "simulators/framework/SheetFeeder.h"
#include "simulators/platform/SimulatedPlatform.h"
#include "strings/VBLMRTSModule.h"
#include "tests/support/BuiltFiles.h"
#include "tests/support/KeptReports.h"

#include <gmock/gmock.h>

#include <functional>
#include <memory>
#include <vector>

namespace kel::omr_session_test {
namespace {

using test::simulatedOmrApi;

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

/// What a host hears of a sheet.
struct HeardSheet {
    MarkArray side1;
    MarkArray side2;
    TextArray barcodes;
    Int16 side1TimingMarks = 0;
    Int16 side2TimingMarks = 0;
};

/// A host that keeps the sheets, and does with each what the test says.
class Host final : public ReaderEvents {
public:
    explicit Host(clsKELReader& reader) : reader_(reader) {}

    void ReadSheet(MarkArray& iSide1Array, MarkArray& iSide2Array, TextArray& sBarcodeArray, Boolean&) override
    {
        sheets.push_back(
            {iSide1Array, iSide2Array, sBarcodeArray, reader_.Side1TimingMarks(), reader_.Side2TimingMarks()});
        if (onSheet)
            onSheet(static_cast<Int32>(sheets.size()));
    }

    void AfterPrint() override { ++printed; }

    std::vector<HeardSheet> sheets;
    int printed = 0;
    std::function<void(Int32 sheet)> onSheet;

private:
    clsKELReader& reader_;
};

/// A reader object over the simulated library, which is loaded as the maker's would be.
class SekonicUsbSession : public ::testing::Test {
protected:
    SekonicUsbSession() : scope(machine)
    {
        loader.libraryFile(simulatedOmrApi());
        machine.omrApiLoader().set(&loader.omrApi());
        reader = std::make_unique<clsKELReader>();
        host = std::make_shared<Host>(*reader);
        reader->Advise(host);
        reader->SetError(errors);
        use(kelReaderTypeSekonicSR2300);
    }

    ~SekonicUsbSession() override { setErrorObject(nullptr); }

    void use(kelReaderType model) { EXPECT_EQ(reader->LoadDefaults(model), True); }

    void addZone(Int16 distance, Int16 length)
    {
        const auto zone = makeReference<clsKELReaderBarcode>();
        zone->Distance(distance);
        zone->Length(length);
        reader->Barcodes()->Add(zone);
        reader->Barcode(True);
    }

    void makeDuplex()
    {
        reader->Duplex(True);
        reader->DuplexForm(True);
    }

    /// Reads until the feeder is empty, or so many sheets.
    Int32 readAll(Int32 lMaxSheets = -1, Boolean print = False)
    {
        Int32 lSheetCount = 0;
        EXPECT_EQ(reader->ReadBatch(print, lMaxSheets, lSheetCount), True);
        return lSheetCount;
    }

    [[nodiscard]] OmrSimulationReport report() const { return simulation.report(); }

    SimulatedPlatform machine;
    PlatformScope scope;
    OmrApiSimulation simulation{simulatedOmrApi()};
    PosixOmrApiLoader loader{"/nowhere"};
    std::shared_ptr<test::KeptReports> errors = std::make_shared<test::KeptReports>();
    std::unique_ptr<clsKELReader> reader;
    std::shared_ptr<Host> host;
};

std::vector<SimulatedSheet> pile(std::uint64_t seed, std::uint64_t count)
{
    std::vector<SimulatedSheet> sheets;
    for (std::uint64_t place = 0; place < count; ++place) {
        // Short sheets and some of full length, and none to three barcodes.
        const SheetShape shape{.side1Rows = place % 10 == 9 ? 200 : static_cast<Int32>(place * 7 % 41),
                               .side1Columns = 48,
                               .side2Rows = place % 10 == 8 ? 200 : static_cast<Int32>(place * 11 % 41),
                               .side2Columns = 48,
                               .lowestMark = 1,
                               .highestMark = 255,
                               .barcodes = static_cast<Int32>(place % 4),
                               .barcodeLength = static_cast<Int32>(1 + place % 40)};
        sheets.push_back(randomSheet(shape, seed, place));
    }
    return sheets;
}

MarkArray cellsOf(const MarkRows& rows)
{
    MarkArray cells(200, 48);
    for (Int32 row = 1; row <= 200; ++row) {
        for (Int32 column = 1; column <= 48; ++column)
            cells(row, column) = markAt(rows, row, column);
    }
    return cells;
}

TextArray barcodesOf(const SimulatedSheet& sheet)
{
    return sheet.barcodes.empty() ? TextArray(0, 0) : TextArray::of(1, sheet.barcodes);
}

TEST_F(SekonicUsbSession, ReadsAThousandTwoSidedSheetsWithTheirBarcodes)
{
    const std::vector<SimulatedSheet> sheets = pile(20240607, 1000);
    simulation.configure({.sheets = sheets, .readingMethod = {1, 77}, .columns = 40, .feedMode = {1, 1}});
    makeDuplex();
    addZone(100, 50);
    EXPECT_EQ(readAll(), 1001); // the last read finds the feeder empty, and counts
    ASSERT_EQ(host->sheets.size(), sheets.size());
    for (std::size_t i = 0; i < sheets.size(); ++i) {
        ASSERT_EQ(host->sheets[i].side1, cellsOf(sheets[i].side1)) << "sheet " << i + 1;
        ASSERT_EQ(host->sheets[i].side2, cellsOf(sheets[i].side2)) << "sheet " << i + 1;
        ASSERT_EQ(host->sheets[i].barcodes, barcodesOf(sheets[i])) << "sheet " << i + 1;
        ASSERT_EQ(host->sheets[i].side1TimingMarks, static_cast<Int16>(sheets[i].side1.size()));
        ASSERT_EQ(host->sheets[i].side2TimingMarks, static_cast<Int16>(sheets[i].side2.size()));
    }
    EXPECT_THAT(report().faults, IsEmpty());
    EXPECT_THAT(errors->reports, IsEmpty());
    EXPECT_EQ(report().remaining, 0);
    EXPECT_FALSE(report().open);
}

class SekonicUsbSessionModel : public SekonicUsbSession, public ::testing::WithParamInterface<kelReaderType> {};

TEST_P(SekonicUsbSessionModel, ReadsAndTouchesNoPort)
{
    use(GetParam());
    const std::vector<SimulatedSheet> sheets = pile(3, 5);
    simulation.configure({.sheets = sheets});
    reader->Duplex(False);
    EXPECT_EQ(readAll(), 6);
    ASSERT_EQ(host->sheets.size(), 5U);
    for (std::size_t i = 0; i < sheets.size(); ++i) {
        EXPECT_EQ(host->sheets[i].side1, cellsOf(sheets[i].side1));
        EXPECT_EQ(host->sheets[i].side2, MarkArray(200, 48));
        EXPECT_EQ(host->sheets[i].side2TimingMarks, -1);
        EXPECT_EQ(host->sheets[i].barcodes, TextArray(0, 0));
    }
    EXPECT_THAT(report().faults, IsEmpty());
    EXPECT_THAT(errors->reports, IsEmpty());
    for (Int16 port = 1; port <= 16; ++port)
        EXPECT_THAT(machine.line(port).actions(), IsEmpty()) << port;
    EXPECT_THAT(machine.sleeps(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Models, SekonicUsbSessionModel,
                         ::testing::Values(kelReaderTypeSekonicSR2300, kelReaderTypeSekonicSR3500,
                                           kelReaderTypeSekonicSR6500, kelReaderTypeSekonicSR1800),
                         [](const auto& model) { return "Type" + std::to_string(model.param); });

TEST_F(SekonicUsbSession, HandsTheModelsThresholdToTheLibrary)
{
    simulation.configure({.sheets = pile(1, 1)});
    reader->RecognitionThreshold(7);
    readAll(1);
    EXPECT_THAT(report().calls, Contains("OMR_GetMarks 0 7 200 48"));
}

TEST_F(SekonicUsbSession, SendsTheLastSheetOfABatchOut)
{
    simulation.configure({.sheets = pile(1, 3)});
    EXPECT_EQ(readAll(2), 2);
    EXPECT_THAT(report().log, Contains(SheetRecord{SheetEvent::Ejected, 1, "next feed", 0, 0}));
    EXPECT_EQ(report().log.back(), (SheetRecord{SheetEvent::Ejected, 2, "outlet 1", 0, 0}));
    EXPECT_EQ(report().remaining, 1);
    EXPECT_THAT(report().faults, IsEmpty());
}

TEST_F(SekonicUsbSession, SendsRejectedSheetsToTheRejecterOrOut)
{
    for (const bool rejecter : {false, true}) {
        simulation.configure({.sheets = pile(1, 3)});
        reader->Rejecter(rejecter);
        host->sheets.clear();
        host->onSheet = [&](Int32 sheet) {
            if (sheet != 2)
                return;
            reader->RejectPage();
            reader->EjectPage();
            reader->RejectPage();
        };
        readAll();
        const SheetRecord gone = rejecter ? SheetRecord{SheetEvent::Rejected, 2, "outlet 4", 0, 0}
                                          : SheetRecord{SheetEvent::Ejected, 2, "outlet 3", 0, 0};
        EXPECT_THAT(report().log, Contains(gone).Times(1));
        EXPECT_THAT(report().faults, IsEmpty());
    }
}

TEST_F(SekonicUsbSession, PrintsThreeLinesOnEachSheet)
{
    simulation.configure({.sheets = pile(1, 2)});
    reader->Printer()->Enabled(True);
    reader->Printer()->Active(True);
    host->onSheet = [&](Int32 sheet) {
        reader->Printer()->Buffer1("sheet " + std::to_string(sheet));
        reader->Printer()->Buffer3("end");
    };
    readAll(2, True);
    EXPECT_EQ(host->printed, 2);
    for (Int32 sheet = 1; sheet <= 2; ++sheet) {
        EXPECT_THAT(report().log,
                    Contains(SheetRecord{SheetEvent::Printed, sheet, "sheet " + std::to_string(sheet), 1, 245}));
        EXPECT_THAT(report().log, Contains(SheetRecord{SheetEvent::Printed, sheet, "", 2, 245}));
        EXPECT_THAT(report().log, Contains(SheetRecord{SheetEvent::Printed, sheet, "end", 3, 245}));
    }
    EXPECT_THAT(report().faults, IsEmpty());
}

TEST_F(SekonicUsbSession, LeavesTheFirstLineSetWhereTheSecondIsRefused)
{
    simulation.configure({.sheets = pile(1, 1), .refusals = {{"OMR_SetPrintString", 2, 0, 0}}});
    reader->Printer()->Enabled(True);
    reader->Printer()->Active(True);
    reader->Printer()->Buffer1("one");
    reader->Printer()->Buffer2("two");
    readAll(1, True);
    EXPECT_EQ(host->printed, 0);
    EXPECT_THAT(report().printStrings, ElementsAre("one", "", ""));
    EXPECT_THAT(report().log, Not(Contains(::testing::Field(&SheetRecord::event, SheetEvent::Printed))));
    EXPECT_THAT(errors->reports, IsEmpty());
}

TEST_F(SekonicUsbSession, ReadsOnWithoutABarcodeUnit)
{
    simulation.configure({.sheets = pile(5, 3), .barcodeUnit = -1});
    addZone(100, 50);
    readAll();
    ASSERT_EQ(host->sheets.size(), 3U);
    EXPECT_EQ(host->sheets[2].barcodes, TextArray(0, 0));
    EXPECT_THAT(report().calls, Contains("OMR_GetBarcodeReaderUnit"));
    EXPECT_THAT(report().calls, Not(Contains("OMR_GetBarcodeInfo")));
    EXPECT_THAT(report().faults, IsEmpty());
    EXPECT_THAT(errors->reports, IsEmpty());
}

TEST_F(SekonicUsbSession, StopsAtACodeOfTheFeedAndReportsIt)
{
    simulation.configure({.sheets = pile(1, 3), .feedCodes = {{1, 0x42120003}, {2, 0x45140004}}});
    EXPECT_EQ(readAll(), 2);
    EXPECT_EQ(host->sheets.size(), 1U);
    ASSERT_EQ(errors->reports.size(), 1U);
    EXPECT_EQ(errors->reports[0].ErrorNumber, 45140004);
    EXPECT_EQ(errors->reports[0].ErrorDescription, VBLM_RTString(536));
    EXPECT_EQ(reader->CancelScan(), True);
    EXPECT_EQ(report().log.back(), (SheetRecord{SheetEvent::Jammed, 2, "", 0, 0}));
    EXPECT_THAT(report().faults, IsEmpty());
}

TEST_F(SekonicUsbSession, EndsWhereThereIsNoReader)
{
    simulation.configure({.connected = false});
    Int32 lSheetCount = 0;
    EXPECT_EQ(reader->ReadBatch(False, -1, lSheetCount), False);
    EXPECT_EQ(lSheetCount, 0);
    ASSERT_EQ(errors->reports.size(), 1U);
    EXPECT_EQ(errors->reports[0].ErrorDescription, VBLM_RTString(476));
    EXPECT_THAT(report().calls, ElementsAre("OMR_OpenDeviceUSB", "OMR_GetLastError", "OMR_CloseDevice"));
    EXPECT_THAT(report().faults, IsEmpty());
}

TEST_F(SekonicUsbSession, TellsThatTheLibraryIsMissing)
{
    loader.libraryFile("/nowhere/libOMRAPI.so");
    machine.omrApiLoader().set(&loader.omrApi());
    EXPECT_EQ(reader->StartReader(), False);
    EXPECT_THAT(errors->reports, IsEmpty());
    EXPECT_THAT(machine.screen().boxes(),
                ElementsAre(ShownBox{VBLM_RTString(488) + "\r\n\r\n" + VBLM_RTString(490), BoxIcon::Exclamation,
                                     BoxButtons::Ok, VBLM_RTString(492)}));
    EXPECT_EQ(reader->EndReader(), False);
    ASSERT_EQ(errors->reports.size(), 1U);
    EXPECT_EQ(errors->reports[0].ErrorNumber, 53);
    EXPECT_EQ(errors->reports[0].ErrorDescription, "File not found: OMRAPI.DLL");
}

} // namespace
} // namespace kel::omr_session_test
