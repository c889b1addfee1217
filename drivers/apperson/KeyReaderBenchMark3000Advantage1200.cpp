// SPDX-License-Identifier: MIT
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

/// How the reader takes answers.
AnswerCodeAP answerCode(const ReaderContract& oReader)
{
    switch (oReader.ReaderType()) {
    case kelReaderTypeAppersonBenchMark3000: return AnswerCodeAP::Mask;
    case kelReaderTypeAppersonAdvantage1200: return AnswerCodeAP::Digits;
    default: return AnswerCodeAP::None;
    }
}

/// What is sent, and how far that has come.
struct KeyDownloadAP {
    TextArray sFormIDArr;
    EncodedKeyAP key;
    Int16 iNumberQuestions = 0;
    bool bNeedSimplexKey = false;
    Int32 lKeyCtr = 0;
    Int32 lKeyPosKeeper = 0;
    bool bKeyDoneTransmitting = false;

    KEL_TELLS(sFormIDArr, key, iNumberQuestions, bNeedSimplexKey, lKeyCtr, lKeyPosKeeper, bKeyDoneTransmitting)
};

/// A second page without right answers is left out.
void dropUnusedSecondPage(ReaderContract& oReader, KeyDownloadAP& download)
{
    Int16 iPage = 1;
    oReader.GetQuestionsOnPageEvent(iPage, download.iNumberQuestions);
    download.bNeedSimplexKey = needsSimplexKeyAP(download.key, download.iNumberQuestions);
    if (download.bNeedSimplexKey) {
        cutToFirstPageAP(download.key, download.iNumberQuestions);
        download.sFormIDArr.ReDimPreserve(0);
    }
}

/// The reader's "OK" to the pieces is not awaited here: after the last version the caller does, after the others the
/// next exchange takes it for its own.
void sendPieces(ReaderContract& oReader, KeyDownloadAP& download)
{
    download.bKeyDoneTransmitting = false;
    download.lKeyPosKeeper = 1;
    for (const std::string& sPiece : keyPiecesAP(download.key.sKeyStrArr(download.lKeyCtr))) {
        if (download.lKeyPosKeeper > 1)
            Sleep(kPauseBetweenPieces);
        oReader.fComm().mscComm().Output(sPiece);
        download.lKeyPosKeeper += kKeyPieceAP;
    }
    download.bKeyDoneTransmitting = true;
}

} // namespace

Boolean KeyReaderBenchMark3000Advantage1200(ReaderContract& oReader)
{
    Boolean bResult = False;
    Reference<AnswerKeyObject> oAnswerKey;
    KeyDownloadAP download;
    ExchangeAP exchange;
    guarded(kKeyReader, KEL_PARAMETERS(oReader) + KEL_LOCALS(oAnswerKey, download, exchange), [&] {
        const auto tell = [&](const std::string& scmd) { return exchangeAP(oReader, kKeyReader, exchange, scmd); };
        const auto send = [&](const std::string& scmd) {
            exchange.scmd = scmd;
            oReader.fComm().mscComm().Output(exchange.scmd);
        };
        const auto isAdvantage1200 = [&] { return oReader.ReaderType() == kelReaderTypeAppersonAdvantage1200; };
        const EncodedKeyAP& key = download.key;
        const TextArray& sFormIDArr = download.sFormIDArr;
        oAnswerKey = oReader.AnswerKey();
        download.sFormIDArr = formIDs(*oAnswerKey);
        encodeKeyAP(
            *oAnswerKey, [&] { return answerCode(oReader); }, download.key);
        if (sFormIDArr.UBound() > 0)
            dropUnusedSecondPage(oReader, download);

        for (download.lKeyCtr = 1; download.lKeyCtr <= key.iNumKeys; ++download.lKeyCtr) {
            if (key.iNumKeys > 1 && !tell("S" + CStr(download.lKeyCtr)))
                return;
            if (isAdvantage1200() && compareNoCase(key.sEssayScore, "0000") > 0)
                send("E9" + key.sEssayScore);
            send("K7" + sFormIDArr(0));
            if (isAdvantage1200() && !awaitOKAP(oReader, kKeyReader, exchange))
                return;
            if (sFormIDArr.UBound() > 0 && oAnswerKey->NumberOfPages() == 2 && !tell("K8" + sFormIDArr(1)))
                return;
            if (!tell("K1"))
                return;
            sendPieces(oReader, download);
        }
        if (!awaitOKAP(oReader, kKeyReader, exchange))
            return;
        bResult = tell("K6");
    });
    return bResult;
}

} // namespace kel
