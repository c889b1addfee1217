// SPDX-License-Identifier: MIT
#include "contract/clsKELReaderPrinter.h"
#include "drivers/common/Dialogue.h"
#include "drivers/scanning_systems/Framing.h"
#include "drivers/scanning_systems/basScanningSystems.h"
#include "failure/basError.h"
#include "failure/guarded.h"
#include "types/Text.h"

namespace kel {

namespace {

constexpr const char* kPrint = "KELReader81 - basScanningSystems.PrintSS";
constexpr const char* kRejectPage = "KELReader81 - basScanningSystems.RejectPageSS";
constexpr const char* kRejectPrint = "KELReader81 - basScanningSystems.RejectPrintSS";
// A print that was cancelled is reported under this procedure's name.
constexpr const char* kCancelledPrint = "KELReader81 - basScanningSystems.ReadWindowsSS";

constexpr const char* kNoPrintFollows = "?F\r";
constexpr const char* kPrintStatus = "?P\r";

/// Sends a print command and collects the reply, whatever the stop flag says. Silence is reported.
bool ask(ReaderContract& oReader, const char* command, const char* source, TextNumber onSilence, std::string& sCmd)
{
    oReader.fComm().mscComm().Output(command);
    if (waitForReply(oReader, {.cancellable = false}) != Wait::Reply) {
        reportReaderFault(source, onSilence, text::kNotAnsweringTitle);
        return false;
    }
    collectText(oReader, sCmd, {.pauseWhenEmpty = true});
    return true;
}

/// Sends one print line, unless it is empty; `line` is the digit "0" to "2".
void sendLine(ReaderContract& oReader, const char* line, const std::string& text)
{
    if (text.empty())
        return;
    oReader.fComm().mscComm().Output(settingSS(std::string("P4") + line + text + " "));
    oReader.fComm().mscComm().Output(settingSS(std::string("P2") + line));
}

} // namespace

Boolean PrintSS(ReaderContract& oReader, Boolean bAbort)
{
    Boolean bResult = False;
    std::string sCmd;
    guarded(kPrint, KEL_PARAMETERS(oReader, bAbort) + KEL_LOCALS(sCmd), [&] {
        if (oReader.Printer().isNothing())
            return;
        if (bAbort) {
            static_cast<void>(ask(oReader, kNoPrintFollows, kCancelledPrint, text::kSsPrintCancelUnanswered, sCmd));
            return;
        }
        oReader.fComm().mscComm().Output(settingSS("P32" + formatZeros(oReader.Printer()->Distance(), 3)));
        sendLine(oReader, "0", oReader.Printer()->Buffer1());
        sendLine(oReader, "1", oReader.Printer()->Buffer2());
        sendLine(oReader, "2", oReader.Printer()->Buffer3());
        if (ask(oReader, kPrintStatus, kPrint, text::kSsPrintUnanswered, sCmd))
            bResult = Right(sCmd, 1) == "0";
    });
    return bResult;
}

void RejectPageSS(ReaderContract& oReader, Boolean bRejectHopper)
{
    guarded(kRejectPage, KEL_PARAMETERS(oReader, bRejectHopper), [&] {
        if (!oReader.Rejecter() && oReader.Printer()->Initialized()) {
            RejectPrintSS(oReader);
            return;
        }
        oReader.fComm().mscComm().Output(settingSS(bRejectHopper ? "R05" : "R04"));
    });
}

void RejectPrintSS(ReaderContract& oReader)
{
    std::string sCmd;
    guarded(kRejectPrint, KEL_PARAMETERS(oReader) + KEL_LOCALS(sCmd), [&] {
        oReader.fComm().mscComm().Output(kNoPrintFollows);
        if (waitForReply(oReader, {.cancellable = false}) != Wait::Reply)
            return;
        // The whole reply in one piece; the length stays so.
        oReader.fComm().mscComm().InputLen(0);
        sCmd = oReader.fComm().mscComm().Input();
    });
}

} // namespace kel
