// SPDX-License-Identifier: MIT
#include "contract/clsKELReaderBarcodes.h"
#include "contract/clsKELReaderWindows.h"
#include "drivers/common/Dialogue.h"
#include "drivers/scanning_systems/EmulationMode.h"
#include "drivers/scanning_systems/Framing.h"
#include "drivers/scanning_systems/SetUp.h"
#include "drivers/scanning_systems/basScanningSystems.h"
#include "failure/basError.h"
#include "failure/guarded.h"
#include "platform/Platform.h"
#include "types/Text.h"

namespace kel {

constinit thread_local Int16 iEmulationMode = 0;

namespace {

constexpr const char* kInitReader = "KELReader81 - basScanningSystems.InitReaderSS";

constexpr Int32 kFirstZone = 1;
constexpr Int32 kRejecterPosition = 6;

/// What goes to the reader and comes from it while a session starts.
struct StartSS {
    std::string sCmd;
    std::string sData;
    Reference<clsKELReaderWindow> cWindow;

    KEL_TELLS(sCmd, sData, cWindow)
};

/// Waits for a reply at the start, whatever the stop flag says. Silence is reported.
bool replyComes(ReaderContract& oReader)
{
    if (waitForReply(oReader, {.cancellable = false}) == Wait::Reply)
        return true;
    reportReaderFault(kInitReader, text::kSsStartUnanswered, text::kNotStartedTitle);
    return false;
}

void startSR410(ReaderContract& oReader)
{
    oReader.fComm().mscComm().Output(readingSS("T").append("1").append(kCrSS));
    oReader.fComm().mscComm().Output(readingSS("DL0" + CStr(oReader.RecognitionThreshold())));
}

void startSR430(ReaderContract& oReader)
{
    oReader.fComm().mscComm().Output(readingSS("T").append(kStxSS).append("2").append(kCrSS));
    oReader.fComm().mscComm().Output(readingSS("DL" + formatZeros(oReader.RecognitionThreshold(), 2)));
    oReader.fComm().mscComm().Output(settingSS("15"));
}

/// Loads the read windows; those with negative gaps are changed for good.
void downloadWindows(ReaderContract& oReader, StartSS& start)
{
    oReader.fComm().mscComm().Output(readingSS("Q"));
    const Int32 lWindows = oReader.Windows()->Count();
    for (Int32 lWindow = 1; lWindow <= lWindows; ++lWindow) {
        start.cWindow = oReader.Windows()->Item(lWindow);
        makeGapsPositiveSS(*start.cWindow);
        start.sCmd = windowCommandSS(*start.cWindow);
        oReader.fComm().mscComm().Output(start.sCmd);
    }
}

/// The start of the models with emulation modes.
bool startInEmulationMode(ReaderContract& oReader, StartSS& start)
{
    oReader.fComm().mscComm().Output(querySS("OM"));
    if (!replyComes(oReader))
        return false;
    collectText(oReader, start.sData);
    iEmulationMode = CInt(Val(start.sData));

    if (oReader.Rejecter()) {
        oReader.fComm().mscComm().Output(querySS("O"));
        if (!replyComes(oReader))
            return false;
        collectText(oReader, start.sData);
        oReader.Rejecter(Mid(start.sData, kRejecterPosition, 1) == "1");
    }

    start.sCmd = readingSS(thresholdTextSS(iEmulationMode, oReader.RecognitionThreshold()));
    oReader.fComm().mscComm().Output(start.sCmd);
    if (Left(start.sData, 1) > "1")
        start.sCmd = settingSS("DD" + formatZeros(oReader.MarkDiscrimination(), 2));
    // Readers that do not take the mark discrimination get the threshold a second time.
    oReader.fComm().mscComm().Output(start.sCmd);

    if (oReader.RecognitionMode() == kelRecognitionTypeWindow)
        downloadWindows(oReader, start);
    return true;
}

} // namespace

Boolean InitReaderSS(ReaderContract& oReader)
{
    Boolean bResult = False;
    StartSS start;
    guarded(kInitReader, KEL_PARAMETERS(oReader) + KEL_LOCALS(start), [&] {
        oReader.fComm().mscComm().Output(kResetSS);
        if (!replyComes(oReader))
            return;
        // The last byte is the reply, whatever else the reset has brought up.
        collectText(oReader, start.sData);
        start.sData = Right(start.sData, 1);
        if (Asc(start.sData) != kAckSS) {
            reportReaderFault(kInitReader, text::kSsResetUnconfirmed, text::kNotStartedTitle);
            return;
        }

        if (oReader.ReaderType() == kelReaderTypeScanningSystemsSR410)
            startSR410(oReader);
        else if (oReader.ReaderType() == kelReaderTypeSekonicSR430)
            startSR430(oReader);
        else if (!startInEmulationMode(oReader, start))
            return;
        bResult = True;
    });
    return bResult;
}

Boolean CloseReaderSS()
{
    return True;
}

void InitBarcodeSS(ReaderContract& oReader)
{
    // A step that fails leaves the next one to be tried.
    ignoringFailures([&] { oReader.fComm().mscComm().Output(settingSS("BA00")); });
    Sleep(oReader.SleepTime());
    ignoringFailures([&] { oReader.fComm().mscComm().Output(settingSS("BA01")); });
    Sleep(oReader.SleepTime());
    ignoringFailures([&] {
        const Int16 iDistance = oReader.Barcodes()->Item(kFirstZone)->Distance();
        oReader.fComm().mscComm().Output(settingSS("BA10999" + CStr(iDistance)));
    });
}

void InitPrinterSS(ReaderContract& oReader)
{
    ignoringFailures([&] { oReader.fComm().mscComm().Output(settingSS("P10")); });
    Sleep(oReader.SleepTime());
    ignoringFailures([&] { oReader.fComm().mscComm().Output(settingSS("P3100")); });
}

} // namespace kel
