// SPDX-License-Identifier: MIT
#include "SerialReaderTest.h"

#include "types/Text.h"

#include <thread>

namespace kel::scanning_systems_test {
namespace {

const std::string kReset = "\x18\r";
const std::string kAck = "\x06";
const std::string kMode = "\x05OM\r";
const std::string kOptions = "\x05O\r";

std::string threshold(const std::string& text)
{
    return "\x10" + text + "\r";
}

using SessionSS = SerialReaderTest;

TEST_F(SessionSS, AReaderWithoutModeIsSetUpWithTheThresholdTwice)
{
    reader.settings().RecognitionThreshold = 6;
    device.on(kReset, kAck).on(kMode, "1").on(threshold("DL2")).on(threshold("DL2"));
    EXPECT_TRUE(InitReaderSS(reader));
    EXPECT_EQ(iEmulationMode, 1);
    EXPECT_TRUE(reports().empty());
    EXPECT_TRUE(pauses().empty());
    EXPECT_FALSE(reader.fComm().tmrScan().Enabled());
}

TEST_F(SessionSS, AModeAboveOneGetsTheMarkDiscrimination)
{
    reader.settings().RecognitionThreshold = 7;
    reader.settings().MarkDiscrimination = 3;
    device.on(kReset, kAck)
        .on(kMode, "2")
        .on(threshold("DL07"))
        .on("\x13"
            "DD03\r");
    EXPECT_TRUE(InitReaderSS(reader));
    EXPECT_EQ(iEmulationMode, 2);
}

TEST_F(SessionSS, TheFirstCharacterOfTheModeReplyDecidesAndIsComparedAsText)
{
    reader.settings().MarkDiscrimination = 112;
    // No number, so mode 0, and yet above "1".
    device.on(kReset, kAck)
        .on(kMode, "A5")
        .on(threshold("DL1"))
        .on("\x13"
            "DD112\r");
    EXPECT_TRUE(InitReaderSS(reader));
    EXPECT_EQ(iEmulationMode, 0);
    // Mode 3 with a blank in front, which is below "1".
    device.on(kReset, kAck).on(kMode, " 3").on(threshold("DL00")).on(threshold("DL00"));
    EXPECT_TRUE(InitReaderSS(reader));
    EXPECT_EQ(iEmulationMode, 3);
    // A byte of the upper half is no negative character.
    device.on(kReset, kAck)
        .on(kMode, "\xE9")
        .on(threshold("DL1"))
        .on("\x13"
            "DD112\r");
    EXPECT_TRUE(InitReaderSS(reader));
}

TEST_F(SessionSS, AModeTooLargeFailsAndKeepsTheOneBefore)
{
    iEmulationMode = 2;
    device.on(kReset, kAck).on(kMode, "40000");
    EXPECT_FALSE(InitReaderSS(reader));
    expectOneFailure(6, "InitReaderSS");
    EXPECT_EQ(iEmulationMode, 2);
}

TEST_F(SessionSS, ARejecterThatIsThereStays)
{
    reader.Rejecter(True);
    device.on(kReset, kAck).on(kMode, "2").on(kOptions, "000001").on(threshold("DL00")).on(threshold("DL00"));
    EXPECT_TRUE(InitReaderSS(reader));
    EXPECT_EQ(reader.Rejecter(), True);
}

TEST_F(SessionSS, ARejecterThatIsMissingIsTurnedOff)
{
    reader.Rejecter(True);
    // The reply to "O", not the mode's, now decides on the mark discrimination.
    device.on(kReset, kAck)
        .on(kMode, "0")
        .on(kOptions, "2111101")
        .on(threshold("DL1"))
        .on("\x13"
            "DD00\r");
    EXPECT_TRUE(InitReaderSS(reader));
    EXPECT_EQ(reader.Rejecter(), False);
    reader.Rejecter(True);
    device.on(kReset, kAck).on(kMode, "0").on(kOptions, "11111").on(threshold("DL1")).on(threshold("DL1"));
    EXPECT_TRUE(InitReaderSS(reader));
    EXPECT_EQ(reader.Rejecter(), False) << "a reply without a sixth character";
}

TEST_F(SessionSS, OnlyWhatIsThereOfAReplyIsTaken)
{
    reader.Rejecter(True);
    // The mode's second digit comes later, and then passes for the answer to "O".
    device.on(kReset, kAck).on(kMode, "1").then(1ms, "2").on(kOptions, "000001", 2ms);
    device.on(threshold("DL1"))
        .on("\x13"
            "DD00\r");
    EXPECT_TRUE(InitReaderSS(reader));
    EXPECT_EQ(iEmulationMode, 1);
    EXPECT_EQ(reader.Rejecter(), False);
}

TEST_F(SessionSS, TheLastByteBehindTheResetIsTheAnswer)
{
    device.on(kReset, "xy\x06").on(kMode, "0").on(threshold("DL1")).on(threshold("DL1"));
    EXPECT_TRUE(InitReaderSS(reader));
    device.on(kReset, "\x06x");
    EXPECT_FALSE(InitReaderSS(reader));
    expectOneFault(378, 376, "InitReaderSS");
}

TEST_F(SessionSS, SilenceIsReportedAtEachQuestion)
{
    device.on(kReset);
    EXPECT_FALSE(InitReaderSS(reader));
    expectOneFault(374, 376, "InitReaderSS");
    EXPECT_EQ(machine.now(), kTimeout);
    device.on(kReset, kAck).on(kMode);
    EXPECT_FALSE(InitReaderSS(reader));
    expectFault(1, VBLM_RTString(TextNumber(374)), VBLM_RTString(TextNumber(376)), "InitReaderSS");
    reader.Rejecter(True);
    device.on(kReset, kAck).on(kMode, "0").on(kOptions);
    EXPECT_FALSE(InitReaderSS(reader));
    expectFault(2, VBLM_RTString(TextNumber(374)), VBLM_RTString(TextNumber(376)), "InitReaderSS");
    EXPECT_EQ(reports().size(), 3U);
    EXPECT_EQ(reader.Rejecter(), True);
}

TEST_F(SessionSS, TheStartDoesNotLookAtTheStopFlag)
{
    reader.CancelScan(True);
    reader.Rejecter(True);
    device.on(kReset, kAck, 3s).on(kMode, "0", 3s).on(kOptions, "000001", 3s);
    device.on(threshold("DL1")).on(threshold("DL1"));
    EXPECT_TRUE(InitReaderSS(reader));
}

TEST_F(SessionSS, TheSR410HasAStartCommandAndAnUnfilledThreshold)
{
    reader.ReaderType(kelReaderTypeScanningSystemsSR410);
    reader.settings().RecognitionThreshold = 12;
    reader.settings().RecognitionMode = kelRecognitionTypeWindow;
    reader.Rejecter(True);
    addWindow(1, 1, 1, 1);
    device.on(kReset, kAck).on("\x10T\r1\r").on(threshold("DL012"));
    EXPECT_TRUE(InitReaderSS(reader));
}

TEST_F(SessionSS, TheSR430HasAStartCommandAFilledThresholdAndOneMoreSetting)
{
    reader.ReaderType(kelReaderTypeSekonicSR430);
    reader.settings().RecognitionThreshold = 5;
    reader.settings().RecognitionMode = kelRecognitionTypeWindow;
    addWindow(1, 1, 1, 1);
    device.on(kReset, kAck)
        .on("\x10T\r\x02"
            "2\r")
        .on(threshold("DL05"))
        .on("\x13"
            "15\r");
    EXPECT_TRUE(InitReaderSS(reader));
}

TEST_F(SessionSS, WindowsAreLoadedInWindowModeAndTheirNegativeGapsTurned)
{
    reader.settings().RecognitionMode = kelRecognitionTypeWindow;
    addWindow(1, 3, 10, 5);
    const Reference<clsKELReaderWindow> cWindow = addWindow(2, 20, 3, 1);
    cWindow->RowGap(-2);
    device.on(kReset, kAck).on(kMode, "0").on(threshold("DL1")).on(threshold("DL1")).on("\x10Q\r");
    device
        .on("\x10W\r\x02"
            "031001050401112\r")
        .on("/\x10W\r\x02"
            "160302010401112\r");
    EXPECT_TRUE(InitReaderSS(reader));
    EXPECT_EQ(cWindow->StartRow(), 16);
    EXPECT_EQ(cWindow->RowGap(), 2);
}

TEST_F(SessionSS, AWindowIsTurnedRoundOnlyOnce)
{
    reader.settings().RecognitionMode = kelRecognitionTypeWindow;
    const Reference<clsKELReaderWindow> cWindow = addWindow(1, 20, 3, 9);
    cWindow->RowGap(-2);
    cWindow->ColGap(-1);
    for (int session = 0; session < 2; ++session) {
        device.on(kReset, kAck).on(kMode, "0").on(threshold("DL1")).on(threshold("DL1")).on("\x10Q\r");
        device.on("\x10W\r\x02"
                  "160302060401112\r");
        EXPECT_TRUE(InitReaderSS(reader));
    }
    EXPECT_EQ(cWindow->StartCol(), 6);
    EXPECT_EQ(cWindow->ColGap(), 1);
}

TEST_F(SessionSS, AWindowThatIsNotThereFails)
{
    reader.settings().RecognitionMode = kelRecognitionTypeWindow;
    reader.Windows()->Add(nullptr);
    device.on(kReset, kAck).on(kMode, "0").on(threshold("DL1")).on(threshold("DL1")).on("\x10Q\r");
    EXPECT_FALSE(InitReaderSS(reader));
    expectOneFailure(91, "InitReaderSS");
}

TEST_F(SessionSS, AnUnpluggedReaderEndsTheStartAtOnce)
{
    device.on(kReset, kAck).unplugOn(kMode);
    EXPECT_FALSE(InitReaderSS(reader));
    expectOneFailure(8020, "InitReaderSS");
    EXPECT_LT(machine.now(), 1s);
}

TEST_F(SessionSS, NothingIsSentAtTheEnd)
{
    EXPECT_EQ(CloseReaderSS(), True);
}

TEST_F(SessionSS, TheModeIsTheThreadsOwn)
{
    iEmulationMode = 7;
    std::thread([] { EXPECT_EQ(iEmulationMode, 0); }).join();
}

TEST_F(SessionSS, BarcodeSetUpTakesTheFirstZoneAlone)
{
    addZone(25);
    addZone(77);
    device
        .on("\x13"
            "BA00\r")
        .on("\x13"
            "BA01\r")
        .on("\x13"
            "BA1099925\r");
    InitBarcodeSS(reader);
    EXPECT_EQ(pauses(), (std::vector<Int32>{kPause, kPause}));
    EXPECT_TRUE(reports().empty());
}

TEST_F(SessionSS, NobodyHearsOfAFailedBarcodeOrPrinterSetUp)
{
    device
        .on("\x13"
            "BA00\r")
        .on("\x13"
            "BA01\r");
    InitBarcodeSS(reader);
    reader.fComm().mscComm().PortOpen(False);
    InitBarcodeSS(reader);
    InitPrinterSS(reader);
    EXPECT_TRUE(reports().empty());
    EXPECT_EQ(pauses(), (std::vector<Int32>{kPause, kPause, kPause, kPause, kPause}));
}

TEST_F(SessionSS, PrinterSetUpPausesOnce)
{
    device
        .on("\x13"
            "P10\r")
        .on("\x13"
            "P3100\r");
    InitPrinterSS(reader);
    EXPECT_EQ(pauses(), std::vector<Int32>{kPause});
}

TEST_F(SessionSS, AReplyIsCollectedAsTextOrAsDecimalNumbers)
{
    device.on("?\r", std::string("0\x01\xFF", 3)).on("?\r", std::string("0\x01\xFF", 3));
    EXPECT_EQ(SendCommandSS(reader, "?\r", True), "481255");
    EXPECT_EQ(SendCommandSS(reader, "?\r", False), std::string("0\x01\xFF", 3));
    EXPECT_EQ(pauses(), (std::vector<Int32>{kPause, kPause}));
    EXPECT_EQ(reader.fComm().mscComm().InputLen(), 1);
    EXPECT_FALSE(reader.fComm().tmrScan().Enabled());
}

TEST_F(SessionSS, AReplyThatPausesLessThanTheHostIsOneReply)
{
    device.on("?\r", "a").then(std::chrono::milliseconds(kPause), "b").then(std::chrono::milliseconds(kPause - 1), "c");
    EXPECT_EQ(SendCommandSS(reader, "?\r", False), "abc");
    EXPECT_EQ(pauses().size(), 3U);
}

TEST_F(SessionSS, AReplyThatPausesLongerIsCut)
{
    device.on("?\r", "a").then(std::chrono::milliseconds(kPause + 1), "b");
    EXPECT_EQ(SendCommandSS(reader, "?\r", False), "a");
}

TEST_F(SessionSS, ACancelledQueryIsEmptyAndNotReported)
{
    machine.at(3s, [&] { reader.CancelScan(True); });
    device.on("?\r");
    EXPECT_EQ(SendCommandSS(reader, "?\r", True), "");
    EXPECT_TRUE(reports().empty());
    EXPECT_TRUE(reader.fComm().tmrScan().Enabled());
    EXPECT_EQ(machine.now(), 3s);
}

TEST_F(SessionSS, AQueryWithoutAnswerIsReported)
{
    device.on("?\r");
    EXPECT_EQ(SendCommandSS(reader, "?\r", True), "");
    expectOneFault(426, 184, "SendCommandSS");
    EXPECT_EQ(machine.now(), kTimeout);
}

TEST_F(SessionSS, AReplyWinsOverACancel)
{
    reader.CancelScan(True);
    device.on("?\r", "0", 0ms);
    EXPECT_EQ(SendCommandSS(reader, "?\r", False), "0");
}

TEST_F(SessionSS, AReplyIsLostWhenTheLineBreaksWithinIt)
{
    device.unplugOn("?\r");
    EXPECT_EQ(SendCommandSS(reader, "?\r", False), "");
    expectOneFailure(8020, "SendCommandSS");
}

TEST_F(SessionSS, AFaultCodeIsToldUnderALiteralTitle)
{
    ReturnErrorSS(reader, "49");
    expectFault(0, VBLM_RTString(TextNumber(398)), "Scanner Error", "ReturnErrorSS");
    iEmulationMode = 3;
    ReturnErrorSS(reader, "119");
    expectFault(1, VBLM_RTString(TextNumber(418)) + "119" + VBLM_RTString(TextNumber(420)), "Scanner Error",
                "ReturnErrorSS");
    reader.ReaderType(kelReaderTypeSekonicSR430);
    ReturnErrorSS(reader, "118");
    expectFault(2, VBLM_RTString(TextNumber(402)), "Scanner Error", "ReturnErrorSS");
    ReturnErrorSS(reader, "119");
    ReturnErrorSS(reader, "");
    EXPECT_EQ(reports().size(), 3U);
}

} // namespace
} // namespace kel::scanning_systems_test
