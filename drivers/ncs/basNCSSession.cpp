// SPDX-License-Identifier: MIT
#include "drivers/ncs/basNCS.h"

#include "contract/clsKELReaderPrinter.h"
#include "drivers/common/Dialogue.h"
#include "failure/basError.h"
#include "failure/guarded.h"
#include "platform/Platform.h"
#include "types/Text.h"

#include <array>

namespace kel {

namespace {

constexpr const char* kInitReader = "KELReader81 - basNCS.InitReaderNCS";
constexpr const char* kCloseReader = "KELReader81 - basNCS.CloseReaderNCS";
constexpr const char* kCheckStatus = "KELReader81 - basNCS.CheckStatusNCS";
constexpr const char* kGetScanMode = "KELReader81 - basNCS.GetScanModeNCS";
constexpr const char* kSetScanMode = "KELReader81 - basNCS.SetScanModeNCS";
constexpr const char* kPrint = "KELReader81 - basNCS.PrintNCS";
constexpr const char* kRejectPage = "KELReader81 - basNCS.RejectPageNCS";
constexpr const char* kEjectPage = "KELReader81 - basNCS.EjectPageNCS";

constexpr const char* kStart = "\x11";
constexpr const char* kEject = "\x12";
constexpr const char* kReject = "\x1B\x12";
constexpr const char* kEndOfField = "\x04";
constexpr const char* kEndWithoutFeeder = "\x0E";

// The report on "s0"
constexpr Int32 kReportLength = 51;
constexpr std::size_t kReportDriverStatus = 34;
constexpr std::size_t kReportScanMode = 48;
// The report on "s1"
constexpr Int32 kStatusLength = 4;
constexpr std::size_t kStatusMost = 5;

constexpr Int32 kMostPolls = 10;

// By scan mode; none has no letter.
constexpr std::array<const char*, 7> kModeLetters = {"", "i", "e", "t", "d", "w", "s"};

struct StatusFault {
    std::size_t byte;
    int bit;
    TextNumber message;
    TextNumber title;
};

// Only the first that is set is reported.
constexpr StatusFault kStatusFaults[] = {{1, 0x02, text::kNcsFaultByte1Bit02, text::kNcsFaultByte1Bit02Title},
                                         {1, 0x01, text::kNcsFaultByte1Bit01, text::kNcsFaultByte1Bit01Title},
                                         {2, 0x08, text::kNcsFaultByte2Bit08, text::kReaderFaultTitle},
                                         {2, 0x04, text::kNcsFaultByte2Bit04, text::kNcsFaultByte2Bit04Title}};

// Of the session of this thread: the reader's driver status letter, and the scan mode found at the start.
thread_local std::string sNCSAsyncCommDriverStatus;
thread_local eScanMode eNCSScanMode = eScanModeNone;

constexpr std::size_t kReportMost = 200;
using ReportBytes = std::array<Byte, kReportMost + 1>;

/// Takes a report byte by byte, up to so many bytes; what does not come stays as it is.
void takeReport(ReaderContract& oReader, ReportBytes& bDataArr, std::size_t& lIndex, std::size_t most)
{
    oReader.fComm().mscComm().InputLen(1);
    for (lIndex = 0; lIndex < most && oReader.fComm().mscComm().InBufferCount() > 0; ++lIndex) {
        const std::string sTaken = oReader.fComm().mscComm().Input();
        if (!sTaken.empty())
            bDataArr[lIndex] = static_cast<Byte>(sTaken.front());
    }
}

/// Sends a query and waits until its report is there; the stop flag is not looked at.
bool query(ReaderContract& oReader, const char* command, Int32 length, const char* source)
{
    drainInput(oReader);
    oReader.fComm().mscComm().Output(command);
    if (waitForReply(oReader, {.minimumCount = length, .cancellable = false}) == Wait::Reply)
        return true;
    reportNumberedFault(source, text::kNcsStateUnanswered, text::kNotAnsweringTitle);
    return false;
}

/// Any mode is reached by way of "w" alone.
bool changeMode(ReaderContract& oReader, eScanMode eMode)
{
    return SetScanModeNCS(oReader, eScanModeW) && SetScanModeNCS(oReader, eMode);
}

} // namespace

Boolean InitReaderNCS(ReaderContract& oReader)
{
    Boolean bResult = False;
    eScanMode eMode = eScanModeNone;
    Int32 lIndex = 0;
    guarded(kInitReader, KEL_PARAMETERS(oReader) + KEL_LOCALS(eMode, lIndex), [&] {
        sNCSAsyncCommDriverStatus.clear();
        eNCSScanMode = eScanModeNone;
        if (!GetScanModeNCS(oReader, eNCSScanMode))
            return;
        if (eNCSScanMode != eScanModeI) {
            if (!changeMode(oReader, eScanModeI))
                return;
            for (lIndex = 0; eMode != eScanModeI; ++lIndex) {
                if (!GetScanModeNCS(oReader, eMode))
                    return;
                if (lIndex > kMostPolls) {
                    reportNumberedFault(kInitReader, text::kNcsStateUnanswered, text::kNotAnsweringTitle);
                    return;
                }
            }
        }
        oReader.fComm().mscComm().Output("r");
        bResult = True;
    });
    return bResult;
}

Boolean CloseReaderNCS(ReaderContract& oReader)
{
    Boolean bResult = False;
    guarded(kCloseReader, KEL_PARAMETERS(oReader), [&] {
        if (oReader.SleepTime() < 1)
            oReader.SleepTime(50);
        Sleep(checkedMultiply(oReader.SleepTime(), 2));
        if (!oReader.Feeder())
            oReader.fComm().mscComm().Output(kEndWithoutFeeder);
        switch (eNCSScanMode) {
        case eScanModeE:
        case eScanModeT:
        case eScanModeD:
        case eScanModeS:
            Sleep(checkedMultiply(oReader.SleepTime(), 2));
            if (!changeMode(oReader, eNCSScanMode))
                return;
            break;
        default: break;
        }
        bResult = True;
    });
    return bResult;
}

Boolean CheckStatusNCS(ReaderContract& oReader)
{
    Boolean bResult = False;
    ReportBytes bDataArr{};
    std::size_t lIndex = 0;
    bool bNeedsEject = false;
    guarded(kCheckStatus, KEL_PARAMETERS(oReader) + KEL_LOCALS(bDataArr, lIndex, bNeedsEject), [&] {
        if (!query(oReader, "s1", kStatusLength, kCheckStatus))
            return;
        takeReport(oReader, bDataArr, lIndex, kStatusMost);
        if ((((bDataArr[1] & 3) | bDataArr[2]) & 15) == 0) {
            bResult = True;
            return;
        }
        for (const StatusFault& fault : kStatusFaults) {
            if (!(bDataArr[fault.byte] & fault.bit))
                continue;
            reportNumberedFault(kCheckStatus, fault.message, fault.title);
            bNeedsEject = true;
            break;
        }
        if (oReader.Rejecter() && bNeedsEject)
            RejectPageNCS(oReader);
    });
    return bResult;
}

Boolean GetScanModeNCS(ReaderContract& oReader, kel::eScanMode& eScanMode)
{
    Boolean bResult = False;
    ReportBytes bDataArr{};
    std::size_t lIndex = 0;
    std::string sLetter;
    guarded(kGetScanMode, KEL_PARAMETERS(oReader, eScanMode) + KEL_LOCALS(bDataArr, lIndex, sLetter), [&] {
        if (!query(oReader, "s0", kReportLength, kGetScanMode))
            return;
        takeReport(oReader, bDataArr, lIndex, kReportMost);
        sNCSAsyncCommDriverStatus = upperCase(Chr(bDataArr[kReportDriverStatus]));
        sLetter = lowerCase(Chr(bDataArr[kReportScanMode]));
        for (Int32 lMode = eScanModeI; lMode <= eScanModeS; ++lMode) {
            if (sLetter == kModeLetters[static_cast<std::size_t>(lMode)])
                eScanMode = static_cast<kel::eScanMode>(lMode);
        }
        drainInput(oReader);
        bResult = True;
    });
    return bResult;
}

Boolean SetScanModeNCS(ReaderContract& oReader, kel::eScanMode eScanMode)
{
    Boolean bResult = False;
    std::string sCmd;
    guarded(kSetScanMode, KEL_PARAMETERS(oReader, eScanMode) + KEL_LOCALS(sCmd), [&] {
        drainInput(oReader);
        if (eScanMode == eScanModeNone) {
            reportNumberedFault(kSetScanMode, text::kNcsScanModeUnknown, text::kNcsScanModeUnknownTitle);
            return;
        }
        sCmd = "e";
        if (eScanMode >= eScanModeI && eScanMode <= eScanModeS)
            sCmd += kModeLetters[static_cast<std::size_t>(eScanMode)];
        oReader.fComm().mscComm().Output(sCmd + kEndOfField);
        Sleep(200);
        if (sNCSAsyncCommDriverStatus.starts_with('A') || sNCSAsyncCommDriverStatus.starts_with('I'))
            oReader.fComm().mscComm().Output(kStart);
        drainInput(oReader);
        bResult = True;
    });
    return bResult;
}

Boolean PrintNCS(ReaderContract& oReader)
{
    Boolean bResult = False;
    guarded(kPrint, KEL_PARAMETERS(oReader), [&] {
        if (oReader.Printer().isNothing())
            return;
        oReader.fComm().mscComm().Output("1" + formatZeros(oReader.Printer()->Distance(), 2) + kEndOfField);
        oReader.fComm().mscComm().Output("2" + oReader.Printer()->Buffer1() + " " + kEndOfField);
        bResult = True;
    });
    return bResult;
}

void RejectPageNCS(ReaderContract& oReader)
{
    guarded(kRejectPage, KEL_PARAMETERS(oReader), [&] { oReader.fComm().mscComm().Output(kReject); });
}

void EjectPageNCS(ReaderContract& oReader)
{
    guarded(kEjectPage, KEL_PARAMETERS(oReader), [&] { oReader.fComm().mscComm().Output(kEject); });
}

} // namespace kel
