// SPDX-License-Identifier: MIT
#include "drivers/peripheral_dynamics/basPeripheralDynamics.h"

#include "drivers/common/Dialogue.h"
#include "drivers/peripheral_dynamics/HalfRow.h"
#include "failure/ReportedText.h"
#include "failure/basError.h"
#include "failure/guarded.h"
#include "platform/Platform.h"
#include "types/Text.h"

namespace kel {

namespace {

constexpr const char* kInitReader = "KELReader81 - basPeripheralDynamics.InitReaderPD";
constexpr const char* kCloseReader = "KELReader81 - basPeripheralDynamics.CloseReaderPD";
constexpr const char* kSetRecThreshold = "KELReader81 - basPeripheralDynamics.SetRecThresholdPD";
constexpr const char* kCheckStatus = "KELReader81 - basPeripheralDynamics.CheckStatusPD";
constexpr const char* kReadPage = "KELReader81 - basPeripheralDynamics.ReadPagePD";
constexpr const char* kRejectPage = "KELReader81 - basPeripheralDynamics.RejectPagePD";
constexpr const char* kEjectPage = "KELReader81 - basPeripheralDynamics.EjectPagePD";

// Status byte 1
constexpr Int16 kSheetUnderWay = 0x20;
constexpr Int16 kWantsD = 0x10;
constexpr Int16 kWantsG = 0x04;
// Status byte 2
constexpr Int16 kWantsE = 0x08;

struct StatusFault {
    Int16 bit;
    TextNumber message;
};

// Only the first that is set is reported.
constexpr StatusFault kStatusFaults[] = {
    {0x02, text::kPdFaultBit02}, {0x01, text::kPdFaultBit01}, {0x40, text::kPdFaultBit40}};

constexpr Byte kPageStart = 0x0A;
constexpr Byte kPageEnd = 0x0D;

constexpr Int32 kMostRows = 500;
constexpr Int32 kColumns = 14;
constexpr Int32 kLeftHalf = 1;
constexpr Int32 kRightHalf = 7;

/// Waits up to a second for the first character of a reply unless all of it is there already. The interval of one
/// second stays in the timer, and the stop flag is not looked at.
bool replyComes(ReaderContract& oReader, Int32 characters)
{
    if (oReader.fComm().mscComm().InBufferCount() >= characters)
        return true;
    oReader.fComm().tmrScan().Interval(1000);
    return waitForReply(oReader, {.cancellable = false}) == Wait::Reply;
}

Int16 takeCode(ReaderContract& oReader)
{
    return Asc(oReader.fComm().mscComm().Input());
}

/// Steps of the reader's threshold, whose replies nobody looks at.
void stepThreshold(ReaderContract& oReader, const char* command, Int16 iDifference, Int32 lSleepTime)
{
    for (Int16 iStep = 0; iStep < iDifference; ++iStep) {
        oReader.fComm().mscComm().Output(command);
        drainInput(oReader);
        Sleep(lSleepTime);
    }
}

/// Sends the command to read a sheet, unless one is already under way. False if the status has a fault.
bool startPage(ReaderContract& oReader, Int16& iStatusByte1, Int16& iStatusByte2)
{
    if (!CheckStatusPD(oReader, iStatusByte1, iStatusByte2))
        return false;
    if (!(iStatusByte1 & kSheetUnderWay)) {
        oReader.fComm().mscComm().Output("8");
        Sleep(checkedMultiply(oReader.SleepTime(), 5));
    }
    return true;
}

void reportRowOverrun(ReaderContract& oReader)
{
    const ReportedText reported(text::kPdTooManyRows);
    std::string sText = VBLM_RTString(text::kPdTooManyRows);
    sText.append(kLineEnd).append(kLineEnd).append("\t");
    sText += VBLM_RTString(text::kPdSystemPause) + CStr(oReader.SleepTime());
    reportReaderFault(kReadPage, sText, VBLM_RTString(text::kSheetNotReadTitle));
}

} // namespace

Boolean InitReaderPD(ReaderContract& oReader)
{
    Boolean bResult = False;
    Int16 iStatusByte1 = 0;
    Int16 iStatusByte2 = 0;
    guarded(kInitReader, KEL_PARAMETERS(oReader) + KEL_LOCALS(iStatusByte1, iStatusByte2), [&] {
        oReader.fComm().mscComm().InputLen(1);
        drainInput(oReader);
        oReader.fComm().mscComm().Output("0");
        Sleep(500);

        if (!CheckStatusPD(oReader, iStatusByte1, iStatusByte2))
            return;
        if (iStatusByte1 & kWantsD)
            oReader.fComm().mscComm().Output("D");
        if (iStatusByte1 & kWantsG)
            oReader.fComm().mscComm().Output("G");
        if (iStatusByte2 & kWantsE) {
            Sleep(checkedMultiply(oReader.SleepTime(), 2));
            oReader.fComm().mscComm().Output("E");
            Sleep(checkedMultiply(oReader.SleepTime(), 2));
        }
        drainInput(oReader);
        bResult = SetRecThresholdPD(oReader, oReader.SleepTime());
    });
    return bResult;
}

void CloseReaderPD(ReaderContract& oReader)
{
    guarded(kCloseReader, KEL_PARAMETERS(oReader), [&] { oReader.fComm().mscComm().Output("9"); });
}

Boolean SetRecThresholdPD(ReaderContract& oReader, Int32 lSleepTime)
{
    Boolean bResult = False;
    Int16 iHigh = 0;
    Int16 iLow = 0;
    Int16 iCurrentThreshold = 0;
    Int16 iDifference = 0;
    const auto variables =
        KEL_PARAMETERS(oReader, lSleepTime) + KEL_LOCALS(iHigh, iLow, iCurrentThreshold, iDifference);
    guarded(kSetRecThreshold, variables, [&] {
        Sleep(checkedMultiply(lSleepTime, 5));
        oReader.fComm().mscComm().Output("+");
        Sleep(checkedMultiply(lSleepTime, 5));
        if (!replyComes(oReader, 2)) {
            reportReaderFault(kSetRecThreshold, text::kPdThresholdUnanswered, text::kPdThresholdTitle);
            return;
        }

        iHigh = thresholdHighDigitPD(oReader.fComm().mscComm().Input());
        if (iHigh < 0) {
            reportReaderFault(kSetRecThreshold, text::kPdThresholdInvalid, text::kPdThresholdTitle);
            return;
        }
        iLow = thresholdLowDigitPD(oReader.fComm().mscComm().Input());
        if (iLow < 0) {
            reportReaderFault(kSetRecThreshold, text::kPdThresholdInvalid, text::kPdThresholdTitle);
            return;
        }
        drainInput(oReader);

        // "-" raises the reader's value and "+" lowers it.
        iCurrentThreshold = checkedAdd(iHigh, iLow);
        if (oReader.RecognitionThreshold() > iCurrentThreshold) {
            iDifference = checkedSubtract(oReader.RecognitionThreshold(), iCurrentThreshold);
            stepThreshold(oReader, "-", iDifference, lSleepTime);
        } else if (oReader.RecognitionThreshold() < iCurrentThreshold) {
            iDifference = checkedSubtract(iCurrentThreshold, oReader.RecognitionThreshold());
            stepThreshold(oReader, "+", iDifference, lSleepTime);
        }
        drainInput(oReader);
        bResult = True;
    });
    return bResult;
}

Boolean CheckStatusPD(ReaderContract& oReader, Int16& iStatusByte1, Int16& iStatusByte2)
{
    Boolean bResult = False;
    guarded(kCheckStatus, KEL_PARAMETERS(oReader, iStatusByte1, iStatusByte2), [&] {
        drainInput(oReader);
        Sleep(checkedMultiply(oReader.SleepTime(), 5));
        oReader.fComm().mscComm().Output("Q");
        Sleep(checkedMultiply(oReader.SleepTime(), 5));
        if (!replyComes(oReader, 3)) {
            reportReaderFault(kCheckStatus, text::kPdStatusUnanswered, text::kPdStatusTitle);
            return;
        }

        static_cast<void>(oReader.fComm().mscComm().Input());
        iStatusByte1 = takeCode(oReader);
        iStatusByte2 = takeCode(oReader);
        for (const StatusFault& fault : kStatusFaults) {
            if (iStatusByte1 & fault.bit) {
                reportReaderFault(kCheckStatus, fault.message, text::kPdStatusTitle);
                EjectPagePD(oReader);
                return;
            }
        }
        bResult = True;
    });
    return bResult;
}

Boolean ReadPagePD(ReaderContract& oReader)
{
    Boolean bResult = False;
    Int16 iRow = 0;
    Int16 iThreshold = 0;
    Int32 lNumBytes = 1;
    Byte iTemp = 0;
    bool bFirstByte = true;
    bool bRightByte = false;
    bool bPageRead = false;
    MarkArray iSide1Arr;
    Int16 iStatusByte1 = 0;
    Int16 iStatusByte2 = 0;
    const auto variables =
        KEL_PARAMETERS(oReader) + KEL_LOCALS(iRow, iThreshold, lNumBytes, iTemp, bFirstByte, bRightByte, bPageRead,
                                             iSide1Arr, iStatusByte1, iStatusByte2);
    const auto read = [&] {
        drainInput(oReader);
        oReader.fComm().mscComm().InputLen(1);
        iThreshold = checkedAdd(oReader.RecognitionThreshold(), 1);
        iRow = 1;
        iSide1Arr.ReDim(kMostRows, kColumns);

        if (!startPage(oReader, iStatusByte1, iStatusByte2))
            return;

        // The reader may wait for a sheet as long as it likes: only the stop flag ends this.
        while (!bPageRead) {
            DoEvents();
            if (oReader.CancelScan())
                return;
            if (oReader.fComm().mscComm().InBufferCount() == 0)
                continue;
            iTemp = takeByte(oReader);
            if (iTemp == kPageEnd && oReader.fComm().mscComm().InBufferCount() == 0) {
                bPageRead = true;
            } else if (bFirstByte) {
                // The number of rows is not announced: it follows from what has arrived after this pause.
                Sleep(checkedMultiply(oReader.SleepTime(), 5));
                if (iTemp == kPageStart) {
                    iRow = CInt((oReader.fComm().mscComm().InBufferCount() - 1) / 2.0);
                    oReader.Side1TimingMarks(iRow);
                    bFirstByte = false;
                }
            } else {
                setHalfRowPD(iSide1Arr, iRow, bRightByte ? kRightHalf : kLeftHalf, iTemp, iThreshold);
                bRightByte = !bRightByte;
                if (!bRightByte)
                    iRow = checkedSubtract(iRow, 1);
                lNumBytes = checkedAdd(lNumBytes, 1);
            }
        }
        oReader.fComm().mscComm().Output("9");
        Sleep(checkedMultiply(oReader.SleepTime(), 5));
        oReader.Side1Array(iSide1Arr);
        bResult = True;
    };
    guarded(kReadPage, variables, read, [&](const RuntimeFailure&) {
        // More row bytes than the count taken at the start byte: row 0 is refused. Whatever else fails while no row is
        // under way is reported in the same words.
        if (iRow != 0)
            return false;
        reportRowOverrun(oReader);
        EjectPagePD(oReader);
        return true;
    });
    return bResult;
}

void RejectPagePD(ReaderContract& oReader)
{
    guarded(kRejectPage, KEL_PARAMETERS(oReader), [&] {
        oReader.fComm().mscComm().Output("3");
        Sleep(1000);
    });
}

void EjectPagePD(ReaderContract& oReader)
{
    guarded(kEjectPage, KEL_PARAMETERS(oReader), [&] {
        oReader.fComm().mscComm().Output("4");
        Sleep(100);
    });
}

} // namespace kel
