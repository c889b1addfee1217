// SPDX-License-Identifier: MIT
#include "simulators/SimulatorTable.h"
#include "tests/support/ReaderHost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// The events around a print, on a reader that prints and on one that does not.

namespace kel::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr const char* kPrintStatus = "?P\r";
constexpr const char* kNoPrintFollows = "?F\r";
constexpr const char* kNormalPath = "\x13R04\r";

class PrintEventsTest : public testing::Test {
protected:
    /// A started reader with one sheet, whose printer is active and has a line.
    void start(kelReaderType eModel)
    {
        device = makeSimulator(eModel, {.sheets = {{.side1 = MarkRows(2)}}, .settings = {}});
        // The imprinter stays enabled on a model that it is no concern of.
        reader().ReaderType(kelReaderTypeScanningSystemsSR601);
        reader().Printer()->Enabled(True);
        reader().Printer()->Active(True);
        host.connect(eModel, *device);
        reader().Printer()->Enabled(True);
        reader().Printer()->Active(True);
        reader().Printer()->Buffer1("A");
        reader().RecognitionMode(kelRecognitionTypePage);
        reader().Side1Rows(pages({2}));
        ASSERT_EQ(reader().StartReader(), True);
        host.sent();
    }

    void TearDown() override
    {
        EXPECT_THAT(device->errors(), IsEmpty());
        EXPECT_THAT(host.heard().reports, IsEmpty());
    }

    clsKELReader& reader() { return host.reader(); }

    std::unique_ptr<Simulator> device;
    ReaderHost host;
};

TEST_F(PrintEventsTest, APrintStandsBetweenTheSheetAndItsEnd)
{
    start(kelReaderTypeScanningSystemsSR601);
    EXPECT_EQ(reader().ReadPage(True), True);
    EXPECT_THAT(host.heard().order, ElementsAre("BeforeSheet", "ReadSheet", "BeforePrint", "AfterPrint", "AfterSheet"));
    EXPECT_THAT(host.sent(), HasSubstr(kPrintStatus));
    reader().EjectPage(); // without a rejecter the prepared printer lets the sheet go
    EXPECT_EQ(host.sent(), kNoPrintFollows);
}

TEST_F(PrintEventsTest, APrinterThatIsNotInitializedIsNotAskedFor)
{
    start(kelReaderTypeScanningSystemsSR601);
    EXPECT_EQ(reader().Printer()->Active(), True);
    EXPECT_EQ(reader().ReadPage(False), True);
    EXPECT_THAT(host.heard().order, ElementsAre("BeforeSheet", "ReadSheet", "AfterSheet"));
    EXPECT_THAT(host.sent(), Not(HasSubstr("P")));
    reader().EjectPage();
    EXPECT_EQ(host.sent(), kNormalPath);
}

TEST_F(PrintEventsTest, APrinterThatTheHostTurnsOffWithTheSheetIsNotAskedFor)
{
    start(kelReaderTypeScanningSystemsSR601);
    host.heard().onReadSheet = [&](MarkArray&, MarkArray&, TextArray&, Boolean&) { reader().Printer()->Active(False); };
    EXPECT_EQ(reader().ReadPage(True), True);
    EXPECT_THAT(host.heard().order, ElementsAre("BeforeSheet", "ReadSheet", "AfterSheet"));
}

TEST_F(PrintEventsTest, AModelWithoutPrintRaisesBeforePrintAlone)
{
    start(kelReaderTypePDIVMR138);
    EXPECT_EQ(reader().Printer()->Active(), True);
    EXPECT_EQ(reader().ReadPage(True), True);
    EXPECT_THAT(host.heard().order, ElementsAre("BeforeSheet", "ReadSheet", "BeforePrint", "AfterSheet"));
}

TEST_F(PrintEventsTest, ARejectedSheetIsPrintedOnlyIfTheHostTakesItBack)
{
    for (const bool takesBack : {false, true}) {
        host.heard().order.clear();
        start(kelReaderTypeScanningSystemsSR601);
        host.heard().onReadSheet = [](MarkArray&, MarkArray&, TextArray&, Boolean& bReject) { bReject = True; };
        host.heard().onBeforePrint = [&](Boolean& bCancel) {
            EXPECT_EQ(bCancel, True);
            bCancel = !takesBack;
        };
        EXPECT_EQ(reader().ReadPage(True), True);
        EXPECT_EQ(std::count(host.heard().order.begin(), host.heard().order.end(), "AfterPrint"), takesBack ? 1 : 0);
        EXPECT_THAT(host.sent(), HasSubstr(takesBack ? kPrintStatus : kNoPrintFollows));
        // A print that is called off has ended the sheet.
        reader().RejectPage();
        EXPECT_EQ(host.sent(), takesBack ? kNoPrintFollows : "");
        reader().EndReader();
    }
}

TEST_F(PrintEventsTest, APrinterTurnedOffInBeforePrintCallsThePrintOff)
{
    start(kelReaderTypeScanningSystemsSR601);
    host.heard().onBeforePrint = [&](Boolean& bCancel) {
        EXPECT_EQ(bCancel, False);
        reader().Printer()->Active(False);
    };
    EXPECT_EQ(reader().ReadPage(True), True);
    EXPECT_THAT(host.heard().order, ElementsAre("BeforeSheet", "ReadSheet", "BeforePrint", "AfterSheet"));
    EXPECT_THAT(host.sent(), HasSubstr(kNoPrintFollows));
    reader().EjectPage();
    EXPECT_EQ(host.sent(), "");
}

} // namespace
} // namespace kel::test
