// SPDX-License-Identifier: MIT
// A host may change any setting while a wait lets it run, and so may its carrier while it is being used: a driver takes
// each one where the dialogue needs it, neither earlier nor twice.

#include "tests/failure/GuardTest.h"

#include "contract/Dictionary.h"
#include "dispatch/basRead.h"
#include "drivers/apperson/basApperson.h"
#include "drivers/chatsworth/basChatsworth.h"
#include "drivers/ezdata/basNCSEZData.h"
#include "drivers/ncs/basNCS.h"
#include "drivers/peripheral_dynamics/basPeripheralDynamics.h"
#include "drivers/scanning_systems/basScanningSystems.h"
#include "drivers/scantron/basScantron.h"

#include <gmock/gmock.h>

#include <utility>

namespace kel::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class LiveSettings : public testing::Test {
protected:
    /// Answers each command with what `answers` has for it, and lets the host act at once.
    void answer(std::function<void(std::string_view command)> answers) { bench.line->onOutput = std::move(answers); }

    [[nodiscard]] std::vector<std::string> told() const
    {
        std::vector<std::string> sources;
        for (const ErrorReport& report : bench.host->reports)
            sources.push_back(report.ErrorSource.substr(0, report.ErrorSource.find(',')) + " " +
                              std::to_string(report.ErrorNumber));
        return sources;
    }

    GuardBench bench;
    ReaderSession& reader = bench.reader;
    FailingLine& line = *bench.line;
};

constexpr const char* kSheetReady = " 0      \x01  \r";
constexpr const char* kNoSheet = " 0      \x20  \r";

TEST_F(LiveSettings, TheRejecterOfAScanmarkCountsOnceASheetIsThere)
{
    for (const bool atFirst : {true, false}) {
        reader.settings().Rejecter = atFirst;
        reader.settings().Feeder = False;
        reader.Side1Rows(pages({1}));
        reader.Side1Cols(pages({48}));
        line.sent.clear();
        int asked = 0;
        answer([&](std::string_view command) {
            if (command == "\x1BQSTS\r") {
                line.waiting = ++asked == 1 ? kNoSheet : kSheetReady;
                reader.settings().Rejecter = !atFirst;
            } else {
                line.waiting = "\r";
            }
        });
        EXPECT_EQ(ReadPageST(reader), True);
        EXPECT_THAT(told(), IsEmpty());
        EXPECT_EQ(line.sent,
                  std::string("\x1BQSTS\r\x1BQSTS\r\x1BREAD 5 Y") + (atFirst ? "\r" : " E\r") + "\x1BQSTS\r");
    }
}

TEST_F(LiveSettings, AScanmarksResetTakesBytesAndFailsWithoutOne)
{
    line.waiting = "\r";
    line.inputIsEmpty = true;
    EXPECT_EQ(ResetReaderST(reader), False);
    EXPECT_THAT(told(), ElementsAre("basScantron.ResetReaderST 9"));
}

TEST_F(LiveSettings, WhatAScanmarkSubtractsCountsByteByByte)
{
    reader.settings().Feeder = True;
    reader.Side1Rows(pages({1}));
    reader.Side1Cols(pages({48}));
    iRecognitionOffset = 48;
    answer([&](std::string_view command) { line.waiting = command == "\x1BQSTS\r" ? kSheetReady : "555\r"; });
    // A session with a reader of raw values begins within the transfer.
    bool began = false;
    line.onInput = [&] {
        if (line.waiting == "5\r" && !std::exchange(began, true))
            iRecognitionOffset = 0;
    };
    EXPECT_EQ(ReadPageST(reader), True);
    EXPECT_EQ(reader.side1()(1, 1), 5);
    EXPECT_EQ(reader.side1()(1, 2), 5);
    EXPECT_EQ(reader.side1()(1, 3), '5');
    iRecognitionOffset = 0;
}

TEST_F(LiveSettings, EachSideOfAScanmarksFormIsDefinedInTheModeOfItsMoment)
{
    reader.ReaderType(kelReaderTypeScantronScanMark2500);
    reader.settings().Duplex = True;
    reader.settings().DuplexForm = True;
    reader.settings().RecognitionMode = kelRecognitionTypePage;
    reader.Side1Rows(pages({2}));
    reader.Side1Cols(pages({3}));
    reader.Side2Rows(pages({4}));
    reader.Side2Cols(pages({5}));
    answer([&](std::string_view command) {
        line.waiting = "\r";
        if (command.starts_with("\x1B"
                                "FRM=DK 1"))
            reader.settings().RecognitionMode = kelRecognitionTypeWindow;
    });
    EXPECT_EQ(DownloadFormST(reader), True);
    EXPECT_EQ(line.sent, "\x1B"
                         "FRM=FS 2 4 3 N N N\r\x1B"
                         "FRM=DK 1 1 1 2 3 L 2 3\r\x1B"
                         "FRM=LS\r");
}

TEST_F(LiveSettings, TheRowsOfASekonicPageCountWhileTheyCome)
{
    reader.ReaderType(kelReaderTypeScanningSystemsSR601);
    reader.Side1Rows(pages({3}));
    reader.Side1Cols(pages({48}));
    answer([&](std::string_view) {
        line.waiting = "01\r02\r03\r";
        reader.Side1Rows(pages({1}));
    });
    EXPECT_EQ(ReadEntirePageSS(reader), True);
    EXPECT_EQ(reader.side1().rows(), 3) << "there is room for the rows that were asked for";
    EXPECT_EQ(reader.side1()(1, 1), 1);
    EXPECT_EQ(reader.side1()(2, 1), 0);
    EXPECT_EQ(line.waiting, "02\r03\r");
}

TEST_F(LiveSettings, TheModelOfASekonicNamesTheColumnsAsTheyCome)
{
    reader.ReaderType(kelReaderTypeScanningSystemsSR601);
    reader.Side1Rows(pages({1}));
    answer([&](std::string_view) {
        line.waiting = "01\r";
        reader.ReaderType(kelReaderTypeSekonicSR430);
    });
    EXPECT_EQ(ReadEntirePageSS(reader), True);
    EXPECT_EQ(reader.side1()(1, 10), 1);
}

/// An OpScan that sends a page when it is told to, and has nothing to complain of.
void sendPage(ReaderSession& reader, FailingLine& line, std::string page)
{
    reader.settings().Feeder = True;
    line.onOutput = [&line, page = std::move(page)](std::string_view command) {
        line.waiting = command == "\x11" ? page : std::string(5, '\0');
    };
}

TEST_F(LiveSettings, SideTwoOfAnOpScanIsStoredWhileTheSheetIsReadOnTwoSides)
{
    reader.settings().Duplex = True;
    reader.settings().DuplexForm = True;
    sendPage(reader, line, "b12345\r\n");
    line.onInput = [&] {
        if (!line.waiting.empty())
            reader.settings().DuplexForm = line.waiting[0] != '3' && line.waiting[0] != '4';
    };
    EXPECT_EQ(ReadPageNCS(reader), True);
    EXPECT_EQ(reader.side2()(1, 1), 1);
    EXPECT_EQ(reader.side2()(1, 2), 2);
    EXPECT_EQ(reader.side2()(1, 3), 5) << "positions that came in between are dropped";
    EXPECT_EQ(reader.Side2TimingMarks(), 1);
}

TEST_F(LiveSettings, TheTimingMarksOfAnOpScansSecondSideAreDecidedOnAtItsEnd)
{
    reader.settings().Duplex = True;
    reader.settings().DuplexForm = True;
    reader.Side2TimingMarks(-1);
    sendPage(reader, line, "b1\r\n");
    line.onInput = [&] { reader.settings().Duplex = line.waiting != "\r\n"; };
    EXPECT_EQ(ReadPageNCS(reader), True);
    EXPECT_EQ(reader.side2()(1, 1), 1);
    EXPECT_EQ(reader.Side2TimingMarks(), -1);
}

TEST_F(LiveSettings, ASheetOfAnOpScanThatBecomesOneOfTwoSidesHasNoRoomForThem)
{
    sendPage(reader, line, "b1\r\n");
    line.onInput = [&] {
        reader.settings().Duplex = True;
        reader.settings().DuplexForm = True;
    };
    EXPECT_EQ(ReadPageNCS(reader), False);
    EXPECT_THAT(told(), ElementsAre("basNCS.ReadPageNCS 9"));
}

TEST_F(LiveSettings, ThePortIsTakenAfterTheHandshaking)
{
    reader.Port(3);
    line.onHandshaking = [&] { reader.Port(5); };
    std::string sVersion;
    FirmwareVersionNCSEZ(reader, sVersion);
    EXPECT_EQ(line.CommPort(), 5);

    reader.ReaderType(kelReaderTypePDIVMR138);
    reader.Port(3);
    ReaderInit(reader);
    EXPECT_EQ(line.CommPort(), 5);
}

TEST_F(LiveSettings, WhetherAnAdvantageGradesIsAskedBehindTheByteThatEndsTheScore)
{
    reader.ReaderType(kelReaderTypeAppersonAdvantage1200);
    reader.Side1Rows(pages({1}));
    reader.Side1Cols(pages({5}));
    line.waiting = "00000000771---00250001,0000----,A,\r\n";
    line.onInput = [&] { reader.settings().ReaderGrade = line.waiting.starts_with("50001"); };
    std::vector<std::string> scores;
    bench.host->onTranslateData = [&](Dictionary& oData, MarkArray&, MarkArray&, TextArray&, Boolean&) {
        scores.push_back(itemText(oData.Item("Essay Score")));
    };
    EXPECT_EQ(ReadPageAPAdvantage1200(reader), True);
    EXPECT_THAT(scores, ElementsAre("0025"));
}

TEST_F(LiveSettings, TheModelOfAnAppersonCountsAtEachStepOfTheStart)
{
    reader.ReaderType(kelReaderTypeAppersonBenchMark3000);
    reader.settings().ReaderGrade = True;
    answer([&](std::string_view command) {
        line.waiting = "OK";
        if (command == "M0") {
            reader.settings().ReaderGrade = False;
            reader.ReaderType(kelReaderTypeAppersonGradeMaster);
        }
    });
    EXPECT_EQ(InitReaderAP(reader), True);
    EXPECT_EQ(line.sent, "R1I1A9R6S1M0A1\rS8\rM3\r");
}

TEST_F(LiveSettings, AnAppersonsReplyIsTakenByteByByteAndFailsWithoutOne)
{
    reader.ReaderType(kelReaderTypeAppersonAdvantageLink);
    line.waiting = "OK";
    line.inputIsEmpty = true;
    EXPECT_EQ(InitReaderAP(reader), False);
    EXPECT_EQ(CloseReaderAP(reader), False);
    EXPECT_EQ(ReadPageAP(reader), False);
    EXPECT_THAT(told(), ElementsAre("basApperson.InitReaderAP 9", "basApperson.CloseReaderAP 9",
                                    "basApperson.ReadPageAPAdvantageLink 9"));
}

TEST_F(LiveSettings, TheModelOfAChatsworthDecidesWhileItsSheetComes)
{
    // This model does not look at the stop flag while it reads; the one that the host chooses meanwhile does.
    reader.ReaderType(kelReaderTypeChatsworthOMR2000);
    answer([&](std::string_view) {
        line.waiting = " ";
        reader.CancelScan(True);
    });
    line.onInput = [&] { reader.ReaderType(kelReaderTypeChatsworthOMR1100); };
    EXPECT_EQ(ReadPageCT(reader), False);
    EXPECT_THAT(told(), IsEmpty());
    EXPECT_EQ(line.waiting, "");
}

TEST_F(LiveSettings, TheStepsOfAVmr138sThresholdAreCountedIn16Bits)
{
    // The reader is at 200.
    answer([&](std::string_view) {
        if (line.sent == "+")
            line.waiting = "C8";
    });
    line.InputLen(1);
    reader.settings().RecognitionThreshold = 200 - 32767;
    EXPECT_EQ(SetRecThresholdPD(reader, 0), True);
    EXPECT_TRUE(line.sent == std::string(32768, '+')) << line.sent.size();
    EXPECT_THAT(told(), IsEmpty());

    line.sent.clear();
    reader.settings().RecognitionThreshold = 200 - 32768;
    EXPECT_EQ(SetRecThresholdPD(reader, 0), False);
    EXPECT_EQ(line.sent, "+");
    EXPECT_THAT(told(), ElementsAre("basPeripheralDynamics.SetRecThresholdPD 6"));
}

} // namespace
} // namespace kel::test
