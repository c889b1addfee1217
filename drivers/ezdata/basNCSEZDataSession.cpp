// SPDX-License-Identifier: MIT
#include "drivers/ezdata/basNCSEZData.h"

#include "TextNames.h"

#include "drivers/common/Dialogue.h"
#include "drivers/common/PackedMarks.h"
#include "drivers/ezdata/EZDataDialogue.h"
#include "failure/guarded.h"
#include "platform/Platform.h"
#include "types/Text.h"

namespace kel {

namespace {

constexpr const char* kInitReader = "KELReader81 - basNCSEZData.InitReaderNCSEZ";
constexpr const char* kCloseReader = "KELReader81 - basNCSEZData.CloseReaderNCSEZ";
constexpr const char* kSetValues = "KELReader81 - basNCSEZData.SetValuesNCSEZ";
constexpr const char* kCheckThreshold = "KELReader81 - basNCSEZData.CheckThresholdNCSEZ";

constexpr Int32 kConfigurationLength = 24;
constexpr Int32 kAfterConfiguration = 2;
constexpr Int32 kStatusLength = 3;
constexpr Int32 kChangeLength = 3;
constexpr Int32 kEndLength = 2;

// Bits of the status byte
constexpr Int16 kStatusSheetInPath = 0x01;
constexpr Int16 kStatusFault = 0x04;
constexpr Int16 kStatusReady = 0x10;

/// What goes to the reader and comes from it while a session starts.
struct StartNCSEZ {
    std::string sReturn; ///< the configuration
    std::string sData;   ///< the letter of the last reply
    Int16 iStatus = 0;

    KEL_TELLS(sReturn, sData, iStatus)
};

/// Takes the configuration up to its CR. False when the host has stopped.
bool takeConfiguration(ReaderContract& oReader, std::string& sReturn)
{
    while (!sReturn.ends_with('\r')) {
        DoEvents();
        if (oReader.CancelScan())
            return false;
        if (oReader.fComm().mscComm().InBufferCount() > 0)
            sReturn += oReader.fComm().mscComm().Input();
    }
    return true;
}

/// Asks for the configuration, positions from 1:
///   1-2 format "22"   4-5 flags   7-8 timing channel   13-15 mode "INL"   16-17 threshold   19-21 decay   22 CR
bool readConfiguration(ReaderContract& oReader, StartNCSEZ& start)
{
    oReader.fComm().mscComm().Output(frameCommand("GETCONFIG"));
    Sleep(100);
    if (oReader.fComm().mscComm().InBufferCount() != kConfigurationLength)
        return failNCSEZ(kInitReader, text::kEzConfigurationUnanswered);
    if (!takeConfiguration(oReader, start.sReturn))
        return false;
    if (oReader.fComm().mscComm().InBufferCount() != kAfterConfiguration)
        return failNCSEZ(kInitReader, text::kEzConfigurationLength);
    if (!commandTakenNCSEZ(oReader, kInitReader,
                           {.refused = text::kEzConfigurationRefused, .unknown = text::kEzConfigurationUnexpected},
                           start.sData))
        return false;
    DoEvents();
    return !oReader.CancelScan();
}

/// Corrects what the session needs to be different. False when a value cannot be corrected, or did not take.
bool correctConfiguration(ReaderContract& oReader, const std::string& sConfiguration)
{
    if (Mid(sConfiguration, 1, 2) != "22")
        return failNCSEZ(kInitReader, text::kEzConfigurationFormat);
    if (Mid(sConfiguration, 4, 2) != "03" && !SetValuesNCSEZ(oReader, "SETFLAGS03", Chr(3)))
        return false;
    if (Mid(sConfiguration, 7, 2) != "80" && !SetValuesNCSEZ(oReader, "SETTMCH0", "0"))
        return false;
    if (Mid(sConfiguration, 13, 3) != "INL")
        return failNCSEZ(kInitReader, text::kEzReadingMode);
    if (!CheckThresholdNCSEZ(oReader.RecognitionThreshold(), Mid(sConfiguration, 16, 2))) {
        const std::string sThreshold = CStr(oReader.RecognitionThreshold());
        if (!SetValuesNCSEZ(oReader, "SETTHRESH" + sThreshold, sThreshold))
            return false;
    }
    return Mid(sConfiguration, 19, 3) == "1.5" || SetValuesNCSEZ(oReader, "SETDECAY3", "3");
}

void askStatus(ReaderContract& oReader)
{
    oReader.fComm().mscComm().Output(frameCommand("S"));
    Sleep(100);
}

bool takeStatus(ReaderContract& oReader, StartNCSEZ& start)
{
    start.iStatus = Asc(oReader.fComm().mscComm().Input());
    return commandTakenNCSEZ(oReader, kInitReader,
                             {.refused = text::kEzStatusRefused, .unknown = text::kEzStatusUnexpected}, start.sData);
}

/// Takes out a sheet that lies in the path, and a second one that shows after it.
bool clearPath(ReaderContract& oReader, StartNCSEZ& start)
{
    if (!(start.iStatus & kStatusSheetInPath))
        return true;
    if (!RejectPageNCSEZ(oReader, True))
        return false;
    askStatus(oReader);
    if (oReader.fComm().mscComm().InBufferCount() != kStatusLength)
        return true;
    if (!takeStatus(oReader, start))
        return false;
    if (start.iStatus & kStatusSheetInPath)
        RejectPageNCSEZ(oReader, True);
    return true;
}

/// The echo of a change, then the letter that says whether it was taken.
bool takeChange(ReaderContract& oReader, const std::string& sEcho, TextNumber wrongLength, TextNumber wrongEcho,
                const LetterTextsNCSEZ& texts, std::string& sData)
{
    if (oReader.fComm().mscComm().InBufferCount() != kChangeLength)
        return failNCSEZ(kSetValues, wrongLength);
    sData = oReader.fComm().mscComm().Input();
    if (sData != sEcho)
        return failNCSEZ(kSetValues, wrongEcho);
    return commandTakenNCSEZ(oReader, kSetValues, texts, sData);
}

} // namespace

Boolean InitReaderNCSEZ(ReaderContract& oReader)
{
    Boolean bResult = False;
    StartNCSEZ start;
    guarded(kInitReader, KEL_PARAMETERS(oReader) + KEL_LOCALS(start), [&] {
        oReader.fComm().mscComm().InputLen(1);
        drainInput(oReader);
        Sleep(100);
        if (!readConfiguration(oReader, start) || !correctConfiguration(oReader, start.sReturn))
            return;

        askStatus(oReader);
        if (oReader.fComm().mscComm().InBufferCount() != kStatusLength) {
            failNCSEZ(kInitReader, text::kEzStatusUnanswered);
            return;
        }
        if (!takeStatus(oReader, start) || !clearPath(oReader, start))
            return;
        if (start.iStatus & kStatusFault)
            failNCSEZ(kInitReader, text::kEzStatusFault);
        else if (start.iStatus & kStatusReady)
            bResult = True;
        else
            failNCSEZ(kInitReader, text::kEzNotReady);
    });
    return bResult;
}

Boolean CloseReaderNCSEZ(ReaderContract& oReader)
{
    Boolean bResult = False;
    bool bNeedsEject = false;
    std::string sData;
    guarded(kCloseReader, KEL_PARAMETERS(oReader) + KEL_LOCALS(bNeedsEject, sData), [&] {
        oReader.fComm().mscComm().InputLen(1);
        if (oReader.CancelScan()) {
            // A stopped run may have left a sheet in the path: what still comes is its sign.
            Sleep(checkedMultiply(oReader.SleepTime(), 10));
            bNeedsEject = oReader.fComm().mscComm().InBufferCount() > 0;
            drainInputWithPauses(oReader);
            if (bNeedsEject)
                oReader.RejectPage();
        }
        drainInput(oReader);
        oReader.fComm().mscComm().Output(frameCommand("D"));
        Sleep(100);
        if (oReader.fComm().mscComm().InBufferCount() != kEndLength) {
            failNCSEZ(kCloseReader, text::kEzCloseUnanswered);
            return;
        }
        bResult = letterTakenNCSEZ(oReader, kCloseReader,
                                   {.refused = text::kEzCloseRefused, .unknown = text::kEzCloseUnexpected}, sData);
    });
    return bResult;
}

Boolean SetValuesNCSEZ(ReaderContract& oReader, const std::string& sExecCmd, const std::string& sReturn)
{
    Boolean bResult = False;
    std::string sCmd;
    std::string sData;
    guarded(kSetValues, KEL_PARAMETERS(oReader, sCmd, sExecCmd, sReturn) + KEL_LOCALS(sData), [&] {
        oReader.fComm().mscComm().InputLen(1);
        sCmd = frameCommand(sExecCmd);
        oReader.fComm().mscComm().Output(sCmd);
        Sleep(200);
        if (!takeChange(oReader, sReturn, text::kEzSettingUnanswered, text::kEzSettingEcho,
                        {.refused = text::kEzSettingRefused, .unknown = text::kEzSettingUnexpected}, sData))
            return;
        oReader.fComm().mscComm().Output(frameCommand("CHECKSUM"));
        Sleep(200);
        if (!takeChange(oReader, "P", text::kEzStoreUnanswered, text::kEzStoreEcho,
                        {.refused = text::kEzStoreRefused, .unknown = text::kEzStoreUnexpected}, sData))
            return;
        oReader.fComm().mscComm().Output(frameCommand("RESET"));
        Sleep(1500);
        bResult = True;
    });
    return bResult;
}

Boolean CheckThresholdNCSEZ(Int16 iRecognitionThreshold, const std::string& sScannerThreshold)
{
    Boolean bResult = False;
    Int16 iCurrentThreshold = 0;
    Int16 iThreshold = 0;
    const auto variables =
        KEL_PARAMETERS(iRecognitionThreshold, sScannerThreshold) + KEL_LOCALS(iCurrentThreshold, iThreshold);
    guarded(kCheckThreshold, variables, [&] {
        // "60" stands for 0, "62" for 1, and so on to "78" for 9.
        iCurrentThreshold = iRecognitionThreshold;
        for (iThreshold = 0; iThreshold <= 9; ++iThreshold) {
            if (sScannerThreshold == CStr(60 + 2 * iThreshold))
                iCurrentThreshold = iThreshold;
        }
        bResult = iCurrentThreshold == iRecognitionThreshold;
    });
    return bResult;
}

} // namespace kel
