// SPDX-License-Identifier: MIT
#include "UsbReaderTest.h"

#include "dispatch/basRead.h"

#include <gmock/gmock.h>

namespace kel::sekonic_usb_test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class SekonicUsbModel : public UsbReaderTest, public ::testing::WithParamInterface<kelReaderType> {};

TEST_P(SekonicUsbModel, RunsASessionWithoutALine)
{
    reader.ReaderType(GetParam());
    reader.settings().RecognitionThreshold = 11;
    EXPECT_EQ(reader.Port(), 0);
    EXPECT_EQ(reader.StartReader(), True);
    EXPECT_EQ(reader.CancelScan(), False);
    library.calls.clear();
    EXPECT_EQ(reader.ReadPage(False), True);
    EXPECT_THAT(library.calls, Contains("OMR_GetMarks 0 11 200 48"));
    reader.RejectPage();
    EXPECT_EQ(library.calls.back(), "OMR_EjectSheet 3");
    EXPECT_EQ(reader.EndReader(), True);
    EXPECT_EQ(library.calls.back(), "OMR_CloseDevice");
    EXPECT_THAT(reports(), IsEmpty());
    EXPECT_EQ(reader.fComm().mscComm().PortOpen(), False);
    EXPECT_EQ(reader.fComm().mscComm().CommPort(), 1);
}

INSTANTIATE_TEST_SUITE_P(Models, SekonicUsbModel,
                         ::testing::Values(kelReaderTypeSekonicSR2300, kelReaderTypeSekonicSR3500,
                                           kelReaderTypeSekonicSR6500, kelReaderTypeSekonicSR1800),
                         [](const auto& model) { return "Type" + std::to_string(model.param); });

class SekonicUsbDispatch : public UsbReaderTest {};

TEST_F(SekonicUsbDispatch, StopsQuietlyWhereThereIsNoSheet)
{
    library.results["OMR_GetLastError"] = {0x40110000};
    EXPECT_EQ(ReaderRead(reader), False);
    EXPECT_EQ(reader.CancelScan(), True);
    EXPECT_THAT(reports(), IsEmpty());
}

TEST_F(SekonicUsbDispatch, StopsWhereTheStartFailed)
{
    library.results["OMR_OpenDeviceUSB"] = {1};
    EXPECT_EQ(reader.StartReader(), False);
    EXPECT_EQ(reader.CancelScan(), True);
}

TEST_F(SekonicUsbDispatch, CountsAnEjectedSheetOnlyWhileAStopIsPending)
{
    for (const bool stop : {false, true}) {
        for (const Int32 result : {0, 1}) {
            reader.CancelScan(stop);
            library.results["OMR_EjectSheet"] = {result};
            Boolean bSheetEjected = True;
            ReaderEject(reader, bSheetEjected);
            EXPECT_EQ(bSheetEjected, stop && result == 1 ? True : False);
        }
    }
}

TEST_F(SekonicUsbDispatch, AStopThatComesDuringTheEjectCountsWhenItReturns)
{
    library.onCall = [&](const std::string&) { reader.CancelScan(True); };
    Boolean bSheetEjected;
    ReaderEject(reader, bSheetEjected);
    EXPECT_EQ(bSheetEjected, True);
    EXPECT_THAT(library.calls, ElementsAre("OMR_EjectSheet 3"));
}

TEST_F(SekonicUsbDispatch, TakesTheStopFlagBitByBit)
{
    reader.CancelScan(Boolean::fromBits(4));
    Boolean bSheetEjected;
    ReaderEject(reader, bSheetEjected);
    EXPECT_EQ(bSheetEjected.bits(), 4);
    EXPECT_THAT(library.calls, ElementsAre("OMR_EjectSheet 1"));
}

TEST_F(SekonicUsbDispatch, EjectsTheSameSheetAgainWhereNoStopWasPending)
{
    reader.EjectPage();
    reader.EjectPage();
    EXPECT_THAT(library.calls, ElementsAre("OMR_EjectSheet 3", "OMR_EjectSheet 3"));
    reader.CancelScan(True);
    reader.EjectPage();
    reader.EjectPage();
    EXPECT_THAT(library.calls, ElementsAre("OMR_EjectSheet 3", "OMR_EjectSheet 3", "OMR_EjectSheet 1"));
}

TEST_F(SekonicUsbDispatch, CountsARejectedSheetAsGoneWhateverTheLibraryAnswers)
{
    library.results["OMR_EjectSheet"] = {0};
    reader.settings().Rejecter = True;
    reader.RejectPage();
    reader.RejectPage();
    EXPECT_THAT(library.calls, ElementsAre("OMR_EjectSheet 4"));
}

TEST_F(SekonicUsbDispatch, PrintsUnlessThePrintIsAborted)
{
    reader.Printer()->Enabled(True);
    reader.Printer()->Active(True);
    reader.CancelScan(True);
    reader.ReadPage(True); // initializes the printer and stops
    reader.CancelScan(False);
    Boolean bSheetEjected;
    EXPECT_EQ(ReaderPrint(reader, True, bSheetEjected), False);
    EXPECT_THAT(library.calls, IsEmpty());
    EXPECT_EQ(ReaderPrint(reader, False, bSheetEjected), True);
    EXPECT_EQ(library.calls.size(), 5U);
    library.results["OMR_SetPrintOrder"] = {0};
    EXPECT_EQ(ReaderPrint(reader, False, bSheetEjected), False);
    EXPECT_EQ(bSheetEjected, False);
}

TEST_F(SekonicUsbDispatch, EndsABatchByClosingWhatDidNotOpen)
{
    library.results["OMR_OpenDeviceUSB"] = {1};
    Int32 lSheetCount = 0;
    EXPECT_EQ(reader.ReadBatch(False, 5, lSheetCount), False);
    EXPECT_THAT(library.calls, ElementsAre("OMR_OpenDeviceUSB", "OMR_GetLastError", "OMR_CloseDevice"));
}

TEST_F(SekonicUsbDispatch, SendsTheLastSheetOfABatchOut)
{
    Int32 lSheetCount = 0;
    EXPECT_EQ(reader.ReadBatch(False, 2, lSheetCount), True);
    EXPECT_EQ(lSheetCount, 2);
    const auto last = library.calls.size();
    EXPECT_EQ(library.calls[last - 2], "OMR_EjectSheet 1");
    EXPECT_EQ(library.calls[last - 1], "OMR_CloseDevice");
}

TEST_F(SekonicUsbDispatch, TellsTheMissingLibraryOnceInABoxAndOnceInAReport)
{
    const RuntimeFailure missing(FailureCode::FileNotFound, "File not found: OMRAPI.DLL");
    library.failures.insert({"OMR_OpenDeviceUSB", missing});
    library.failures.insert({"OMR_CloseDevice", missing});
    Int32 lSheetCount = 0;
    EXPECT_EQ(reader.ReadBatch(False, 1, lSheetCount), False);
    EXPECT_EQ(machine.screen().boxes().size(), 1U);
    expectRuntimeFailure(53, "CloseReaderSR");
}

} // namespace
} // namespace kel::sekonic_usb_test
