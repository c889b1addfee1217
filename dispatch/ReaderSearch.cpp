#include "dispatch/basRead.h"

#include "drivers/ezdata/basNCSEZData.h"
#include "profiles/clsKELReaderProfiles.h"
#include "types/Text.h"

#include <algorithm>
#include <iterator>

namespace kel {

namespace {

constexpr Int16 kFirstPort = 1;
constexpr Int16 kLastPort = 16;

// The models that answer the probe and the firmware query of the EZData.
constexpr kelReaderType kProbedModels[] = {
    kelReaderTypeChatsworthOMR1100, kelReaderTypeChatsworthOMR2000, kelReaderTypeChatsworthALSAccelScanOMR,
    kelReaderTypeNCSEZData,         kelReaderTypeChatsworthACF200,  kelReaderTypeChatsworthACF100,
    kelReaderTypeChatsworthACP200,
};

bool isProbed(kelReaderType eReaderType)
{
    return std::find(std::begin(kProbedModels), std::end(kProbedModels), eReaderType) != std::end(kProbedModels);
}

} // namespace

Boolean ReaderLocate(ReaderContract& oReader, Int16 iStartPort)
{
    const Reference<clsKELReaderProfile> cProfile = oReader.Profiles()->Item(CStr(oReader.ReaderType()));
    if (!cProfile->LocateEnabled() || !isProbed(oReader.ReaderType()))
        return False;
    if (iStartPort > 0 && LocateReaderNCSEZ(oReader, iStartPort)) {
        oReader.Port(iStartPort);
        return True;
    }
    for (Int16 iPort = kFirstPort; iPort <= kLastPort; ++iPort) {
        if (LocateReaderNCSEZ(oReader, iPort)) {
            oReader.Port(iPort);
            return True;
        }
    }
    return False;
}

Boolean ReaderFirmware(ReaderContract& oReader, std::string& sReturn)
{
    const Reference<clsKELReaderProfile> cProfile = oReader.Profiles()->Item(CStr(oReader.ReaderType()));
    if (!cProfile->FirmwareEnabled() || !isProbed(oReader.ReaderType()))
        return False;
    return FirmwareVersionNCSEZ(oReader, sReturn);
}

} // namespace kel
