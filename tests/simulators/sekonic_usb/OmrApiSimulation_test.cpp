// SPDX-License-Identifier: MIT
#include "simulators/sekonic_usb/OmrApiSimulation.h"

#include "platform/posix/PosixOmrApiLoader.h"
#include "simulators/framework/LatestEntries.h"
#include "tests/platform/posix/PosixTest.h"
#include "tests/support/BuiltFiles.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <fstream>
#include <limits>
#include <stdexcept>
#include <string>

namespace kel::omr_simulation_test {
namespace {

using test::simulatedOmrApi;

using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// The simulated library, called directly as a host that may do wrong.
class OmrApiSimulationTest : public ::testing::Test {
protected:
    OmrApiSimulationTest() { loader.libraryFile(simulatedOmrApi()); }

    [[nodiscard]] OmrApi& api() { return loader.omrApi(); }
    [[nodiscard]] std::vector<std::string> faults() const { return simulation.report().faults; }

    /// A reader that is open and made ready, with sheets in its feeder.
    void start(OmrSimulationState state = {.sheets = {sheet(), sheet()}}, Int32 backSensor = 0)
    {
        simulation.configure(state);
        api().OMR_OpenDeviceUSB();
        api().OMR_SetBackSensorUnit(backSensor);
    }

    Int32 feed()
    {
        api().OMR_FeedSheet();
        return api().OMR_GetLastError();
    }

    Int32 fetch(Int32 side, Int32 rows = 200, Int32 columns = 48)
    {
        uRead = {.lThreshold = 0, .lRows = rows, .lCols = columns};
        return api().OMR_GetMarks(side, uRead, bytes.data());
    }

    Int32 fetchBarcode(Int32 index, Int32 room = 512, Byte kind = 0x40)
    {
        type = kind;
        length = room;
        return api().OMR_GetBarcodeData(index, type, length, bytes.data());
    }

    void prepareBarcodes()
    {
        SRBarcodeArea area{.lStart = 1, .lLength = 2};
        api().OMR_SetBarCodeArea(area);
        api().OMR_SetBarCodeReadType(0x17);
        for (const Byte digit : {Byte{'a'}, Byte{'b'}, Byte{'c'}})
            api().OMR_SetBarCodeCheckDigit(digit, 0);
    }

    static SimulatedSheet sheet()
    {
        return {.side1 = {{1, 0, 255}, {0, 2}}, .side2 = {{3}}, .barcodes = {"123", "4"}, .fields = {}};
    }

    OmrApiSimulation simulation{simulatedOmrApi()};
    PosixOmrApiLoader loader{"/nowhere"};
    SRRead uRead;
    std::vector<Byte> bytes = std::vector<Byte>(9600, 0xEE);
    Byte type = 0;
    Int32 length = 0;
};

TEST_F(OmrApiSimulationTest, DeliversASheet)
{
    start({.sheets = {sheet()}, .barcodeUnit = 1}, 1);
    prepareBarcodes();
    EXPECT_EQ(feed(), 0);
    EXPECT_EQ(fetch(0), 1);
    EXPECT_EQ(uRead.lRows, 2);
    EXPECT_EQ(bytes[0], 1);
    EXPECT_EQ(bytes[2], 255);
    EXPECT_EQ(bytes[3], 0);
    EXPECT_EQ(bytes[48 + 1], 2);
    EXPECT_EQ(bytes[96], 0xEE);
    EXPECT_EQ(fetch(1), 1);
    EXPECT_EQ(uRead.lRows, 1);
    EXPECT_EQ(bytes[0], 3);
    Int32 count = 0;
    Int32 settings = 0;
    EXPECT_EQ(api().OMR_GetBarcodeInfo(count, settings), 1);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(fetchBarcode(2), 1);
    EXPECT_EQ(length, 1);
    EXPECT_EQ(bytes[0], '4');
    EXPECT_EQ(fetchBarcode(1), 1);
    EXPECT_EQ(length, 3);
    EXPECT_NE(type, 0x40);
    EXPECT_EQ(api().OMR_EjectSheet(3), 1);
    EXPECT_EQ(api().OMR_CloseDevice(), 1);
    const OmrSimulationReport report = simulation.report();
    EXPECT_THAT(report.faults, IsEmpty());
    EXPECT_THAT(report.log,
                ElementsAre(SheetRecord{SheetEvent::Fed, 1, "", 0, 0}, SheetRecord{SheetEvent::Read, 1, "front", 0, 0},
                            SheetRecord{SheetEvent::Read, 1, "back", 0, 0},
                            SheetRecord{SheetEvent::Ejected, 1, "outlet 3", 0, 0}));
    EXPECT_FALSE(report.open);
    EXPECT_EQ(report.remaining, 0);
    EXPECT_EQ(report.calls.back(), "OMR_CloseDevice");
}

TEST_F(OmrApiSimulationTest, FeedsTheSheetsOfASeedAfterThoseThatItWasGiven)
{
    const SheetShape shape = OmrSimulationState::RandomSheets().shape;
    const auto firstMark = [&](std::uint64_t place) { return randomSheet(shape, 4, place).side1[0]; };
    const auto fed = [&] {
        feed();
        fetch(0);
        return std::vector<Int16>(bytes.begin(), bytes.begin() + shape.side1Columns);
    };
    start({.sheets = {sheet()}, .randomSheets = {{.shape = shape, .seeded = {.seed = 4, .count = 1'000'000'000'000}}}});
    simulation.put({.side1 = {{9}}, .side2 = {}, .barcodes = {}, .fields = {}});
    EXPECT_EQ(simulation.report().remaining, std::numeric_limits<Int32>::max());
    EXPECT_EQ(fed()[2], 255);
    EXPECT_EQ(fed()[0], 9);
    EXPECT_EQ(fed(), firstMark(0));
    EXPECT_EQ(fed(), firstMark(1));
    EXPECT_THAT(faults(), IsEmpty());
}

TEST_F(OmrApiSimulationTest, SpoilsSheetsOnTheirWayIn)
{
    const SimulatedSheet light{.side1 = {{1}}, .side2 = {}, .barcodes = {}, .fields = {}};
    const SimulatedSheet dark{.side1 = {{0, 200}}, .side2 = {}, .barcodes = {}, .fields = {}};
    start({.sheets = {light, light, dark}, .paperFaults = {{SiteFault::Kind::DoubleFeed, 2}}});
    feed();
    fetch(0);
    EXPECT_EQ(bytes[1], 0);
    feed();
    fetch(0);
    EXPECT_EQ(bytes[0], 1);
    EXPECT_EQ(bytes[1], 200);
    EXPECT_EQ(feed(), 0x40110000);
    start({.sheets = {light}, .paperFaults = {{SiteFault::Kind::DoubleFeed, 1}, {SiteFault::Kind::SkewedSheet, 1}}});
    feed();
    fetch(0);
    EXPECT_EQ(uRead.lRows, 0) << "the last sheet has none to take with it";
}

TEST_F(OmrApiSimulationTest, ALongSessionKeepsItsLatestCalls)
{
    constexpr Int32 kSheets = 6000;
    const SheetShape small{.side1Rows = 1, .side1Columns = 1};
    start({.randomSheets = {{.shape = small, .seeded = {.seed = 1, .count = kSheets}}}});
    for (Int32 count = 0; count < kSheets; ++count)
        feed();
    const OmrSimulationReport report = simulation.report();
    EXPECT_LE(report.calls.size(), kMostEntries);
    EXPECT_EQ(report.calls.back(), "OMR_GetLastError");
    EXPECT_LE(report.log.size(), kMostEntries);
    EXPECT_EQ(report.log.back(), (SheetRecord{SheetEvent::Fed, kSheets, "", 0, 0}));
}

TEST_F(OmrApiSimulationTest, TellsAnEmptyFeeder)
{
    start({});
    EXPECT_EQ(feed(), 0x40110000);
    EXPECT_THAT(simulation.report().log, ElementsAre(SheetRecord{SheetEvent::Empty, 0, "", 0, 0}));
    EXPECT_THAT(faults(), IsEmpty());
    start({.feedCodes = {{1, 0x40110002}}});
    EXPECT_EQ(feed(), 0x40110002);
    EXPECT_THAT(simulation.report().log, ElementsAre(SheetRecord{SheetEvent::Empty, 0, "", 0, 0}));
}

TEST_F(OmrApiSimulationTest, TellsTheCodesThatItWasGiven)
{
    start({.sheets = {sheet(), sheet(), sheet()}, .feedCodes = {{1, 0x40120003}, {2, 0x40110000}, {3, 0x35090001}}});
    EXPECT_EQ(feed(), 0x40120003);
    EXPECT_EQ(fetch(0), 1);
    EXPECT_EQ(feed(), 0x40110000);
    EXPECT_EQ(simulation.report().remaining, 2);
    EXPECT_EQ(feed(), 0x35090001);
    EXPECT_EQ(simulation.report().remaining, 1);
    EXPECT_THAT(faults(), IsEmpty());
    EXPECT_EQ(fetch(0), 0);
    EXPECT_THAT(faults(), ElementsAre("OMR_GetMarks without a sheet"));
}

TEST_F(OmrApiSimulationTest, RefusesTheCallThatItWasTold)
{
    start({.sheets = {sheet()}, .refusals = {{"OMR_EjectSheet", 2, -7, 0x30080000}}});
    EXPECT_EQ(feed(), 0);
    EXPECT_EQ(api().OMR_EjectSheet(3), 1);
    EXPECT_EQ(api().OMR_EjectSheet(3), -7);
    EXPECT_EQ(api().OMR_GetLastError(), 0x30080000);
    EXPECT_THAT(faults(), ElementsAre("OMR_GetLastError where nothing was opened or fed"));
}

TEST_F(OmrApiSimulationTest, WithoutAReaderDoesNotOpen)
{
    simulation.configure({.connected = false});
    EXPECT_NE(api().OMR_OpenDeviceUSB(), 0);
    EXPECT_NE(api().OMR_GetLastError(), 0);
    EXPECT_EQ(api().OMR_CloseDevice(), 1);
    EXPECT_THAT(faults(), IsEmpty());
}

TEST_F(OmrApiSimulationTest, PrintsOnTheSheetThatLeaves)
{
    start();
    EXPECT_EQ(feed(), 0);
    EXPECT_EQ(api().OMR_SetPrintOrder(1, 2, 3), 1);
    EXPECT_EQ(api().OMR_SetPrintPosition(245), 1);
    EXPECT_EQ(api().OMR_SetPrintString(1, "one"), 1);
    EXPECT_EQ(api().OMR_SetPrintString(2, ""), 1);
    EXPECT_EQ(api().OMR_SetPrintString(3, "three"), 1);
    EXPECT_EQ(feed(), 0);
    EXPECT_EQ(api().OMR_EjectSheet(2), 1);
    EXPECT_THAT(simulation.report().log, ElementsAre(SheetRecord{SheetEvent::Fed, 1, "", 0, 0},
                                                     SheetRecord{SheetEvent::Printed, 1, "one", 1, 245},
                                                     SheetRecord{SheetEvent::Printed, 1, "", 2, 245},
                                                     SheetRecord{SheetEvent::Printed, 1, "three", 3, 245},
                                                     SheetRecord{SheetEvent::Ejected, 1, "next feed", 0, 0},
                                                     SheetRecord{SheetEvent::Fed, 2, "", 0, 0},
                                                     SheetRecord{SheetEvent::Rejected, 2, "outlet 2", 0, 0}));
    EXPECT_THAT(faults(), IsEmpty());
}

TEST_F(OmrApiSimulationTest, NotesAClosedReader)
{
    simulation.configure({.sheets = {sheet()}});
    Int32 one = 0;
    Int32 two = 0;
    EXPECT_EQ(api().OMR_GetReadingMethod(one, two), 0);
    EXPECT_EQ(api().OMR_GetSheetFeedMode(one, two), 0);
    EXPECT_EQ(api().OMR_GetNumberOfColumnsToRead(), 0);
    EXPECT_EQ(api().OMR_SetBackSensorUnit(1), 0);
    EXPECT_EQ(api().OMR_GetBarcodeReaderUnit(), -1);
    EXPECT_EQ(api().OMR_EjectSheet(3), 0);
    EXPECT_EQ(api().OMR_SetPrintOrder(1, 2, 3), 0);
    EXPECT_EQ(fetch(0), 0);
    EXPECT_NE(feed(), 0);
    EXPECT_EQ(faults().size(), 9U);
    EXPECT_THAT(faults(), Each(HasSubstr("without an open reader")));
}

TEST_F(OmrApiSimulationTest, NotesWrongOrder)
{
    start();
    EXPECT_EQ(fetch(0), 0);
    EXPECT_EQ(api().OMR_EjectSheet(3), 0);
    api().OMR_GetLastError();
    api().OMR_OpenDeviceUSB();
    EXPECT_THAT(faults(), ElementsAre("OMR_GetMarks without a sheet", "OMR_EjectSheet without a sheet",
                                      "OMR_GetLastError where nothing was opened or fed",
                                      "OMR_OpenDeviceUSB while the reader is open"));
}

TEST_F(OmrApiSimulationTest, NotesAFeedWithoutALookAtTheLastError)
{
    start();
    api().OMR_FeedSheet();
    fetch(0);
    EXPECT_THAT(faults(), ElementsAre("OMR_GetMarks where the last error is to be asked for"));
}

TEST_F(OmrApiSimulationTest, NotesAReaderThatIsNotReady)
{
    simulation.configure({.sheets = {sheet()}, .readingMethod = {1, 0}, .columns = 40, .feedMode = {2, 0}});
    api().OMR_OpenDeviceUSB();
    feed();
    EXPECT_THAT(faults(), ElementsAre("a feed with another reading method", "a feed with another number of columns",
                                      "a feed with another feed mode", "a feed before the back sensor was set"));
}

TEST_F(OmrApiSimulationTest, WantsTheBackSensorSetInEachSession)
{
    start();
    api().OMR_CloseDevice();
    api().OMR_OpenDeviceUSB();
    feed();
    EXPECT_THAT(faults(), ElementsAre("a feed before the back sensor was set"));
}

TEST_F(OmrApiSimulationTest, NotesWrongSettings)
{
    simulation.configure({.readingMethod = {1, 9}, .columns = 40, .feedMode = {2, 0}, .barcodeUnit = 1});
    api().OMR_OpenDeviceUSB();
    api().OMR_SetReadingMethod(2, 8);
    api().OMR_SetNumberOfColumnsToRead(47);
    api().OMR_SetSheetFeedMode(0, 1);
    api().OMR_SetBackSensorUnit(-1);
    api().OMR_SetBarcodeReaderUnit(1);
    EXPECT_THAT(faults(), ElementsAre("reading method 2", "the reading method's second value is changed", "47 columns",
                                      "feed mode 0, 1", "back sensor -1",
                                      "the barcode unit is switched on that is missing or on"));
}

TEST_F(OmrApiSimulationTest, NotesSettingsThatWereGood)
{
    start({});
    api().OMR_SetReadingMethod(3, 0);
    api().OMR_SetNumberOfColumnsToRead(48);
    api().OMR_SetSheetFeedMode(0, 0);
    EXPECT_THAT(faults(), ElementsAre("a good reading method is set anew", "the number of columns is set anew",
                                      "a good feed mode is set anew"));
}

TEST_F(OmrApiSimulationTest, NotesMarksThatAreFetchedWrongly)
{
    start();
    feed();
    EXPECT_EQ(fetch(2), 0);
    EXPECT_EQ(fetch(0, 200, 40), 0);
    EXPECT_EQ(fetch(0, 100), 0);
    EXPECT_EQ(fetch(1), 0);
    EXPECT_EQ(fetch(0), 1);
    EXPECT_EQ(fetch(0), 1);
    EXPECT_THAT(faults(),
                ElementsAre("marks of side 2", "marks of another number of columns than was set", "marks of 100 rows",
                            "the back is fetched with its sensor off", "the front is fetched twice"));
}

TEST_F(OmrApiSimulationTest, NotesABackBeforeTheFront)
{
    start({.sheets = {sheet()}}, 1);
    feed();
    EXPECT_EQ(fetch(1), 1);
    EXPECT_THAT(faults(), ElementsAre("the back is fetched out of turn"));
}

TEST_F(OmrApiSimulationTest, NotesAnOutletThatIsNone)
{
    start();
    feed();
    EXPECT_EQ(api().OMR_EjectSheet(0), 0);
    EXPECT_EQ(api().OMR_EjectSheet(5), 0);
    EXPECT_THAT(faults(), ElementsAre("outlet 0", "outlet 5"));
}

TEST_F(OmrApiSimulationTest, NotesBarcodesThatAreAskedForWrongly)
{
    start({.sheets = {sheet(), sheet()}, .barcodeUnit = 1});
    EXPECT_EQ(api().OMR_SetBarCodeCheckDigit('a', 0), 0);
    EXPECT_EQ(api().OMR_SetBarCodeReadType(0x17), 0);
    feed();
    Int32 count = 0;
    Int32 settings = 0;
    EXPECT_EQ(api().OMR_GetBarcodeInfo(count, settings), 0);
    SRBarcodeArea area;
    EXPECT_EQ(api().OMR_SetBarCodeArea(area), 1);
    EXPECT_EQ(api().OMR_SetBarCodeReadType(0x1F), 1);
    EXPECT_EQ(api().OMR_SetBarCodeCheckDigit('d', 1), 1);
    feed();
    EXPECT_EQ(api().OMR_GetBarcodeInfo(count, settings), 1);
    EXPECT_EQ(fetchBarcode(3), 0);
    EXPECT_EQ(fetchBarcode(0), 0);
    EXPECT_EQ(fetchBarcode(1, 100), 0);
    EXPECT_EQ(fetchBarcode(1, 512, 0), 0);
    EXPECT_THAT(faults(),
                ElementsAre("a check digit before the symbologies", "symbologies before an area",
                            "barcodes of a sheet that was fed without an area", "symbologies 31", "check digit 100, 1",
                            "a feed before the check digits were set", "barcodes before the marks", "barcode 3",
                            "barcode 0", "room or type of a barcode", "room or type of a barcode"));
}

TEST_F(OmrApiSimulationTest, WantsTheBarcodesPreparedForEachSheet)
{
    start({.sheets = {sheet(), sheet(), sheet()}, .barcodeUnit = 1});
    Int32 count = 0;
    Int32 settings = 0;
    for (int number = 1; number <= 2; ++number) {
        prepareBarcodes();
        feed();
        fetch(0);
        EXPECT_EQ(api().OMR_GetBarcodeInfo(count, settings), 1);
    }
    EXPECT_THAT(faults(), IsEmpty());
    feed();
    fetch(0);
    EXPECT_EQ(api().OMR_GetBarcodeInfo(count, settings), 0);
    EXPECT_THAT(faults(), ElementsAre("barcodes of a sheet that was fed without an area"));
}

TEST_F(OmrApiSimulationTest, RefusesAnAreaWithoutABarcodeUnit)
{
    for (const Int32 unit : {-1, 0}) {
        start({.barcodeUnit = unit});
        SRBarcodeArea area;
        EXPECT_EQ(api().OMR_SetBarCodeArea(area), 0);
        EXPECT_THAT(faults(), IsEmpty());
    }
}

TEST_F(OmrApiSimulationTest, NotesAPrintOutOfOrder)
{
    start();
    api().OMR_SetPrintString(2, "two");
    api().OMR_SetPrintPosition(1);
    api().OMR_SetPrintOrder(3, 2, 1);
    EXPECT_EQ(api().OMR_SetPrintString(4, ""), 0);
    EXPECT_THAT(faults(), ElementsAre("a print line before the position", "print line 2 out of turn",
                                      "a print position before the order", "a print without a sheet",
                                      "print lines out of order", "print line 4"));
    EXPECT_EQ(simulation.report().printStrings[1], "two");
}

TEST_F(OmrApiSimulationTest, WritesItsLogIntoAFile)
{
    const auto file = std::filesystem::temp_directory_path() / "kel-omrapi-simulation.log";
    std::filesystem::remove(file);
    start({.sheets = {sheet()}, .logFile = file});
    feed();
    api().OMR_EjectSheet(4);
    api().OMR_EjectSheet(4);
    std::ifstream stream(file);
    std::string lines((std::istreambuf_iterator<char>(stream)), {});
    EXPECT_EQ(lines, "{\"event\":\"fed\",\"sheet\":1}\n"
                     "{\"event\":\"rejected\",\"sheet\":1,\"text\":\"outlet 4\"}\n"
                     "fault: OMR_EjectSheet without a sheet\n");
    simulation.configure({});
    std::filesystem::remove(file);
}

TEST_F(OmrApiSimulationTest, KeepsItsStateWhereANewOneIsRefused)
{
    start();
    feed();
    EXPECT_THROW(simulation.configure({.feedCodes = {{0, 1}}}), std::runtime_error);
    EXPECT_EQ(simulation.report().log.size(), 1U);
}

TEST_F(OmrApiSimulationTest, RefusesASheetThatIsNone)
{
    SimulatedSheet tall = sheet();
    tall.side2.resize(201);
    EXPECT_THROW(simulation.put(tall), std::runtime_error);
    SimulatedSheet bright = sheet();
    bright.side1[0][0] = 256;
    EXPECT_THROW(simulation.put(bright), std::runtime_error);
    EXPECT_EQ(simulation.report().remaining, 0);
    simulation.put(sheet());
    EXPECT_EQ(simulation.report().remaining, 1);
}

TEST(OmrSimulationEnvironment, NamesTheStateOfALibraryThatNobodyHasSetUp)
{
    const test::TemporaryFolder folder;
    const auto stateFile = folder.path() / "state.json";
    std::ofstream(stateFile) << R"({"columns":37,"sheets":[{"side1":[[9]]}]})";
    ::setenv("KEL_OMRAPI_SIMULATION", stateFile.c_str(), 1);
    // A copy under another name is a library of its own.
    std::filesystem::copy_file(simulatedOmrApi(), folder.path() / "libOMRAPI.so");
    PosixOmrApiLoader loader(folder.path());
    EXPECT_EQ(loader.omrApi().OMR_OpenDeviceUSB(), 0);
    EXPECT_EQ(loader.omrApi().OMR_GetNumberOfColumnsToRead(), 37);

    std::ofstream(stateFile) << R"({"columns":"many"})";
    std::filesystem::copy_file(simulatedOmrApi(), folder.path() / "other.so");
    loader.libraryFile(folder.path() / "other.so");
    testing::internal::CaptureStderr();
    EXPECT_NE(loader.omrApi().OMR_OpenDeviceUSB(), 0);
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                HasSubstr("state.json: columns has to be a whole number, not a text"));
    ::unsetenv("KEL_OMRAPI_SIMULATION");
}

TEST(OmrSimulationLibrary, MustBeTheSimulatedOne)
{
    EXPECT_THROW(OmrApiSimulation("/nowhere/libOMRAPI.so"), std::runtime_error);
}

} // namespace
} // namespace kel::omr_simulation_test
