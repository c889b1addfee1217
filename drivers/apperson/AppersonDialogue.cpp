// SPDX-License-Identifier: MIT
#include "drivers/apperson/AppersonDialogue.h"

#include "failure/basError.h"
#include "platform/Platform.h"

namespace kel {

constinit thread_local Boolean bAPReaderStarted = False;

namespace {

void reportNoReply(const char* source, const ExchangeFaultsAP& faults)
{
    if (faults.timedOut)
        reportNumberedFault(source, *faults.timedOut, text::kNotReadyTitle);
    else
        reportReaderFault(source, "There was no response from Apperson scanner while initializing.",
                          "Initialize Error");
}

} // namespace

bool isOKAP(std::string_view sData)
{
    return sData.starts_with("OK");
}

bool awaitOKAP(ReaderContract& oReader, const char* source, ExchangeAP& exchange, const ExchangeFaultsAP& faults,
               CollectRules rules)
{
    switch (waitForReply(oReader)) {
    case Wait::Cancelled: reportNumberedFault(source, faults.cancelled, text::kNotReadyTitle); return false;
    case Wait::TimedOut: reportNoReply(source, faults); return false;
    case Wait::Reply: break;
    }
    collectBytes(oReader, exchange.reply, rules);
    if (isOKAP(exchange.reply.sData))
        return true;
    reportNumberedFault(source, faults.refused, text::kNotReadyTitle);
    return false;
}

bool exchangeAP(ReaderContract& oReader, const char* source, ExchangeAP& exchange, std::string_view scmd,
                const ExchangeFaultsAP& faults, CollectRules rules)
{
    exchange.scmd = scmd;
    oReader.fComm().mscComm().Output(exchange.scmd);
    return awaitOKAP(oReader, source, exchange, faults, rules);
}

bool collectBlockAP(ReaderContract& oReader, RawBlockAP& block)
{
    while (!block.isComplete()) {
        DoEvents();
        if (oReader.CancelScan())
            return false;
        if (oReader.fComm().mscComm().InBufferCount() > 0)
            block.take(takeByte(oReader));
    }
    return true;
}

} // namespace kel
