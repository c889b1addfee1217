// SPDX-License-Identifier: MIT
#include "dispatch/basRead.h"

#include "dispatch/DriverFamilies.h"
#include "platform/PortMap.h"
#include "profiles/clsKELReaderProfiles.h"
#include "types/Text.h"

namespace kel {

Boolean ReaderLocate(ReaderContract& oReader, Int16 iStartPort)
{
    const Reference<clsKELReaderProfile> cProfile = oReader.Profiles()->Item(CStr(oReader.ReaderType()));
    const DriverFamily* family = driverFamily(oReader.ReaderType());
    if (!cProfile->LocateEnabled() || !family || !family->Locate)
        return False;
    if (iStartPort > 0 && family->Locate(oReader, iStartPort)) {
        oReader.Port(iStartPort);
        return True;
    }
    for (Int16 iPort = PortMap::kFirstPort; iPort <= PortMap::kLastPort; ++iPort) {
        if (family->Locate(oReader, iPort)) {
            oReader.Port(iPort);
            return True;
        }
    }
    return False;
}

Boolean ReaderFirmware(ReaderContract& oReader, std::string& sReturn)
{
    const Reference<clsKELReaderProfile> cProfile = oReader.Profiles()->Item(CStr(oReader.ReaderType()));
    const DriverFamily* family = driverFamily(oReader.ReaderType());
    if (!cProfile->FirmwareEnabled() || !family || !family->Firmware)
        return False;
    return family->Firmware(oReader, sReturn);
}

} // namespace kel
