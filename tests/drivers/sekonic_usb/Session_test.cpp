// SPDX-License-Identifier: MIT
#include "UsbReaderTest.h"

#include "drivers/sekonic_usb/basSekonicSR.h"
#include "strings/VBLMRTSModule.h"
#include "types/Text.h"

#include <gmock/gmock.h>

#include <set>

namespace kel::sekonic_usb_test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr TextNumber kInitTitle = 376;

class SekonicUsbInit : public UsbReaderTest {};

TEST_F(SekonicUsbInit, LeavesAReaderAloneThatIsAsItShouldBe)
{
    EXPECT_EQ(InitReaderSR(reader), True);
    EXPECT_THAT(library.calls, ElementsAre("OMR_OpenDeviceUSB", "OMR_GetReadingMethod", "OMR_GetNumberOfColumnsToRead",
                                           "OMR_SetBackSensorUnit 0", "OMR_GetSheetFeedMode"));
    EXPECT_THAT(reports(), IsEmpty());
}

TEST_F(SekonicUsbInit, LeavesReadingMethod0AsItIs)
{
    library.readingMethod[0] = 0;
    EXPECT_EQ(InitReaderSR(reader), True);
    EXPECT_THAT(library.calls, Not(Contains(::testing::StartsWith("OMR_SetReadingMethod"))));
}

TEST_F(SekonicUsbInit, SetsReadingMethod3WithTheSecondValueThatTheReaderTold)
{
    for (const Int32 method : {1, 2, 4, -3}) {
        library.calls.clear();
        library.readingMethod[0] = method;
        library.readingMethod[1] = 70000 + method;
        EXPECT_EQ(InitReaderSR(reader), True);
        EXPECT_EQ(library.calls[2], "OMR_SetReadingMethod 3 " + std::to_string(70000 + method));
    }
}

TEST_F(SekonicUsbInit, Sets48ColumnsWhereTheReaderTellsAnotherNumber)
{
    library.columns = 40;
    EXPECT_EQ(InitReaderSR(reader), True);
    EXPECT_EQ(library.calls[3], "OMR_SetNumberOfColumnsToRead 48");
}

TEST_F(SekonicUsbInit, SwitchesTheBackSensorOnForTwoSidedFormsOnly)
{
    for (const Boolean duplex : {False, True}) {
        for (const Boolean form : {False, True}) {
            library.calls.clear();
            reader.settings().Duplex = duplex;
            reader.settings().DuplexForm = form;
            EXPECT_EQ(InitReaderSR(reader), True);
            EXPECT_EQ(library.calls[3], duplex && form ? "OMR_SetBackSensorUnit 1" : "OMR_SetBackSensorUnit 0");
        }
    }
}

TEST_F(SekonicUsbInit, DoesNotLookAtTheBackSensorsResult)
{
    library.results["OMR_SetBackSensorUnit"] = {0};
    EXPECT_EQ(InitReaderSR(reader), True);
}

TEST_F(SekonicUsbInit, SetsFeedMode0WhereTheReaderTellsAnother)
{
    library.feedMode[0] = 2;
    library.feedMode[1] = 5;
    EXPECT_EQ(InitReaderSR(reader), True);
    EXPECT_EQ(library.calls.back(), "OMR_SetSheetFeedMode 0 0");
}

TEST_F(SekonicUsbInit, TakesAnyOpenResultBut0ForAFailure)
{
    for (const Int32 result : {1, -1, 0x40110000}) {
        library.calls.clear();
        library.results["OMR_OpenDeviceUSB"] = {result};
        errors->reports.clear();
        EXPECT_EQ(InitReaderSR(reader), False);
        // The last error is fetched, and nothing is done with it.
        EXPECT_THAT(library.calls, ElementsAre("OMR_OpenDeviceUSB", "OMR_GetLastError"));
        expectFault(476, kInitTitle, "InitReaderSR");
    }
}

struct RefusedStep {
    const char* function;
    TextNumber message;
};

class SekonicUsbRefusal : public UsbReaderTest, public ::testing::WithParamInterface<RefusedStep> {};

TEST_P(SekonicUsbRefusal, EndsTheStart)
{
    library.readingMethod[0] = 1;
    library.columns = 47;
    library.feedMode[0] = 1;
    library.results[GetParam().function] = {0};
    EXPECT_EQ(InitReaderSR(reader), False);
    EXPECT_TRUE(library.calls.back().starts_with(GetParam().function)) << library.calls.back();
    EXPECT_THAT(library.calls, Not(Contains("OMR_GetLastError")));
    expectFault(GetParam().message, kInitTitle, "InitReaderSR");
}

INSTANTIATE_TEST_SUITE_P(Steps, SekonicUsbRefusal,
                         ::testing::Values(RefusedStep{"OMR_GetReadingMethod", 478},
                                           RefusedStep{"OMR_SetReadingMethod", 480},
                                           RefusedStep{"OMR_SetNumberOfColumnsToRead", 482},
                                           RefusedStep{"OMR_GetSheetFeedMode", 484},
                                           RefusedStep{"OMR_SetSheetFeedMode", 486}),
                         [](const auto& step) { return std::string(step.param.function); });

TEST_F(SekonicUsbInit, ToldMessagesAreDifferentTexts)
{
    // The other tests compare with texts by number, so these must really be there.
    std::set<std::string> texts;
    for (const Int32 number : {376, 476, 478, 480, 482, 484, 486, 488, 490, 492, 494, 496, 196, 554, 556})
        texts.insert(VBLM_RTString(number));
    EXPECT_EQ(texts.size(), 15U);
    EXPECT_THAT(texts, Not(Contains("")));
}

TEST_F(SekonicUsbInit, SetsTheBarcodeUnitUpLastAndIgnoresHowThatWent)
{
    addZone(100, 50);
    library.feedMode[0] = 1;
    library.barcodeUnit = -1;
    EXPECT_EQ(InitReaderSR(reader), True);
    const auto last = library.calls.size();
    EXPECT_EQ(library.calls[last - 2], "OMR_SetSheetFeedMode 0 0");
    EXPECT_EQ(library.calls[last - 1], "OMR_GetBarcodeReaderUnit");
    EXPECT_THAT(reports(), IsEmpty());
}

TEST_F(SekonicUsbInit, LeavesTheBarcodeUnitAloneWithoutZones)
{
    reader.settings().Barcode = True;
    EXPECT_EQ(InitReaderSR(reader), True);
    EXPECT_THAT(library.calls, Not(Contains(::testing::HasSubstr("Barcode"))));
}

TEST_F(SekonicUsbInit, LeavesTheBarcodeUnitAloneWhenNoBarcodesAreWanted)
{
    addZone(100, 50);
    reader.settings().Barcode = False;
    EXPECT_EQ(InitReaderSR(reader), True);
    EXPECT_THAT(library.calls, Not(Contains(::testing::HasSubstr("Barcode"))));
}

TEST_F(SekonicUsbInit, GoesOnWhenTheBarcodeUnitFailsAtRunTime)
{
    addZone(100, 50);
    library.failures.insert({"OMR_GetBarcodeReaderUnit", RuntimeFailure(453, "Can't find it")});
    EXPECT_EQ(InitReaderSR(reader), True);
    expectRuntimeFailure(453, "InitBarcodeSR");
}

TEST_F(SekonicUsbInit, TellsAMissingLibraryInABoxOfItsOwn)
{
    library.failures.insert(
        {"OMR_OpenDeviceUSB", RuntimeFailure(FailureCode::FileNotFound, "File not found: OMRAPI.DLL")});
    EXPECT_EQ(InitReaderSR(reader), False);
    EXPECT_THAT(reports(), IsEmpty());
    EXPECT_THAT(machine.screen().boxes(),
                ElementsAre(ShownBox{VBLM_RTString(488) + "\r\n\r\n" + VBLM_RTString(490), BoxIcon::Exclamation,
                                     BoxButtons::Ok, VBLM_RTString(492)}));
}

TEST_F(SekonicUsbInit, SaysWhichWidthTheLibraryMustHave)
{
    library.failures.insert(
        {"OMR_OpenDeviceUSB", RuntimeFailure(FailureCode::FileNotFound, "File not found: OMRAPI.DLL")});
    machine.omrApiLoader().widthNeeded(64);
    EXPECT_EQ(InitReaderSR(reader), False);
    ASSERT_EQ(machine.screen().boxes().size(), 1U);
    const std::string width = replaceAll(VBLM_RTString(558), "%1", "64");
    EXPECT_THAT(width, ::testing::HasSubstr("64"));
    EXPECT_EQ(machine.screen().boxes()[0].text,
              VBLM_RTString(488) + "\r\n\r\n" + VBLM_RTString(490) + "\r\n\r\n" + width);
    EXPECT_THAT(reports(), IsEmpty());
}

TEST_F(SekonicUsbInit, ReportsAnyOtherFailureInTheCommonWay)
{
    const RuntimeFailure failures[] = {
        {FailureCode::FileNotFound, "File not found: OTHER.DLL"},
        {453, "Can't find DLL entry point OMR_OpenDeviceUSB in OMRAPI.DLL"},
        {48, "Error in loading DLL OMRAPI.DLL"},
    };
    for (const RuntimeFailure& failure : failures) {
        library.failures.clear();
        library.failures.insert({"OMR_OpenDeviceUSB", failure});
        errors->reports.clear();
        EXPECT_EQ(InitReaderSR(reader), False);
        expectRuntimeFailure(failure.number(), "InitReaderSR");
        EXPECT_EQ(reports().at(0).ErrorDescription, failure.text());
        EXPECT_THAT(machine.screen().boxes(), IsEmpty());
    }
}

TEST_F(SekonicUsbInit, FailsWhereZonesAreAskedForAndThereIsNoCollection)
{
    reader.settings().Barcode = True;
    reader.Barcodes(nullptr);
    EXPECT_EQ(InitReaderSR(reader), False);
    expectRuntimeFailure(91, "InitReaderSR");
}

class SekonicUsbBarcodeUnit : public UsbReaderTest {};

TEST_F(SekonicUsbBarcodeUnit, IsMissing)
{
    library.barcodeUnit = -1;
    EXPECT_EQ(InitBarcodeSR(), False);
    EXPECT_THAT(library.calls, ElementsAre("OMR_GetBarcodeReaderUnit"));
}

TEST_F(SekonicUsbBarcodeUnit, IsOn)
{
    for (const Int32 unit : {1, 2, -2}) {
        library.calls.clear();
        library.barcodeUnit = unit;
        EXPECT_EQ(InitBarcodeSR(), True);
        EXPECT_THAT(library.calls, ElementsAre("OMR_GetBarcodeReaderUnit"));
    }
}

TEST_F(SekonicUsbBarcodeUnit, IsSwitchedOn)
{
    library.barcodeUnit = 0;
    library.results["OMR_SetBarcodeReaderUnit"] = {1, -1, 0};
    EXPECT_EQ(InitBarcodeSR(), True);
    EXPECT_EQ(InitBarcodeSR(), True);
    EXPECT_EQ(InitBarcodeSR(), False);
    EXPECT_EQ(library.calls[1], "OMR_SetBarcodeReaderUnit 1");
    EXPECT_THAT(reports(), IsEmpty());
}

class SekonicUsbClose : public UsbReaderTest {};

TEST_F(SekonicUsbClose, SucceedsWhateverTheLibraryAnswers)
{
    library.results["OMR_CloseDevice"] = {0, 1, -1};
    EXPECT_EQ(CloseReaderSR(), True);
    EXPECT_EQ(CloseReaderSR(), True);
    EXPECT_EQ(CloseReaderSR(), True);
    EXPECT_THAT(library.calls, ElementsAre("OMR_CloseDevice", "OMR_CloseDevice", "OMR_CloseDevice"));
}

TEST_F(SekonicUsbClose, ReportsAMissingLibraryInTheCommonWay)
{
    library.failures.insert(
        {"OMR_CloseDevice", RuntimeFailure(FailureCode::FileNotFound, "File not found: OMRAPI.DLL")});
    EXPECT_EQ(CloseReaderSR(), False);
    expectRuntimeFailure(53, "CloseReaderSR");
    EXPECT_EQ(reports().at(0).ErrorDescription, "File not found: OMRAPI.DLL");
    EXPECT_THAT(machine.screen().boxes(), IsEmpty());
}

class SekonicUsbOutlet : public UsbReaderTest {};

TEST_F(SekonicUsbOutlet, SaysWhereTheSheetGoesAndWhetherTheReaderGoesOn)
{
    const struct {
        Boolean rejecter, cancel;
        const char *reject, *eject;
    } rows[] = {
        {True, True, "OMR_EjectSheet 2", "OMR_EjectSheet 1"},
        {True, False, "OMR_EjectSheet 4", "OMR_EjectSheet 3"},
        {False, True, "OMR_EjectSheet 1", "OMR_EjectSheet 1"},
        {False, False, "OMR_EjectSheet 3", "OMR_EjectSheet 3"},
    };
    for (const auto& row : rows) {
        library.calls.clear();
        reader.settings().Rejecter = row.rejecter;
        reader.CancelScan(row.cancel);
        EXPECT_EQ(RejectPageSR(reader), True);
        EXPECT_EQ(EjectPageSR(reader), True);
        EXPECT_THAT(library.calls, ElementsAre(row.reject, row.eject));
    }
}

TEST_F(SekonicUsbOutlet, SucceedsOnlyWithResult1)
{
    for (const Int32 result : {0, -1, 2}) {
        library.results["OMR_EjectSheet"] = {result, result};
        EXPECT_EQ(RejectPageSR(reader), False);
        EXPECT_EQ(EjectPageSR(reader), False);
    }
    EXPECT_THAT(reports(), IsEmpty());
}

TEST_F(SekonicUsbOutlet, ReportsEjectAndRejectUnderTheSameSource)
{
    library.failures.insert({"OMR_EjectSheet", RuntimeFailure(453, "Can't find it")});
    EXPECT_EQ(RejectPageSR(reader), False);
    expectRuntimeFailure(453, "RejectPageSR");
    errors->reports.clear();
    EXPECT_EQ(EjectPageSR(reader), False);
    expectRuntimeFailure(453, "RejectPageSR");
}

class SekonicUsbError : public UsbReaderTest {};

TEST_F(SekonicUsbError, IsReportedUnderItsHexadecimalDigits)
{
    ReturnErrorSR(0x40120003);
    ASSERT_EQ(reports().size(), 1U);
    const ErrorReport& report = reports()[0];
    EXPECT_EQ(report.LineNumber, 0);
    EXPECT_EQ(report.ErrorNumber, 40120003);
    EXPECT_EQ(report.ErrorType, 1);
    EXPECT_EQ(report.ErrorDescription, VBLM_RTString(542));
    EXPECT_EQ(report.ErrorSource, "basSekonicSR.ReturnErrorSR");
    EXPECT_EQ(report.ErrorTitle, VBLM_RTString(556));
    EXPECT_EQ(report.ButtonDefault, 1);
    EXPECT_EQ(report.ShowHelp, True);
    EXPECT_THAT(library.calls, IsEmpty());
}

TEST_F(SekonicUsbError, OfAnUnknownCodeHasTheCommonText)
{
    ReturnErrorSR(0x4F110000);
    ASSERT_EQ(reports().size(), 1U);
    EXPECT_EQ(reports()[0].ErrorNumber, 4);
    EXPECT_EQ(reports()[0].ErrorDescription, VBLM_RTString(554));
}

} // namespace
} // namespace kel::sekonic_usb_test
