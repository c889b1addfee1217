// SPDX-License-Identifier: MIT
#include "dispatch/basRead.h"

#include "dispatch/DriverFamilies.h"
#include "drivers/common/Dialogue.h"
#include "failure/ReportedText.h"
#include "failure/basError.h"
#include "failure/guarded.h"
#include "platform/PortMap.h"
#include "profiles/clsKELReaderProfiles.h"
#include "types/Text.h"

namespace kel {

namespace {

constexpr Int32 kLongestTimeout = 600;
constexpr Int32 kUsualTimeout = 10;

void reportPortOutOfRange(Int16 iPort)
{
    const ReportedText reported(text::kPortNotAllowed);
    DisplayError({.ErrorNumber = static_cast<Int32>(FailureCode::InvalidPortNumber),
                  .ErrorType = kErrorTypeSettings,
                  .ErrorDescription = replaceAll(VBLM_RTString(text::kPortNotAllowed), "%1", CStr(iPort)),
                  .ErrorSource = "KELReader81 - basRead.ReaderInit",
                  .ErrorTitle = VBLM_RTString(text::kPortNotAllowedTitle)});
}

} // namespace

Boolean ReaderInit(ReaderContract& oReader)
{
    Boolean bResult = False;
    std::string sKey;
    Reference<clsKELReaderProfile> cProfile;
    guarded("KELReader81 - basRead.ReaderInit", KEL_PARAMETERS(oReader) + KEL_LOCALS(sKey, cProfile), [&] {
        sKey = CStr(oReader.ReaderType());
        // The catalogue's record of no model is for lists to show: there is nothing to start.
        if (oReader.ReaderType() != kelReaderTypeNone && oReader.Profiles()->Exists(sKey)) {
            cProfile = oReader.Profiles()->Item(sKey);
            if (cProfile->InterfaceType() == kelReaderInterfaceTypeSerial) {
                if (oReader.Port() < PortMap::kFirstPort || oReader.Port() > PortMap::kLastPort) {
                    reportPortOutOfRange(oReader.Port());
                    return;
                }
                openLine(oReader);
            }
            if (oReader.Timeout() < 1 || oReader.Timeout() > kLongestTimeout)
                oReader.Timeout(kUsualTimeout);
            oReader.fComm().tmrScan().Interval(checkedMultiply(oReader.Timeout(), 1000));
            if (const DriverFamily* family = driverFamily(oReader.ReaderType()))
                bResult = family->Init(oReader);
        }
        if (!bResult)
            oReader.CancelScan(True);
    });
    return bResult;
}

Boolean ReaderClose(ReaderContract& oReader)
{
    Boolean bResult = False;
    guarded("KELReader81 - basRead.ReaderClose", KEL_PARAMETERS(oReader), [&] {
        if (const DriverFamily* family = driverFamily(oReader.ReaderType()))
            bResult = family->Close(oReader);
        if (oReader.fComm().mscComm().PortOpen())
            oReader.fComm().mscComm().PortOpen(False);
    });
    return bResult;
}

Boolean ReaderRead(ReaderContract& oReader)
{
    Boolean bResult = False;
    guarded("KELReader81 - basRead.ReaderRead", KEL_PARAMETERS(oReader), [&] {
        oReader.Side1TimingMarks(-1);
        oReader.Side2TimingMarks(-1);
        if (const DriverFamily* family = driverFamily(oReader.ReaderType()))
            bResult = family->Read(oReader);
        if (bResult != True)
            oReader.CancelScan(True);
    });
    return bResult;
}

Boolean ReaderPrint(ReaderContract& oReader, Boolean bAbort, Boolean& bSheetEjected)
{
    Boolean bResult = False;
    guarded("KELReader81 - basRead.ReaderPrint", KEL_PARAMETERS(oReader, bAbort, bSheetEjected), [&] {
        const DriverFamily* family = driverFamily(oReader.ReaderType());
        if (family && family->Print)
            bResult = family->Print(oReader, bAbort, bSheetEjected);
    });
    return bResult;
}

void ReaderReject(ReaderContract& oReader)
{
    const DriverFamily* family = driverFamily(oReader.ReaderType());
    if (family && family->Reject)
        family->Reject(oReader);
}

void ReaderEject(ReaderContract& oReader, Boolean& bSheetEjected)
{
    const DriverFamily* family = driverFamily(oReader.ReaderType());
    if (family && family->Eject)
        family->Eject(oReader, bSheetEjected);
}

} // namespace kel
