#include "drivers/apperson/AppersonDialogue.h"
#include "drivers/apperson/KeyEncoding.h"
#include "drivers/apperson/basApperson.h"
#include "failure/guarded.h"
#include "platform/Platform.h"
#include "types/Text.h"

namespace kel {

namespace {

constexpr const char* kKeyReader = "KELReader81 - basApperson.KeyReaderBenchMark3000Advantage1200";
constexpr Int32 kPauseBetweenPieces = 10;

/// The identifiers of the form's pages; of a form without one the first is failure 9.
TextArray formIDs(const AnswerKeyObject& oAnswerKey)
{
    return TextArray::of(0, split(oAnswerKey.FormIDs(), ','));
}

/// A second page without right answers is left out.
void dropUnusedSecondPage(ReaderContract& oReader, EncodedKeyAP& key, TextArray& sFormIDArr)
{
    Int16 iPage = 1;
    Int16 iNumberQuestions = 0;
    oReader.GetQuestionsOnPageEvent(iPage, iNumberQuestions);
    if (needsSimplexKeyAP(key, iNumberQuestions)) {
        cutToFirstPageAP(key, iNumberQuestions);
        sFormIDArr.ReDimPreserve(0);
    }
}

/// The reader's "OK" to the pieces is not awaited here: after the last version the caller does, after the others the
/// next exchange takes it for its own.
void sendPieces(ReaderContract& oReader, const std::string& sKey)
{
    bool bFirst = true;
    for (const std::string& sPiece : keyPiecesAP(sKey)) {
        if (!bFirst)
            Sleep(kPauseBetweenPieces);
        bFirst = false;
        oReader.fComm().mscComm().Output(sPiece);
    }
}

} // namespace

Boolean KeyReaderBenchMark3000Advantage1200(ReaderContract& oReader)
{
    Boolean bResult = False;
    Reference<AnswerKeyObject> oAnswerKey;
    TextArray sFormIDArr;
    Int32 lKeyCtr = 0;
    guarded(kKeyReader, KEL_PARAMETERS(oReader) + KEL_LOCALS(oAnswerKey, sFormIDArr, lKeyCtr), [&] {
        const auto tell = [&](const std::string& scmd) { return exchangeAP(oReader, kKeyReader, scmd); };
        const auto isAdvantage1200 = [&] { return oReader.ReaderType() == kelReaderTypeAppersonAdvantage1200; };
        oAnswerKey = oReader.AnswerKey();
        sFormIDArr = formIDs(*oAnswerKey);
        EncodedKeyAP key = encodeKeyAP(*oAnswerKey, isAdvantage1200() ? AnswerCodeAP::Digits : AnswerCodeAP::Mask);
        if (sFormIDArr.UBound() > 0)
            dropUnusedSecondPage(oReader, key, sFormIDArr);

        for (lKeyCtr = 1; lKeyCtr <= key.iNumKeys; ++lKeyCtr) {
            if (key.iNumKeys > 1 && !tell("S" + CStr(lKeyCtr)))
                return;
            if (isAdvantage1200() && compareNoCase(key.sEssayScore, "0000") > 0)
                oReader.fComm().mscComm().Output("E9" + key.sEssayScore);
            oReader.fComm().mscComm().Output("K7" + sFormIDArr(0));
            if (isAdvantage1200() && !awaitOKAP(oReader, kKeyReader))
                return;
            if (sFormIDArr.UBound() > 0 && oAnswerKey->NumberOfPages() == 2 && !tell("K8" + sFormIDArr(1)))
                return;
            if (!tell("K1"))
                return;
            sendPieces(oReader, key.sKeyStrArr(lKeyCtr));
        }
        if (!awaitOKAP(oReader, kKeyReader))
            return;
        bResult = tell("K6");
    });
    return bResult;
}

} // namespace kel
