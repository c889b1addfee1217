// SPDX-License-Identifier: MIT
#include "drivers/chatsworth/basChatsworth.h"

#include "drivers/chatsworth/Models.h"
#include "drivers/common/Dialogue.h"
#include "drivers/common/PackedMarks.h"
#include "failure/basError.h"
#include "failure/guarded.h"
#include "platform/Platform.h"

#include <array>
#include <utility>

namespace kel {

namespace {

constexpr const char* kInitReader = "KELReader81 - basChatsworth.InitReaderCT";
constexpr const char* kReadPage = "KELReader81 - basChatsworth.ReadPageCT";
constexpr const char* kRejectPage = "KELReader81 - basChatsworth.RejectPageCT";

constexpr const char* kProbe = "\x12R7777I00E";
constexpr const char* kStartOfSheet = "\x11";
// The reply to "F" that lets a sheet come; one that sorts after it refuses.
constexpr std::string_view kSheetFed = "0\r";

constexpr Int32 kMostRows = 128;

const ModelCT& modelOf(const ReaderContract& oReader)
{
    return modelCT(oReader.ReaderType());
}

/// The last command of a procedure, and what has come upon it.
struct ExchangeCT {
    std::string sCmd;
    std::string sData;

    KEL_TELLS(sCmd, sData)
};

void send(ReaderContract& oReader, ExchangeCT& exchange, std::string sCmd)
{
    exchange = {.sCmd = std::move(sCmd), .sData = {}};
    oReader.fComm().mscComm().Output(exchange.sCmd);
}

/// A command of the set-up and of the feeder: ESC letters CR.
void sendCommand(ReaderContract& oReader, ExchangeCT& exchange, const std::string& letters)
{
    send(oReader, exchange, "\x1B" + letters + "\r");
}

/// Takes and drops characters until a CR comes. Only the time-out ends this, and where it is asked to, the stop flag.
Wait waitForCarriageReturn(ReaderContract& oReader, std::string& sData, bool bCancellable)
{
    oReader.fComm().tmrScan().Enabled(True);
    while (sData != "\r") {
        DoEvents();
        if (bCancellable && oReader.CancelScan())
            return Wait::Cancelled;
        if (oReader.fComm().mscComm().InBufferCount() > 0)
            sData = oReader.fComm().mscComm().Input();
        if (!oReader.fComm().tmrScan().Enabled())
            return Wait::TimedOut;
    }
    oReader.fComm().tmrScan().Enabled(False);
    return Wait::Reply;
}

bool setUp(ReaderContract& oReader, ExchangeCT& exchange, const char* letters)
{
    sendCommand(oReader, exchange, letters);
    if (waitForCarriageReturn(oReader, exchange.sData, false) == Wait::Reply)
        return true;
    reportNumberedFault(kInitReader, text::kCtSetUpUnanswered, text::kNotAnsweringTitle);
    return false;
}

/// The reply to 0x11 is the sheet itself; the stop flag is not looked at.
bool startByByte(ReaderContract& oReader, ExchangeCT& exchange)
{
    send(oReader, exchange, kStartOfSheet);
    if (waitForReply(oReader, {.cancellable = false}) == Wait::Reply)
        return true;
    reportNumberedFault(kReadPage, text::kCtSheetNotSent, text::kCtNoSheetTitle);
    return false;
}

bool startFramed(ReaderContract& oReader, ExchangeCT& exchange)
{
    send(oReader, exchange, frameCommand("E"));
    const Wait wait = waitForCarriageReturn(oReader, exchange.sData, true);
    if (wait == Wait::TimedOut)
        reportNumberedFault(kReadPage, text::kReadUnanswered, text::kNotAnsweringTitle);
    return wait == Wait::Reply;
}

/// Feeds a sheet. The reply is taken up to its CR and not one character more; a refusal is not reported.
bool startFed(ReaderContract& oReader, ExchangeCT& exchange)
{
    sendCommand(oReader, exchange, "F");
    oReader.fComm().tmrScan().Enabled(True);
    std::string& sData = exchange.sData;
    while (!sData.ends_with('\r')) {
        DoEvents();
        if (oReader.fComm().mscComm().InBufferCount() > 0)
            sData += oReader.fComm().mscComm().Input();
        if (!oReader.fComm().tmrScan().Enabled()) {
            reportNumberedFault(kReadPage, text::kReadUnanswered, text::kNotAnsweringTitle);
            return false;
        }
    }
    oReader.fComm().tmrScan().Enabled(False);
    return sData <= kSheetFed;
}

bool startSheet(ReaderContract& oReader, ExchangeCT& exchange, SheetStartCT eStart)
{
    switch (eStart) {
    case SheetStartCT::Byte11: return startByByte(oReader, exchange);
    case SheetStartCT::Framed: return startFramed(oReader, exchange);
    case SheetStartCT::Feed: return !oReader.Feeder() || startFed(oReader, exchange);
    case SheetStartCT::None: break;
    }
    return true;
}

} // namespace

Boolean InitReaderCT(ReaderContract& oReader)
{
    Boolean bResult = False;
    ExchangeCT exchange;
    guarded(kInitReader, KEL_PARAMETERS(oReader) + KEL_LOCALS(exchange), [&] {
        oReader.fComm().mscComm().InputLen(1);
        drainInput(oReader);
        if (const auto& commands = oReader.Feeder() ? modelOf(oReader).feeder : modelOf(oReader).singleSheets) {
            if (!setUp(oReader, exchange, commands->first) || !setUp(oReader, exchange, commands->second))
                return;
            Sleep(oReader.SleepTime());
        }
        if (modelOf(oReader).probed)
            send(oReader, exchange, kProbe);
        bResult = True;
    });
    return bResult;
}

Boolean ReadPageCT(ReaderContract& oReader)
{
    Boolean bResult = False;
    bool bPageRead = false;
    std::array<Byte, 1> bTempArr{};
    Byte iTemp = 0;
    ExchangeCT exchange;
    PackedRows page;
    const bool& iRightByte = page.isAtRowStart();
    const auto variables = KEL_PARAMETERS(oReader) + KEL_LOCALS(page, iRightByte, bPageRead, iTemp, bTempArr, exchange);
    guarded(kReadPage, variables, [&] {
        drainInput(oReader);
        oReader.fComm().mscComm().InputLen(1);
        page = PackedRows(kMostRows, checkedAdd(oReader.RecognitionThreshold(), 1));
        if (!startSheet(oReader, exchange, modelOf(oReader).start))
            return;

        while (!bPageRead) {
            DoEvents();
            if (modelOf(oReader).cancellable && oReader.CancelScan())
                return;
            if (oReader.fComm().mscComm().InBufferCount() == 0)
                continue;
            bTempArr[0] = takeByte(oReader);
            iTemp = bTempArr[0];
            if (iTemp == kSheetEnd)
                bPageRead = true;
            else if (iTemp == modelOf(oReader).refusal)
                return;
            else
                page.take(iTemp);
        }
        oReader.Side1TimingMarks(page.completeRows());
        oReader.Side1Array(page.marks());
        bResult = True;
    });
    return bResult;
}

Boolean RejectPageCT(ReaderContract& oReader, Boolean bRejectHopper)
{
    Boolean bResult = False;
    ExchangeCT exchange;
    guarded(kRejectPage, KEL_PARAMETERS(oReader, bRejectHopper) + KEL_LOCALS(exchange), [&] {
        send(oReader, exchange, frameCommand(bRejectHopper ? "EF" : "ER"));
        if (waitForReply(oReader, {.cancellable = false}) != Wait::Reply) {
            reportNumberedFault(kRejectPage, text::kCtRejectUnanswered, text::kNotAnsweringTitle);
            return;
        }
        collectText(oReader, exchange.sData, {.pauseWhenEmpty = true});
        bResult = exchange.sData.find('\r') != std::string::npos;
    });
    return bResult;
}

} // namespace kel
