// SPDX-License-Identifier: MIT
#include "drivers/apperson/AppersonDialogue.h"
#include "drivers/apperson/ErrorTexts.h"
#include "drivers/apperson/basApperson.h"
#include "failure/ReportedText.h"
#include "failure/basError.h"
#include "failure/guarded.h"
#include "types/Text.h"

namespace kel {

namespace {

constexpr const char* kReadPageAPAdvantageLink = "KELReader81 - basApperson.ReadPageAPAdvantageLink";

/// Sends a command and collects the reader's reply. False when none came or the stop flag was set.
bool ask(ReaderContract& oReader, ExchangeAP& exchange, std::string_view scmd)
{
    exchange.scmd = scmd;
    oReader.fComm().mscComm().Output(exchange.scmd);
    if (waitForReply(oReader) != Wait::Reply)
        return false;
    collectBytes(oReader, exchange.reply, kReplyRulesAP);
    return true;
}

void reportAndDrain(ReaderContract& oReader, Int16 iErrCode)
{
    const ReportedText reported(errorTextAP(iErrCode));
    reportNumberedFault(kReadPageAPAdvantageLink, iErrCode, ReturnErrorAP(iErrCode),
                        VBLM_RTString(text::kApReaderErrorTitle));
    drainInputWithPauses(oReader);
}

} // namespace

Boolean ReadPageAPAdvantageLink(ReaderContract& oReader)
{
    Boolean bResult = False;
    MarkArray iSide1Arr;
    ExchangeAP exchange;
    Int16 iErrCode = 0;
    RawBlockAP block = newBlockAdvantageLinkAP();
    guarded(kReadPageAPAdvantageLink, KEL_PARAMETERS(oReader) + KEL_LOCALS(exchange, block, iErrCode, iSide1Arr), [&] {
        if (!ask(oReader, exchange, "FB\r") || !isOKAP(exchange.reply.sData))
            return;

        exchange.scmd = "FD\r";
        oReader.fComm().mscComm().Output(exchange.scmd);
        oReader.fComm().mscComm().InputLen(1);
        if (!collectBlockAP(oReader, block))
            return;
        if (block.status() != kStatusAdvantageLinkAP) {
            iErrCode = block.status();
            reportAndDrain(oReader, iErrCode);
            return;
        }
        iSide1Arr.ReDim(oReader.LargestSide1Rows(), oReader.LargestSide1Cols());
        setMarksAdvantageLinkAP(iSide1Arr, block);

        if (!ask(oReader, exchange, "FE\r"))
            return;
        if (!isOKAP(exchange.reply.sData)) {
            iErrCode = Asc(exchange.reply.sData);
            reportAndDrain(oReader, iErrCode);
            return;
        }
        oReader.Side1Array(iSide1Arr);
        bResult = True;
    });
    return bResult;
}

} // namespace kel
