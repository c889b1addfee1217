// SPDX-License-Identifier: MIT
#include "simulators/SimulatorTable.h"
#include "tests/support/ReaderHost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kel::test {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr Int16 kMarked = 241; // the model's threshold of 240, plus 1

SimulatedSheet sheetWithMark(Int32 row, Int32 column)
{
    SimulatedSheet sheet;
    sheet.side1.assign(5, std::vector<Int16>(12, 0));
    sheet.side1[static_cast<std::size_t>(row - 1)][static_cast<std::size_t>(column - 1)] = 1;
    return sheet;
}

/// A session with a VMR138 on port 1, loaded with sheets whose first mark tells them apart.
class ReaderSessionTest : public testing::Test {
protected:
    void load(int sheets)
    {
        SimulatorOptions options;
        for (int i = 1; i <= sheets; ++i)
            options.sheets.put(sheetWithMark(1, i));
        device = makeSimulator(kelReaderTypePDIVMR138, std::move(options));
        host.connect(kelReaderTypePDIVMR138, *device);
    }

    void TearDown() override
    {
        if (device) {
            EXPECT_THAT(device->errors(), IsEmpty());
        }
    }

    clsKELReader& reader() { return host.reader(); }

    std::unique_ptr<Simulator> device;
    ReaderHost host;
};

TEST_F(ReaderSessionTest, ANewObjectIsStoppedAndEmpty)
{
    EXPECT_EQ(reader().CancelScan(), True);
    EXPECT_EQ(reader().ReaderType(), kelReaderTypeNone);
    EXPECT_EQ(reader().Windows()->Count(), 0);
    EXPECT_EQ(reader().Barcodes()->Count(), 0);
    EXPECT_EQ(reader().Profiles()->Count(), kReaderTypeCount);
    EXPECT_EQ(reader().HelpID(kelReaderHelpIDProperties), 0);
    EXPECT_FALSE(reader().Side1Array().isDimensioned());
    EXPECT_FALSE(reader().Side2Array().isDimensioned());
    EXPECT_EQ(reader().Side1TimingMarks(), 0);
    EXPECT_EQ(reader().Timeout(), 0);
    EXPECT_TRUE(reader().AnswerKey().isNothing());
    EXPECT_EQ(reader().fComm()->tmrScan().Interval(), 10000);
    EXPECT_EQ(reader().fComm()->tmrScan().Enabled(), False);
    EXPECT_EQ(reader().fComm()->mscComm().PortOpen(), False);
}

TEST_F(ReaderSessionTest, AReadWithoutAStartRaisesBeforeSheetOnly)
{
    EXPECT_EQ(reader().ReadPage(False), False);
    EXPECT_THAT(host.heard().order, ElementsAre("BeforeSheet"));
}

TEST_F(ReaderSessionTest, AWholeSessionRunsInItsOrder)
{
    load(1);
    EXPECT_EQ(reader().StartReader(), True);
    EXPECT_EQ(reader().CancelScan(), False);
    EXPECT_EQ(reader().ReadPage(False), True);
    EXPECT_THAT(host.heard().order, ElementsAre("BeforeSheet", "ReadSheet", "AfterSheet"));
    ASSERT_EQ(host.heard().sheets.size(), 1U);
    EXPECT_EQ(host.heard().sheets[0].side1(1, 1), kMarked);
    EXPECT_EQ(reader().Side1TimingMarks(), 5);
    EXPECT_EQ(reader().Side2TimingMarks(), -1);
    EXPECT_EQ(host.heard().sheets[0].barcodes, TextArray::of(0, {""}));
    EXPECT_EQ(reader().EndReader(), False) << "the close step of this model counts as failed";
    EXPECT_EQ(reader().fComm()->mscComm().PortOpen(), False);
}

TEST_F(ReaderSessionTest, ABatchOfNoSheetsStartsAndEnds)
{
    load(1);
    Int32 lSheetCount = 0;
    EXPECT_EQ(reader().ReadBatch(False, 0, lSheetCount), True);
    EXPECT_THAT(host.heard().order, IsEmpty());
    EXPECT_EQ(reader().CancelScan(), False);
    EXPECT_EQ(lSheetCount, 0);
    EXPECT_EQ(reader().fComm()->mscComm().PortOpen(), False);
}

TEST_F(ReaderSessionTest, ABatchWithoutLimitReadsUntilItIsStopped)
{
    load(3);
    host.heard().onAfterSheet = [&](Boolean& bCancelScan) { bCancelScan = host.heard().sheets.size() == 3; };
    Int32 lSheetCount = 0;
    EXPECT_EQ(reader().ReadBatch(False, -1, lSheetCount), True);
    EXPECT_EQ(lSheetCount, 3);
    EXPECT_EQ(reader().CancelScan(), True);
    EXPECT_TRUE(host.sent().ends_with("4"
                                      "9"))
        << "the last sheet is sent out before the session ends";
}

TEST_F(ReaderSessionTest, ABatchThatHasItsSheetsAlreadyReadsNothing)
{
    load(1);
    Int32 lSheetCount = 5;
    EXPECT_EQ(reader().ReadBatch(False, 5, lSheetCount), True);
    EXPECT_EQ(lSheetCount, 5);
    EXPECT_EQ(reader().CancelScan(), True);
    EXPECT_THAT(host.heard().order, IsEmpty());
}

TEST_F(ReaderSessionTest, ABatchCountsOnFromWhatItIsGiven)
{
    load(3);
    Int32 lSheetCount = 3;
    EXPECT_EQ(reader().ReadBatch(False, 5, lSheetCount), True);
    EXPECT_EQ(lSheetCount, 5);
    EXPECT_EQ(host.heard().sheets.size(), 2U);
}

TEST_F(ReaderSessionTest, AfterABatchAtItsLimitAReadIsRefused)
{
    load(2);
    Int32 lSheetCount = 0;
    reader().ReadBatch(False, 1, lSheetCount);
    EXPECT_EQ(reader().CancelScan(), True);
    host.heard().order.clear();
    EXPECT_EQ(reader().ReadPage(False), False);
    EXPECT_THAT(host.heard().order, ElementsAre("BeforeSheet"));
}

TEST_F(ReaderSessionTest, AFailedPageCountsToo)
{
    load(0);
    device = makeSimulator(kelReaderTypePDIVMR138, {});
    host.machine.attach(1, *device);
    host.machine.at(60s, [&] { reader().CancelScan(True); });
    Int32 lSheetCount = 0;
    EXPECT_EQ(reader().ReadBatch(False, -1, lSheetCount), True);
    EXPECT_EQ(lSheetCount, 1);
    EXPECT_THAT(host.heard().order, ElementsAre("BeforeSheet"));
    EXPECT_FALSE(host.sent().ends_with("49")) << "a failed page is not sent out";
}

TEST_F(ReaderSessionTest, AFailedReadStopsAndRaisesNothingMore)
{
    SimulatorOptions options;
    options.settings["status1"] = "0x02";
    device = makeSimulator(kelReaderTypePDIVMR138, std::move(options));
    host.connect(kelReaderTypePDIVMR138, *device);
    EXPECT_EQ(reader().StartReader(), False);
    EXPECT_EQ(reader().CancelScan(), True);
    EXPECT_THAT(host.heard().order, ElementsAre("report basPeripheralDynamics.CheckStatusPD"));
}

TEST_F(ReaderSessionTest, AFailedStartEndsTheReaderInABatch)
{
    reader().LoadDefaults(kelReaderTypePDIVMR138);
    reader().Port(17);
    Int32 lSheetCount = 0;
    EXPECT_EQ(reader().ReadBatch(False, 1, lSheetCount), False);
    EXPECT_EQ(lSheetCount, 0);
    EXPECT_THAT(host.heard().order, ElementsAre("report basRead.ReaderInit",
                                                testing::StartsWith("report basPeripheralDynamics.CloseReaderPD")));
}

TEST_F(ReaderSessionTest, TheHostMayStopAReadInBeforeSheet)
{
    load(1);
    reader().StartReader();
    host.sent();
    host.heard().onBeforeSheet = [&](Boolean&) { reader().CancelScan(True); };
    EXPECT_EQ(reader().ReadPage(False), False);
    EXPECT_THAT(host.heard().order, ElementsAre("BeforeSheet"));
    EXPECT_EQ(host.sent(), "");
}

TEST_F(ReaderSessionTest, AStopThatAfterSheetTakesBackIsNone)
{
    load(2);
    reader().StartReader();
    host.heard().onReadSheet = [&](MarkArray&, MarkArray&, TextArray&, Boolean&) { reader().CancelScan(True); };
    host.heard().onAfterSheet = [&](Boolean& bCancelScan) {
        EXPECT_EQ(bCancelScan, True);
        bCancelScan = False;
    };
    EXPECT_EQ(reader().ReadPage(False), True);
    EXPECT_EQ(reader().CancelScan(), False);
}

TEST_F(ReaderSessionTest, ASheetIsDecidedOnOnce)
{
    load(2);
    reader().StartReader();
    reader().ReadPage(False);
    host.sent();
    reader().EjectPage();
    reader().RejectPage();
    EXPECT_EQ(host.sent(), "4");
    reader().ReadPage(False);
    host.sent();
    reader().RejectPage();
    reader().EjectPage();
    EXPECT_EQ(host.sent(), "3");
}

TEST_F(ReaderSessionTest, AnEventsArraysAreTheObjectsOwn)
{
    load(1);
    reader().StartReader();
    host.heard().onReadSheet = [](MarkArray& iSide1Array, MarkArray& iSide2Array, TextArray& sBarcodeArray, Boolean&) {
        iSide1Array(2, 2) = 77;
        iSide2Array.ReDim(1, 1);
        sBarcodeArray(0) = "host";
    };
    reader().ReadPage(False);
    EXPECT_EQ(reader().Side1Array()(2, 2), 77);
    EXPECT_EQ(reader().Side2Array().UBound(1), 1);
}

TEST_F(ReaderSessionTest, AReadOfOneSideLeavesTheOtherSideAsItWas)
{
    load(2);
    reader().StartReader();
    host.heard().onReadSheet = [](MarkArray&, MarkArray& iSide2Array, TextArray&, Boolean&) {
        if (!iSide2Array.isDimensioned()) {
            iSide2Array.ReDim(1, 1);
            iSide2Array(1, 1) = 9;
        }
    };
    reader().ReadPage(False);
    reader().ReadPage(False);
    ASSERT_EQ(host.heard().sheets.size(), 2U);
    EXPECT_EQ(host.heard().sheets[1].side2(1, 1), 9);
}

TEST_F(ReaderSessionTest, RejectIsNoPrintAndNoRejection)
{
    load(1);
    reader().StartReader();
    host.sent();
    host.heard().onReadSheet = [](MarkArray&, MarkArray&, TextArray&, Boolean& bReject) {
        EXPECT_EQ(bReject, False);
        bReject = True;
    };
    reader().ReadPage(False);
    EXPECT_EQ(host.sent().find('3'), std::string::npos);
}

TEST_F(ReaderSessionTest, ParityReadEmptyBecomesN)
{
    EXPECT_EQ(reader().Parity(), "N");
    reader().Parity("");
    EXPECT_EQ(reader().Parity(), "N");
    reader().Parity("E");
    EXPECT_EQ(reader().Parity(), "E");
}

TEST_F(ReaderSessionTest, AHelpNumberOutOfBoundsIsASubscriptFailure)
{
    reader().HelpID(kelReaderHelpIDProperties, 4711);
    EXPECT_EQ(reader().HelpID(kelReaderHelpIDProperties), 4711);
    try {
        static_cast<void>(reader().HelpID(static_cast<kelReaderHelpID>(1)));
        FAIL() << "no failure";
    } catch (const RuntimeFailure& failure) {
        EXPECT_EQ(failure.code(), FailureCode::SubscriptOutOfRange);
    }
}

TEST_F(ReaderSessionTest, TheHelpFileIsTheProcesss)
{
    clsKELReader other;
    reader().HelpFile("reader.hlp");
    EXPECT_EQ(other.HelpFile(), "reader.hlp");
    reader().HelpFile("");
}

TEST_F(ReaderSessionTest, LoadDefaultsTakesTheCatalogueAndLeavesTheRest)
{
    reader().Port(7);
    reader().Windowing(True);
    reader().RecognitionMode(kelRecognitionTypeWindow);
    reader().DuplexForm(True);
    EXPECT_EQ(reader().LoadDefaults(kelReaderTypeScantronScanMark2500), True);
    EXPECT_EQ(reader().ReaderType(), kelReaderTypeScantronScanMark2500);
    EXPECT_EQ(reader().ReaderName(), "Scantron Scanmark 2500");
    EXPECT_EQ(reader().BaudRate(), kelReaderBaudRate19200);
    EXPECT_EQ(reader().DataBits(), kelReaderDataBits8);
    EXPECT_EQ(reader().Parity(), "N");
    EXPECT_EQ(reader().StopBits(), 2.0F);
    EXPECT_EQ(reader().Duplex(), True);
    EXPECT_EQ(reader().Feeder(), True);
    EXPECT_EQ(reader().MarkCutOff(), 10);
    EXPECT_EQ(reader().MarkDiscrimination(), 3);
    EXPECT_EQ(reader().RecognitionThreshold(), 7);
    EXPECT_EQ(reader().SleepTime(), 50);
    EXPECT_EQ(reader().Timeout(), 10);
    EXPECT_EQ(reader().Port(), 7);
    EXPECT_EQ(reader().Windowing(), True);
    EXPECT_EQ(reader().RecognitionMode(), kelRecognitionTypeWindow);
    EXPECT_EQ(reader().DuplexForm(), True);
}

TEST_F(ReaderSessionTest, DefaultsOfAModelWithoutProfileAreAReportedFailure)
{
    reader().RecognitionThreshold(3);
    EXPECT_EQ(reader().LoadDefaults(static_cast<kelReaderType>(99)), False);
    EXPECT_EQ(reader().ReaderType(), 99);
    EXPECT_EQ(reader().RecognitionThreshold(), 3);
    ASSERT_EQ(host.heard().reports.size(), 1U);
    EXPECT_EQ(host.heard().reports[0].ErrorNumber, 91);
    EXPECT_EQ(host.heard().reports[0].ErrorType, kErrorTypeRunTime);
    EXPECT_THAT(host.heard().reports[0].ErrorSource, testing::StartsWith("clsKELReader.LoadDefaults"));
}

TEST_F(ReaderSessionTest, ANothingInThePlaceOfThePrinterIsAReportedFailure)
{
    load(1);
    reader().StartReader();
    reader().Printer(nullptr);
    EXPECT_EQ(reader().ReadPage(False), False);
    ASSERT_EQ(host.heard().reports.size(), 1U);
    EXPECT_EQ(host.heard().reports[0].ErrorNumber, 91);
    EXPECT_THAT(host.heard().reports[0].ErrorSource, testing::StartsWith("clsKELReader.ReadPage"));
}

TEST_F(ReaderSessionTest, EndingTakesTheAnswerKeyAway)
{
    struct Key final : AnswerKeyObject {
        std::string FormIDs() const override { return "1"; }
        Int32 NumberOfPages() const override { return 1; }
        Int32 QuestionsCount() const override { return 0; }
        Reference<AnswerKeyQuestion> Questions(Int32) const override { return nullptr; }
    };
    reader().AnswerKey(makeReference<Key>());
    EXPECT_FALSE(reader().AnswerKey().isNothing());
    reader().EndReader();
    EXPECT_TRUE(reader().AnswerKey().isNothing());
}

TEST_F(ReaderSessionTest, AListenerThatFailsStopsNoOtherAndIsReported)
{
    struct Failing final : ReaderEvents {
        void BeforeSheet(Boolean&) override { throw RuntimeFailure(FailureCode::Overflow); }
    };
    auto late = std::make_shared<RecordingHost>();
    reader().Advise(std::make_shared<Failing>());
    reader().Advise(late);
    EXPECT_EQ(reader().ReadPage(False), False);
    EXPECT_THAT(late->order, ElementsAre("BeforeSheet"));
    ASSERT_EQ(host.heard().reports.size(), 1U);
    EXPECT_EQ(host.heard().reports[0].ErrorNumber, 6);
}

TEST_F(ReaderSessionTest, AListenerMayLeaveWhileItIsCalled)
{
    auto second = std::make_shared<RecordingHost>();
    const std::uint32_t cookie = reader().Advise(second);
    host.heard().onBeforeSheet = [&](Boolean&) { EXPECT_EQ(reader().Unadvise(cookie), True); };
    reader().ReadPage(False);
    EXPECT_THAT(second->order, IsEmpty());
    EXPECT_EQ(reader().Unadvise(cookie), False);
}

TEST_F(ReaderSessionTest, TwoObjectsDriveTwoLines)
{
    load(1);
    SimulatorOptions options;
    options.sheets.put(sheetWithMark(2, 7));
    const auto otherDevice = makeSimulator(kelReaderTypePDIVMR138, std::move(options));
    host.machine.attach(2, *otherDevice);
    clsKELReader other;
    other.LoadDefaults(kelReaderTypePDIVMR138);
    other.Port(2);
    EXPECT_EQ(reader().StartReader(), True);
    EXPECT_EQ(other.StartReader(), True);
    EXPECT_EQ(other.ReadPage(False), True);
    EXPECT_EQ(reader().ReadPage(False), True);
    EXPECT_EQ(reader().Side1Array()(1, 1), kMarked);
    EXPECT_EQ(other.Side1Array()(2, 7), kMarked);
    EXPECT_EQ(other.Side1Array()(1, 1), 0);
    other.EndReader();
    reader().EndReader();
    EXPECT_THAT(otherDevice->errors(), IsEmpty());
}

} // namespace
} // namespace kel::test
