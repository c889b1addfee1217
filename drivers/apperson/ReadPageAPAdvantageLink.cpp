#include "drivers/apperson/AppersonDialogue.h"
#include "drivers/apperson/basApperson.h"
#include "failure/basError.h"
#include "failure/guarded.h"
#include "types/Text.h"

namespace kel {

namespace {

constexpr const char* kReadPage = "KELReader81 - basApperson.ReadPageAPAdvantageLink";

/// Sends a command and collects the reader's reply. False when none came or the stop flag was set.
bool ask(ReaderContract& oReader, std::string_view scmd, std::string& sData)
{
    oReader.fComm().mscComm().Output(scmd);
    if (waitForReply(oReader) != Wait::Reply)
        return false;
    sData = collectText(oReader, kReplyRulesAP);
    return true;
}

void reportAndDrain(ReaderContract& oReader, Int16 iErrCode)
{
    reportNumberedFault(kReadPage, iErrCode, ReturnErrorAP(iErrCode), VBLM_RTString(text::kApReaderErrorTitle));
    drainInputWithPauses(oReader);
}

} // namespace

Boolean ReadPageAPAdvantageLink(ReaderContract& oReader)
{
    Boolean bResult = False;
    MarkArray iSide1Arr;
    std::string sData;
    Int16 iErrCode = 0;
    RawBlockAP block = newBlockAdvantageLinkAP();
    guarded(kReadPage, KEL_PARAMETERS(oReader) + KEL_LOCALS(block, iErrCode, iSide1Arr, sData), [&] {
        if (!ask(oReader, "FB\r", sData) || !isOKAP(sData))
            return;

        oReader.fComm().mscComm().Output("FD\r");
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

        if (!ask(oReader, "FE\r", sData))
            return;
        if (!isOKAP(sData)) {
            iErrCode = Asc(sData);
            reportAndDrain(oReader, iErrCode);
            return;
        }
        oReader.Side1Array(iSide1Arr);
        bResult = True;
    });
    return bResult;
}

} // namespace kel
