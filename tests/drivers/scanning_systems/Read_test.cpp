// SPDX-License-Identifier: MIT
#include "SerialReaderTest.h"

#include "types/Text.h"

namespace kel::scanning_systems_test {
namespace {

const std::string kStatus = "?\r";
const std::string kMarks1 = "\x05T\r";
const std::string kMarks2 = "/\x05T\r";
const std::string kBarcode = "\x13"
                             "BA05\r";
const std::string kWindows1 = "\x10R*\r";
const std::string kWindows2 = "/\x10R*\r";

std::string page(const std::string& rows)
{
    return "\x10"
           "ED001" +
           rows + "\r";
}

class ReadSS : public SerialReaderTest {
protected:
    void SetUp() override
    {
        SerialReaderTest::SetUp();
        formOf(3, 6);
    }

    MarkArray marks(Int32 columns, std::initializer_list<std::array<int, 3>> cells)
    {
        MarkArray result(3, columns);
        for (const auto& [row, column, value] : cells)
            result(row, column) = static_cast<Int16>(value);
        return result;
    }
};

TEST_F(ReadSS, ASheetIsStatusTimingMarksAndMarks)
{
    device.on(kStatus, "0").on(kMarks1, "0639").on(page("003"), "01\r\r12\r");
    EXPECT_TRUE(ReadPageSS(reader));
    EXPECT_EQ(reader.Side1TimingMarks(), 63);
    EXPECT_EQ(reader.Side2TimingMarks(), -1);
    EXPECT_EQ(reader.BarcodeArray(), TextArray(0, 0));
    EXPECT_EQ(reader.side1(), marks(48, {{1, 1, 1}, {3, 2, 2}}));
    EXPECT_FALSE(reader.side2().isDimensioned());
    EXPECT_TRUE(reports().empty());
}

TEST_F(ReadSS, WhatCameBeforeIsDropped)
{
    makeDuplex();
    for (const Int32 inputLen : {1, 0}) {
        reader.fComm().mscComm().InputLen(inputLen);
        leaveBehind("x0");
        device.on(kStatus, "0").on(kMarks1);
        device.on(page("003"), "\r\r\r").on("/" + page("003"), "\r\r\r");
        EXPECT_TRUE(ReadPageSS(reader)) << inputLen;
    }
    reader.settings().Duplex = False;
    leaveBehind("9?");
    device.on(page("003"), "\r\r\r");
    EXPECT_TRUE(ReadEntirePageSS(reader));
    EXPECT_EQ(reader.side1(), marks(48, {}));
    addWindow(1, 1, 1, 1);
    leaveBehind("13,");
    device.on(kWindows1, "12,");
    EXPECT_TRUE(ReadWindowsSS(reader));
    EXPECT_EQ(reader.side1(), marks(6, {{1, 1, 2}}));
}

TEST_F(ReadSS, WhatComesBetweenTheSidesIsDropped)
{
    makeDuplex();
    addWindow(1, 1, 2, 1);
    addWindow(2, 1, 1, 1);
    // The rest of side 1 comes while the host shows the report of the part.
    errors->onReport = [&] { machine.pump().Sleep(20); };
    machine.pump().hostPump([] {});
    device.on(kWindows1, "12,").then(std::chrono::milliseconds(kPause + 10), "13,").on(kWindows2, "14,");
    EXPECT_TRUE(ReadWindowsSS(reader));
    expectOneFailure(5, "AddToArraySS");
    EXPECT_EQ(reader.side2(), marks(6, {{1, 1, 4}}));
}

TEST_F(ReadSS, ThePrinterIsSetUpWhenItIsPreparedAndActive)
{
    reader.Printer()->Enabled(True);
    const auto readsWith = [&](Boolean bPrepared, Boolean bActive) {
        preparePrinter(bPrepared);
        reader.Printer()->Active(bActive);
        device.on(kStatus, "0").on(kMarks1, "1").on(page("003"), "\r\r\r");
        return ReadPageSS(reader);
    };
    EXPECT_TRUE(readsWith(False, False));
    EXPECT_TRUE(readsWith(True, False));
    EXPECT_TRUE(readsWith(False, True));
    device
        .on("\x13"
            "P10\r")
        .on("\x13"
            "P3100\r");
    EXPECT_TRUE(readsWith(True, True));
}

TEST_F(ReadSS, WithoutAPrinterObjectTheReadFails)
{
    reader.Printer(nullptr);
    EXPECT_FALSE(ReadPageSS(reader));
    expectOneFailure(91, "ReadPageSS");
}

TEST_F(ReadSS, SilenceAtTheStatusEndsTheRead)
{
    device.on(kStatus);
    EXPECT_FALSE(ReadPageSS(reader));
    expectOneFault(426, 184, "SendCommandSS");
}

TEST_F(ReadSS, ABadStatusOfSide1EndsTheReadWithItsReport)
{
    device.on(kStatus, "01");
    EXPECT_FALSE(ReadPageSS(reader));
    ASSERT_EQ(reports().size(), 1U);
    expectFault(0, VBLM_RTString(TextNumber(398)), "Scanner Error", "ReturnErrorSS");
}

TEST_F(ReadSS, ABadStatusOfSide2CountsOnlyWhenItIsRead)
{
    device.on(kStatus, "10").on(kMarks1, "1").on(page("003"), "\r\r\r");
    EXPECT_TRUE(ReadPageSS(reader));
    makeDuplex();
    device.on(kStatus, "20");
    EXPECT_FALSE(ReadPageSS(reader));
    ASSERT_EQ(reports().size(), 1U);
    expectFault(0, VBLM_RTString(TextNumber(404)), "Scanner Error", "ReturnErrorSS");
}

TEST_F(ReadSS, AStatusByteOfThreeDigitsIsCutAndSilent)
{
    reader.ReaderType(kelReaderTypeSekonicSR430);
    device.on(kStatus, "p");
    EXPECT_FALSE(ReadPageSS(reader));
    EXPECT_TRUE(reports().empty());
}

TEST_F(ReadSS, TimingMarksWithoutAnswerStayUncountedAndSide2IsNotAsked)
{
    makeDuplex();
    device.on(kStatus, "00").on(kMarks1).on(page("003"), "\r\r\r").on("/" + page("003"), "\r\r\r");
    EXPECT_TRUE(ReadPageSS(reader));
    EXPECT_EQ(reader.Side1TimingMarks(), -1);
    EXPECT_EQ(reader.Side2TimingMarks(), -1);
    expectOneFault(426, 184, "SendCommandSS");
}

TEST_F(ReadSS, TimingMarksOfSide2WithoutAnswerStayUncounted)
{
    makeDuplex();
    device.on(kStatus, "00").on(kMarks1, "61").on(kMarks2).on(page("003"), "\r\r\r").on("/" + page("003"), "\r\r\r");
    EXPECT_TRUE(ReadPageSS(reader));
    EXPECT_EQ(reader.Side1TimingMarks(), 61);
    EXPECT_EQ(reader.Side2TimingMarks(), -1);
}

TEST_F(ReadSS, ABarcodeIsSetUpBeforeTheSheetAndFetchedBehindIt)
{
    addZone(40);
    device
        .on("\x13"
            "BA00\r")
        .on("\x13"
            "BA01\r")
        .on("\x13"
            "BA1099940\r")
        .on(kStatus, "0")
        .on(kMarks1, "1");
    device.on(kBarcode, "*AB").then(std::chrono::milliseconds(kPause), "C*").on(page("003"), "\r\r\r");
    EXPECT_TRUE(ReadPageSS(reader));
    EXPECT_EQ(reader.BarcodeArray(), TextArray::of(1, {"ABC"}));
    // Set-up twice, status, timing marks, barcode, end of the page.
    EXPECT_EQ(pauses(), std::vector<Int32>(6, kPause));
}

TEST_F(ReadSS, ABarcodeThatWasNotReadIsAQuestionMark)
{
    addZone(40);
    device
        .on("\x13"
            "BA00\r")
        .on("\x13"
            "BA01\r")
        .on("\x13"
            "BA1099940\r")
        .on(kStatus, "0")
        .on(kMarks1, "1");
    device.on(kBarcode, "?xx").on(page("003"), "\r\r\r");
    EXPECT_TRUE(ReadPageSS(reader));
    EXPECT_EQ(reader.BarcodeArray(), TextArray::of(1, {"?"}));
}

TEST_F(ReadSS, ABarcodeOfOneCharacterFailsTheReadAndStoresNothing)
{
    addZone(40);
    device
        .on("\x13"
            "BA00\r")
        .on("\x13"
            "BA01\r")
        .on("\x13"
            "BA1099940\r")
        .on(kStatus, "0")
        .on(kMarks1, "1");
    device.on(kBarcode, "*");
    EXPECT_FALSE(ReadPageSS(reader));
    expectOneFailure(5, "ReadPageSS");
    EXPECT_FALSE(reader.BarcodeArray().isDimensioned());
}

TEST_F(ReadSS, ABarcodeThatDoesNotComeIsReportedWhateverTheStopFlagSays)
{
    addZone(40);
    device
        .on("\x13"
            "BA00\r")
        .on("\x13"
            "BA01\r")
        .on("\x13"
            "BA1099940\r")
        .on(kStatus, "0")
        .on(kMarks1, "1");
    device.on(kBarcode);
    machine.at(5s, [&] { reader.CancelScan(True); });
    EXPECT_FALSE(ReadPageSS(reader));
    expectOneFault(380, 196, "ReadPageSS");
}

TEST_F(ReadSS, ZonesWithoutTheBarcodeSettingAreLeftAlone)
{
    addZone(40);
    reader.settings().Barcode = False;
    device.on(kStatus, "0").on(kMarks1, "1").on(page("003"), "\r\r\r");
    EXPECT_TRUE(ReadPageSS(reader));
}

TEST_F(ReadSS, APageHasItsRowsInThreeDigits)
{
    for (const auto& [rows, text] :
         {std::pair<Int16, const char*>{7, "007"}, {63, "063"}, {120, "120"}, {1000, "1000"}}) {
        formOf(rows, 6);
        device.on(page(text), "01\r");
        EXPECT_TRUE(ReadEntirePageSS(reader));
        EXPECT_EQ(reader.side1().rows(), rows);
        EXPECT_EQ(reader.side1().columns(), 48);
    }
}

TEST_F(ReadSS, APageEndsWhenNothingHasComeForOnePause)
{
    device.on(page("003"), "01\r")
        .then(std::chrono::milliseconds(kPause), "12\r")
        .then(std::chrono::milliseconds(kPause + 1), "2");
    EXPECT_TRUE(ReadEntirePageSS(reader));
    EXPECT_EQ(reader.side1(), marks(48, {{1, 1, 1}, {2, 2, 2}}));
    EXPECT_TRUE(reports().empty());
}

TEST_F(ReadSS, APageMayPauseWithinEveryElement)
{
    const Moment pause = std::chrono::milliseconds(kPause);
    device.on(page("003"), " ").then(pause, "0").then(pause, "1").then(pause, "\r").then(pause, " ").then(pause, "\r");
    EXPECT_TRUE(ReadEntirePageSS(reader));
    EXPECT_EQ(reader.side1(), marks(48, {{1, 1, 1}}));
    EXPECT_EQ(pauses().size(), 6U);
}

TEST_F(ReadSS, APageEndsBehindItsLastRow)
{
    device.on(page("003"), "\r\r\r01\r");
    EXPECT_TRUE(ReadEntirePageSS(reader));
    EXPECT_EQ(reader.side1(), marks(48, {}));
    EXPECT_EQ(reader.fComm().mscComm().InBufferCount(), 3);
    EXPECT_TRUE(pauses().empty());
}

TEST_F(ReadSS, APageThatStopsWithinAnElementFails)
{
    for (const char* reply : {" ", "0", "01\r ", "01\r 1"}) {
        device.on(page("003"), reply);
        EXPECT_FALSE(ReadEntirePageSS(reader));
        expectOneFailure(9, "ReadEntirePageSS");
        errors->reports.clear();
    }
    EXPECT_FALSE(reader.side1().isDimensioned());
}

TEST_F(ReadSS, APageThatDoesNotComeIsReportedWhateverTheStopFlagSays)
{
    reader.CancelScan(True);
    device.on(page("003"));
    EXPECT_FALSE(ReadEntirePageSS(reader));
    expectOneFault(380, 196, "ReadEntirePageSS");
    EXPECT_EQ(machine.now(), kTimeout);
}

TEST_F(ReadSS, AFormWithoutRowsFails)
{
    formOf(0, 6);
    EXPECT_FALSE(ReadEntirePageSS(reader));
    expectOneFailure(9, "ReadEntirePageSS");
}

TEST_F(ReadSS, BothSidesOfAPageAreStoredTogether)
{
    makeDuplex();
    device.on(page("003"), "01\r\r\rtail").on("/" + page("003"), "12\r\r\r");
    EXPECT_TRUE(ReadEntirePageSS(reader));
    EXPECT_EQ(reader.side1(), marks(48, {{1, 1, 1}}));
    EXPECT_EQ(reader.side2(), marks(48, {{1, 2, 2}}));
    device.on(page("003"), "23\r\r\r").on("/" + page("003"));
    EXPECT_FALSE(ReadEntirePageSS(reader));
    expectOneFault(380, 196, "ReadEntirePageSS");
    EXPECT_EQ(reader.side1(), marks(48, {{1, 1, 1}})) << "the sheet before";
}

TEST_F(ReadSS, OneSideAloneIsReadUnlessReaderAndFormHaveTwo)
{
    reader.settings().Duplex = True;
    device.on(page("003"), "\r\r\r");
    EXPECT_TRUE(ReadEntirePageSS(reader));
    reader.settings().Duplex = False;
    reader.settings().DuplexForm = True;
    device.on(page("003"), "\r\r\r");
    EXPECT_TRUE(ReadEntirePageSS(reader));
}

TEST_F(ReadSS, AWrongColumnOfTheSR430IsReportedAndTheReadGoesOn)
{
    reader.ReaderType(kelReaderTypeSekonicSR430);
    device.on(page("003"), "81:5\r\rC2<3\r");
    EXPECT_TRUE(ReadEntirePageSS(reader));
    EXPECT_EQ(reports().size(), 2U);
    expectFault(0, VBLM_RTString(TextNumber(382)), VBLM_RTString(TextNumber(196)), "ReadEntirePageSS");
    EXPECT_EQ(reader.side1(), marks(48, {{1, 2, 5}, {3, 15, 3}}));
}

TEST_F(ReadSS, TheBackOfTheSR430IsNamedUpwards)
{
    reader.ReaderType(kelReaderTypeSekonicSR430);
    makeDuplex();
    device.on(page("003"), "91\r\r\r").on("/" + page("003"), "91:2\r\r\r");
    EXPECT_TRUE(ReadEntirePageSS(reader));
    EXPECT_EQ(reader.side1(), marks(48, {{1, 1, 1}}));
    EXPECT_EQ(reader.side2(), marks(48, {{1, 10, 1}, {1, 11, 2}}));
    EXPECT_TRUE(reports().empty());
}

TEST_F(ReadSS, WindowsFillTheirCells)
{
    reader.settings().RecognitionMode = kelRecognitionTypeWindow;
    addWindow(1, 1, 2, 2);
    addWindow(2, 3, 1, 1);
    makeDuplex();
    device.on(kStatus, "00").on(kMarks1, "1").on(kMarks2, "2");
    device.on(kWindows1, "12,").then(std::chrono::milliseconds(kPause), "  ,\r").on(kWindows2, "3444,\r");
    EXPECT_TRUE(ReadPageSS(reader));
    EXPECT_EQ(reader.side1(), marks(6, {{1, 2, 2}}));
    EXPECT_EQ(reader.side2(), marks(6, {{3, 3, 4}, {3, 4, 4}}));
    EXPECT_EQ(reader.Side2TimingMarks(), 2);
    EXPECT_TRUE(reports().empty());
}

TEST_F(ReadSS, TheHostRunsBetweenTheBytesOfTheWindows)
{
    addWindow(1, 1, 1, 1);
    device.on(kWindows1, "12,\r,\r,\r", 0ms);
    const std::uint64_t turns = machine.pump().turns();
    EXPECT_TRUE(ReadWindowsSS(reader));
    EXPECT_EQ(machine.pump().turns() - turns, 8U);
}

TEST_F(ReadSS, WindowsThatDoNotComeAreReported)
{
    addWindow(1, 1, 2, 2);
    reader.CancelScan(True);
    device.on(kWindows1);
    EXPECT_FALSE(ReadWindowsSS(reader));
    expectOneFault(380, 196, "ReadWindowsSS");
    EXPECT_FALSE(reader.side1().isDimensioned());
    makeDuplex();
    device.on(kWindows1, "11,  ,\r").on(kWindows2);
    EXPECT_FALSE(ReadWindowsSS(reader));
    expectFault(1, VBLM_RTString(TextNumber(380)), VBLM_RTString(TextNumber(196)), "ReadWindowsSS");
    EXPECT_FALSE(reader.side1().isDimensioned());
}

TEST_F(ReadSS, AReplyThatDoesNotFitTheWindowsIsReportedAndTheReadIsGood)
{
    addWindow(1, 1, 2, 2);
    device.on(kWindows1, "12,2");
    EXPECT_TRUE(ReadWindowsSS(reader));
    expectOneFailure(5, "AddToArraySS");
    EXPECT_EQ(reader.side1(), marks(6, {{1, 2, 2}}));
}

TEST_F(ReadSS, WithoutWindowsTheArraysStayEmpty)
{
    device.on(kWindows1, "11,");
    EXPECT_TRUE(ReadWindowsSS(reader));
    expectOneFailure(91, "AddToArraySS");
    EXPECT_EQ(reader.side1(), marks(6, {}));
}

TEST_F(ReadSS, WindowsNeedColumns)
{
    formOf(3, 0);
    EXPECT_FALSE(ReadWindowsSS(reader));
    expectOneFailure(9, "ReadWindowsSS");
}

} // namespace
} // namespace kel::scanning_systems_test
