// SPDX-License-Identifier: MIT
#include "drivers/scantron/basScantron.h"

#include "contract/clsKELReaderPrinter.h"
#include "drivers/common/Dialogue.h"
#include "drivers/scantron/FormCommands.h"
#include "failure/ReportedText.h"
#include "failure/basError.h"
#include "failure/guarded.h"
#include "platform/Platform.h"
#include "types/Text.h"

#include <array>

namespace kel {

namespace {

constexpr const char* kInitReader = "KELReader81 - basScantron.InitReaderST";
constexpr const char* kCloseReader = "KELReader81 - basScantron.CloseReaderST";
constexpr const char* kResetReader = "KELReader81 - basScantron.ResetReaderST";
constexpr const char* kSendCommand = "KELReader81 - basScantron.SendCommandST";
constexpr const char* kCheckStatus = "KELReader81 - basScantron.CheckStatusST";
constexpr const char* kCheckStatusMisspelt = "KELReader81 - basScantron.heckStatusST";
constexpr const char* kPrint = "KELReader81 - basScantron.PrintST";
constexpr const char* kRejectPage = "KELReader81 - basScantron.RejectPageST";

constexpr std::size_t kStatusLength = 12;
// Bits of the status block's position 9
constexpr Int16 kStatusFault40 = 0x40;
constexpr Int16 kStatusFault10 = 0x10;
constexpr Int16 kStatusSheet = 0x01;

constexpr Int32 kLongestPrint = 125;

/// What the 12 characters of a status block say; position 1 is the first.
ScantronReady judgeStatus(const std::string& sStatus, Int16& iPos8)
{
    const char position2 = sStatus[1];
    const char position3 = sStatus[2];
    if (position2 == '1' && position3 == ' ')
        reportReaderFault(kCheckStatusMisspelt, text::kStFault1, text::kNotReadyTitle);
    else if (position2 == '2') {
        const ReportedText reported(text::kStFaultOfStatus);
        reportReaderFault(kCheckStatus, VBLM_RTString(text::kStFaultOfStatus) + CStr(Int32{position2}),
                          VBLM_RTString(text::kStStatusTitle));
    }
    if (position2 != '0')
        return ScantronReady::Fault;

    iPos8 = Asc(Mid(sStatus, 9, 1));
    if (iPos8 & kStatusFault40) {
        reportReaderFault(kCheckStatus, text::kStFaultBit40, text::kReaderFaultTitle);
        return ScantronReady::Fault;
    }
    if (iPos8 & kStatusFault10) {
        reportReaderFault(kCheckStatus, text::kStFaultBit10, text::kStFaultBit10Title);
        return ScantronReady::Fault;
    }
    return iPos8 & kStatusSheet ? ScantronReady::Sheet : ScantronReady::NoSheet;
}

} // namespace

Boolean InitReaderST(ReaderContract& oReader)
{
    Boolean bResult = False;
    guarded(kInitReader, KEL_PARAMETERS(oReader), [&] {
        if (!ResetReaderST(oReader))
            return;
        if (DownloadFormST(oReader))
            bResult = True;
        else
            ResetReaderST(oReader);
    });
    return bResult;
}

Boolean CloseReaderST(ReaderContract& oReader)
{
    Boolean bResult = False;
    guarded(kCloseReader, KEL_PARAMETERS(oReader), [&] { bResult = ResetReaderST(oReader); });
    return bResult;
}

Boolean ResetReaderST(ReaderContract& oReader)
{
    Boolean bResult = False;
    std::string sCmd;
    ReplyBytes reply;
    guarded(kResetReader, KEL_PARAMETERS(oReader) + KEL_LOCALS(sCmd, reply), [&] {
        if (!oReader.fComm().mscComm().PortOpen()) {
            bResult = True;
            return;
        }
        sCmd = frameST("SRST");
        oReader.fComm().mscComm().Output(sCmd);
        switch (waitForReply(oReader)) {
        case Wait::Cancelled: return;
        case Wait::TimedOut: reportReaderFault(kResetReader, text::kStUnanswered, text::kNotAnsweringTitle); return;
        case Wait::Reply: break;
        }
        collectBytes(oReader, reply);
        if (reply.sData.starts_with('\r'))
            bResult = True;
        else
            reportReaderFault(kResetReader, text::kStResetUnconfirmed, text::kStResetTitle);
    });
    return bResult;
}

Boolean SendCommandST(ReaderContract& oReader, const std::string& sCmd)
{
    Boolean bResult = False;
    std::string sData;
    guarded(kSendCommand, KEL_PARAMETERS(oReader, sCmd) + KEL_LOCALS(sData), [&] {
        oReader.fComm().mscComm().Output(sCmd);
        if (waitForReply(oReader) != Wait::Reply)
            return;
        collectText(oReader, sData);
        bResult = sData.starts_with('\r');
    });
    return bResult;
}

ScantronReady CheckStatusST(ReaderContract& oReader)
{
    ScantronReady eReady = ScantronReady::Fault;
    std::string sCmd;
    std::string sStatus;
    std::array<Byte, 1> bDataArr{};
    Int16 iPos8 = 0;
    guarded(kCheckStatus, KEL_PARAMETERS(oReader) + KEL_LOCALS(sCmd, sStatus, bDataArr, iPos8), [&] {
        sCmd = frameST("QSTS");
        oReader.fComm().mscComm().Output(sCmd);
        switch (waitForReply(oReader)) {
        case Wait::Cancelled: return;
        case Wait::TimedOut: reportReaderFault(kCheckStatus, text::kStUnanswered, text::kNotReadyTitle); return;
        case Wait::Reply: break;
        }

        // The block has one whole time-out of its own, and the stop flag is not looked at any more.
        oReader.fComm().tmrScan().Enabled(True);
        oReader.fComm().mscComm().InputLen(1);
        while (sStatus.size() < kStatusLength) {
            DoEvents();
            if (oReader.fComm().mscComm().InBufferCount() > 0) {
                bDataArr[0] = takeByte(oReader);
                sStatus += static_cast<char>(bDataArr[0]);
            }
            if (!oReader.fComm().tmrScan().Enabled()) {
                reportReaderFault(kCheckStatus, text::kStUnanswered, text::kNotReadyTitle);
                return;
            }
        }
        oReader.fComm().tmrScan().Enabled(False);
        eReady = judgeStatus(sStatus, iPos8);
    });
    return eReady;
}

void ClearBufferST(ReaderContract& oReader)
{
    ignoringFailures([&] { drainInput(oReader); });
}

Boolean PrintST(ReaderContract& oReader)
{
    Boolean bResult = False;
    std::string sText;
    guarded(kPrint, KEL_PARAMETERS(oReader) + KEL_LOCALS(sText), [&] {
        sText = Space(oReader.Printer()->Distance()) + oReader.Printer()->Buffer1();
        bResult = SendCommandST(oReader, frameST("PRN$ 1 Y " + Left(sText, kLongestPrint)));
    });
    return bResult;
}

Boolean RejectPageST(ReaderContract& oReader, Boolean bRejectHopper)
{
    Boolean bResult = False;
    std::string sCmd;
    bool bRejected = false;
    guarded(kRejectPage, KEL_PARAMETERS(oReader, bRejectHopper) + KEL_LOCALS(sCmd, bRejected), [&] {
        if (bRejectHopper) {
            oReader.fComm().mscComm().Output(frameST("PRN$ 1 N "));
            sCmd = frameST("EJCT C");
            bRejected = true;
        } else {
            sCmd = frameST("EJCT A ");
        }
        oReader.fComm().mscComm().Output(sCmd);
        switch (waitForReply(oReader)) {
        case Wait::Cancelled: return;
        case Wait::TimedOut: reportReaderFault(kRejectPage, text::kStRejectUnanswered, text::kStRejectTitle); return;
        case Wait::Reply: break;
        }
        oReader.fComm().mscComm().InputLen(1);
        ClearBufferST(oReader);
        if (bRejected)
            Sleep(checkedMultiply(oReader.SleepTime(), 15));
        bResult = bRejected;
    });
    return bResult;
}

} // namespace kel
