// SPDX-License-Identifier: MIT
#include "drivers/apperson/basApperson.h"

#include "contract/AnswerKeyObject.h"
#include "drivers/apperson/AppersonDialogue.h"
#include "drivers/apperson/ErrorTexts.h"
#include "failure/basError.h"
#include "failure/guarded.h"

namespace kel {

namespace {

constexpr const char* kInitReader = "KELReader81 - basApperson.InitReaderAP";
constexpr const char* kCloseReader = "KELReader81 - basApperson.CloseReaderAP";
constexpr const char* kReturnError = "KELReader81 - basApperson.ReturnErrorAP";
constexpr const char* kReadPageAP = "KELReader81 - basApperson.ReadPageAP";
constexpr const char* kRejectPage = "KELReader81 - basApperson.RejectPageAP";
constexpr const char* kEjectPage = "KELReader81 - basApperson.EjectPageAP";

// The steps of the start whose failures have other texts than the usual.
constexpr ExchangeFaultsAP kDoNotGradeFaults = {.timedOut = std::nullopt};
constexpr ExchangeFaultsAP kSendToHostFaults = {.cancelled = text::kApSendToHostRefused,
                                                .refused = text::kApSendToHostRefused};
constexpr ExchangeFaultsAP kModeFaults = {.cancelled = text::kApSendToHostRefused};

constexpr Int32 kModeReplyLength = 4;

bool tell(ReaderContract& oReader, ExchangeAP& exchange, std::string_view scmd, const ExchangeFaultsAP& faults = {})
{
    return exchangeAP(oReader, kInitReader, exchange, scmd, faults);
}

bool isLineReader(kelReaderType eReaderType)
{
    return eReaderType == kelReaderTypeAppersonBenchMark3000 || eReaderType == kelReaderTypeAppersonAdvantage1200;
}

/// BenchMark 3000 and Advantage 1200: commands of two letters.
bool startLineReader(ReaderContract& oReader, ExchangeAP& exchange)
{
    if (!tell(oReader, exchange, "R1"))
        return false;
    if (oReader.AnswerKey() && !KeyReaderBenchMark3000Advantage1200(oReader))
        return false;
    if (!oReader.ReaderGrade() && !tell(oReader, exchange, "M6", kDoNotGradeFaults))
        return false;
    if (oReader.ReaderType() == kelReaderTypeAppersonBenchMark3000) {
        for (const char* scmd : {"I1", "A9", "R6", "S1"}) {
            if (!tell(oReader, exchange, scmd))
                return false;
        }
    }
    if (!tell(oReader, exchange, "M0"))
        return false;
    return oReader.ReaderType() != kelReaderTypeAppersonAdvantage1200 || tell(oReader, exchange, "M8");
}

/// Advantage Link and GradeMaster: their commands end in CR. This one has the marks sent to the host; nothing for the
/// other models.
const char* sendToHostCommand(kelReaderType eReaderType)
{
    switch (eReaderType) {
    case kelReaderTypeAppersonAdvantageLink: return "T1\r";
    case kelReaderTypeAppersonGradeMaster: return "A1\r";
    default: return nullptr;
    }
}

bool sendToHost(ReaderContract& oReader, ExchangeAP& exchange)
{
    if (oReader.ReaderGrade())
        return true;
    const char* scmd = sendToHostCommand(oReader.ReaderType());
    return scmd == nullptr || tell(oReader, exchange, scmd, kSendToHostFaults);
}

bool startGradeMaster(ReaderContract& oReader, ExchangeAP& exchange)
{
    if (!tell(oReader, exchange, "S8\r", kSendToHostFaults))
        return false;
    // What follows its "OK" is the beginning of the first block.
    CollectRules rules = kReplyRulesAP;
    rules.mostCharacters = kModeReplyLength;
    return exchangeAP(oReader, kInitReader, exchange, "M3\r", kModeFaults, rules);
}

const char* closeCommand(kelReaderType eReaderType)
{
    switch (eReaderType) {
    case kelReaderTypeAppersonAdvantageLink: return "T2\r";
    case kelReaderTypeAppersonGradeMaster: return "S9\r";
    case kelReaderTypeAppersonBenchMark3000:
    case kelReaderTypeAppersonAdvantage1200: return "R1";
    default: return "";
    }
}

} // namespace

Boolean InitReaderAP(ReaderContract& oReader)
{
    Boolean bResult = False;
    ExchangeAP exchange;
    guarded(kInitReader, KEL_PARAMETERS(oReader) + KEL_LOCALS(exchange), [&] {
        if (isLineReader(oReader.ReaderType()) && !startLineReader(oReader, exchange))
            return;
        if (!sendToHost(oReader, exchange))
            return;
        if (oReader.ReaderType() == kelReaderTypeAppersonGradeMaster && !startGradeMaster(oReader, exchange))
            return;
        bResult = True;
    });
    return bResult;
}

Boolean CloseReaderAP(ReaderContract& oReader)
{
    Boolean bResult = False;
    ExchangeAP exchange;
    guarded(kCloseReader, KEL_PARAMETERS(oReader) + KEL_LOCALS(exchange), [&] {
        bAPReaderStarted = False;
        exchange.scmd = closeCommand(oReader.ReaderType());
        oReader.fComm().mscComm().Output(exchange.scmd);
        if (waitForReply(oReader, {.cancellable = false}) != Wait::Reply) {
            reportNumberedFault(kCloseReader, text::kApCloseUnanswered, text::kNotAnsweringTitle);
            return;
        }
        collectBytes(oReader, exchange.reply);
        bResult = isOKAP(exchange.reply.sData);
    });
    return bResult;
}

std::string ReturnErrorAP(Int16 iErrCode)
{
    std::string sResult;
    guarded(kReturnError, KEL_PARAMETERS(iErrCode), [&] { sResult = VBLM_RTString(errorTextAP(iErrCode)); });
    return sResult;
}

Boolean ReadPageAP(ReaderContract& oReader)
{
    Boolean bResult = False;
    guarded(kReadPageAP, KEL_PARAMETERS(oReader), [&] {
        switch (oReader.ReaderType()) {
        case kelReaderTypeAppersonAdvantageLink: bResult = ReadPageAPAdvantageLink(oReader); break;
        case kelReaderTypeAppersonGradeMaster: bResult = ReadPageAPGradeMaster(oReader); break;
        case kelReaderTypeAppersonBenchMark3000: bResult = ReadPageAPBenchMarkAdvantage(oReader); break;
        case kelReaderTypeAppersonAdvantage1200: bResult = ReadPageAPAdvantage1200(oReader); break;
        default: break;
        }
    });
    return bResult;
}

Boolean RejectPageAP(ReaderContract& oReader)
{
    guarded(kRejectPage, KEL_PARAMETERS(oReader), [&] {
        if (oReader.ReaderType() == kelReaderTypeAppersonBenchMark3000)
            oReader.fComm().mscComm().Output("A7");
    });
    return False;
}

Boolean EjectPageAP(ReaderContract& oReader)
{
    guarded(kEjectPage, KEL_PARAMETERS(oReader), [&] {
        if (oReader.ReaderType() == kelReaderTypeAppersonBenchMark3000)
            oReader.fComm().mscComm().Output("A6");
    });
    return False;
}

} // namespace kel
