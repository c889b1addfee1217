// SPDX-License-Identifier: MIT
#include "drivers/ezdata/basNCSEZData.h"

#include "drivers/common/Dialogue.h"
#include "drivers/common/PackedMarks.h"
#include "failure/guarded.h"
#include "platform/Platform.h"
#include "types/Text.h"

namespace kel {

namespace {

constexpr const char* kLocateReader = "KELReader81 - basNCSEZData.LocateReaderNCSEZ";
constexpr const char* kFirmwareVersion = "KELReader81 - basNCSEZData.FirmwareVersionNCSEZ";

// Unlike the commands the probe carries no 0x1B.
constexpr const char* kProbe = "\x12R7777\x12I00\x12"
                               "E";
constexpr std::string_view kProbeReply = "G\r";

/// Everything that waits, as one text.
std::string takeAll(ReaderContract& oReader)
{
    oReader.fComm().mscComm().InputLen(0);
    return oReader.fComm().mscComm().Input();
}

/// Closes the line if it is open, after a failure too.
void closeLine(ReaderContract& oReader, const char* source)
{
    guarded(source, KEL_PARAMETERS(oReader), [&] {
        if (oReader.fComm().mscComm().PortOpen())
            oReader.fComm().mscComm().PortOpen(False);
    });
}

} // namespace

Boolean LocateReaderNCSEZ(ReaderContract& oReader, Int16 iPort)
{
    Boolean bResult = False;
    guarded(kLocateReader, KEL_PARAMETERS(oReader, iPort), [&] {
        openLine(oReader, iPort);
        oReader.fComm().mscComm().Output(kProbe);
        Sleep(100);
        if (oReader.fComm().mscComm().InBufferCount() == 2)
            bResult = takeAll(oReader) == kProbeReply;
    });
    closeLine(oReader, kLocateReader);
    return bResult;
}

Boolean FirmwareVersionNCSEZ(ReaderContract& oReader, std::string& sReturn)
{
    Boolean bResult = False;
    std::string sData;
    Int32 iLocate = 0; // of the reply's end, from 1
    guarded(kFirmwareVersion, KEL_PARAMETERS(oReader, sReturn) + KEL_LOCALS(sData, iLocate), [&] {
        openLine(oReader);
        oReader.fComm().mscComm().Output(frameCommand("V"));
        Sleep(100);
        if (oReader.fComm().mscComm().InBufferCount() > 0) {
            sData = takeAll(oReader);
            iLocate = CLng(sData.find(kProbeReply) + 1);
            if (iLocate > 0) {
                sReturn = Trim(Left(sData, iLocate - 1));
                bResult = True;
            }
        }
    });
    closeLine(oReader, kFirmwareVersion);
    return bResult;
}

} // namespace kel
