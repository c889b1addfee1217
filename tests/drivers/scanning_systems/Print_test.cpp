// SPDX-License-Identifier: MIT
#include "SerialReaderTest.h"

#include "types/Text.h"

namespace kel::scanning_systems_test {
namespace {

const std::string kNoPrint = "?F\r";
const std::string kPrinted = "?P\r";

std::string setting(const std::string& text)
{
    return "\x13" + text + "\r";
}

class PrintingSS : public SerialReaderTest {
protected:
    void SetUp() override
    {
        SerialReaderTest::SetUp();
        reader.Printer()->Enabled(True);
    }
};

TEST_F(PrintingSS, FilledLinesGoOutInTheirOrder)
{
    reader.Printer()->Distance(25);
    reader.Printer()->Buffer1("AB");
    reader.Printer()->Buffer2("CD");
    device.on(setting("P32025")).on(setting("P40AB ")).on(setting("P20")).on(setting("P41CD ")).on(setting("P21"));
    device.on(kPrinted, "0");
    EXPECT_EQ(PrintSS(reader, False), True);
    EXPECT_EQ(pauses(), std::vector<Int32>{kPause});
    EXPECT_TRUE(reports().empty());
}

TEST_F(PrintingSS, EmptyLinesAreLeftOut)
{
    reader.Printer()->Distance(7);
    reader.Printer()->Buffer3("x");
    device.on(setting("P32007")).on(setting("P42x ")).on(setting("P22")).on(kPrinted, "0");
    EXPECT_TRUE(PrintSS(reader, False));
    reader.Printer()->Distance(1234);
    reader.Printer()->Buffer3("");
    device.on(setting("P321234")).on(kPrinted, "0");
    EXPECT_TRUE(PrintSS(reader, False));
}

TEST_F(PrintingSS, TheLastByteOfTheStatusDecides)
{
    reader.Printer()->Distance(0);
    device.on(setting("P32000")).on(kPrinted, "01");
    EXPECT_FALSE(PrintSS(reader, False));
    device.on(setting("P32000")).on(kPrinted, "1").then(std::chrono::milliseconds(kPause), "0");
    EXPECT_TRUE(PrintSS(reader, False));
    EXPECT_TRUE(reports().empty());
}

TEST_F(PrintingSS, TheDecisionOnASheetDoesNotLookAtTheStopFlag)
{
    reader.Printer()->Distance(0);
    reader.CancelScan(True);
    device.on(setting("P32000")).on(kPrinted, "0", 3s);
    EXPECT_TRUE(PrintSS(reader, False));
    device.on(kNoPrint, "0", 3s);
    EXPECT_FALSE(PrintSS(reader, True));
    device.on(kNoPrint, "0", 3s);
    RejectPrintSS(reader);
    EXPECT_EQ(reader.fComm().mscComm().InBufferCount(), 0);
    EXPECT_EQ(machine.now(), 9s + std::chrono::milliseconds(2 * kPause));
    EXPECT_TRUE(reports().empty());
}

TEST_F(PrintingSS, AStatusThatDoesNotComeIsReported)
{
    reader.Printer()->Distance(0);
    device.on(setting("P32000")).on(kPrinted);
    EXPECT_FALSE(PrintSS(reader, False));
    expectOneFault(424, 184, "PrintSS");
    EXPECT_EQ(machine.now(), kTimeout);
}

TEST_F(PrintingSS, ACancelledPrintIsToldToTheReader)
{
    reader.Printer()->Buffer1("AB");
    device.on(kNoPrint, "0").then(std::chrono::milliseconds(kPause), "0");
    EXPECT_EQ(PrintSS(reader, True), False);
    EXPECT_EQ(pauses(), (std::vector<Int32>{kPause, kPause}));
    EXPECT_EQ(reader.fComm().mscComm().InBufferCount(), 0);
    EXPECT_TRUE(reports().empty());
}

TEST_F(PrintingSS, ACancelledPrintWithoutAnswerIsReportedUnderAnotherName)
{
    device.on(kNoPrint);
    EXPECT_FALSE(PrintSS(reader, True));
    expectOneFault(422, 184, "ReadWindowsSS");
}

TEST_F(PrintingSS, WithoutAPrinterNothingIsSent)
{
    reader.Printer(nullptr);
    EXPECT_FALSE(PrintSS(reader, False));
    EXPECT_FALSE(PrintSS(reader, True));
    EXPECT_TRUE(reports().empty());
}

TEST_F(PrintingSS, ARejecterSendsTheSheetWhereItIsTold)
{
    reader.Rejecter(True);
    preparePrinter(True);
    device.on(setting("R05")).on(setting("R04"));
    RejectPageSS(reader, True);
    RejectPageSS(reader, False);
    EXPECT_TRUE(pauses().empty());
}

TEST_F(PrintingSS, WithoutARejecterAPreparedPrinterIsToldThatNoPrintFollows)
{
    preparePrinter(True);
    device.on(kNoPrint, "00").on(kNoPrint, "00");
    RejectPageSS(reader, True);
    RejectPageSS(reader, False);
    preparePrinter(False);
    device.on(setting("R05")).on(setting("R04"));
    RejectPageSS(reader, True);
    RejectPageSS(reader, False);
}

TEST_F(PrintingSS, TheReplyToNoPrintIsDroppedInOnePiece)
{
    reader.fComm().mscComm().InputLen(1);
    device.on(kNoPrint, "abc");
    RejectPrintSS(reader);
    EXPECT_EQ(reader.fComm().mscComm().InBufferCount(), 0);
    EXPECT_EQ(reader.fComm().mscComm().InputLen(), 0);
    EXPECT_FALSE(reader.fComm().tmrScan().Enabled());
    EXPECT_TRUE(pauses().empty());
}

TEST_F(PrintingSS, NoPrintWithoutAnswerIsNotReported)
{
    reader.fComm().mscComm().InputLen(1);
    device.on(kNoPrint);
    RejectPrintSS(reader);
    EXPECT_TRUE(reports().empty());
    EXPECT_EQ(machine.now(), kTimeout);
    EXPECT_EQ(reader.fComm().mscComm().InputLen(), 1);
}

TEST_F(PrintingSS, ALineThatIsNotOpenIsReportedUnderEachName)
{
    reader.fComm().mscComm().PortOpen(False);
    EXPECT_FALSE(PrintSS(reader, False));
    expectOneFailure(8018, "PrintSS");
    errors->reports.clear();
    RejectPageSS(reader, False);
    expectOneFailure(8018, "RejectPageSS");
    errors->reports.clear();
    RejectPrintSS(reader);
    expectOneFailure(8018, "RejectPrintSS");
}

} // namespace
} // namespace kel::scanning_systems_test
