// SPDX-License-Identifier: MIT
#include "dispatch/DriverFamilies.h"

#include "drivers/apperson/basApperson.h"
#include "drivers/chatsworth/basChatsworth.h"
#include "drivers/ezdata/basNCSEZData.h"
#include "drivers/ncs/basNCS.h"
#include "drivers/peripheral_dynamics/basPeripheralDynamics.h"
#include "drivers/scanning_systems/basScanningSystems.h"
#include "drivers/scantron/basScantron.h"
#include "drivers/sekonic_usb/basSekonicSR.h"
#include "types/ModelRows.h"

#include <algorithm>
#include <iterator>

namespace kel {

namespace {

constexpr DriverFamily kPeripheralDynamics = {
    .Init = InitReaderPD,
    // The reader is told that the session ends, but its close step counts as failed.
    .Close =
        [](ReaderContract& oReader) {
            CloseReaderPD(oReader);
            return False;
        },
    .Read = ReadPagePD,
    .Reject = RejectPagePD,
    .Eject = [](ReaderContract& oReader, Boolean&) { EjectPagePD(oReader); },
};

constexpr DriverFamily kSekonicUsb = {
    .Init = InitReaderSR,
    .Close = [](ReaderContract&) { return CloseReaderSR(); },
    .Read = [](ReaderContract& oReader) { return ReadPageSR(oReader, oReader.RecognitionThreshold()); },
    .Print = [](ReaderContract& oReader, Boolean bAbort,
                Boolean&) { return bAbort ? False : PrintSR(oReader.Printer()); },
    .Reject = [](ReaderContract& oReader) { RejectPageSR(oReader); },
    // The sheet counts as ejected only while a stop is pending, one that came during the eject included.
    .Eject =
        [](ReaderContract& oReader, Boolean& bSheetEjected) {
            const Boolean bResult = EjectPageSR(oReader);
            bSheetEjected = bResult & oReader.CancelScan();
        },
};

constexpr DriverFamily kScanningSystems = {
    .Init = InitReaderSS,
    .Close = [](ReaderContract&) { return CloseReaderSS(); },
    .Read = ReadPageSS,
    // The reader is told of a cancelled print too, and that ends the sheet.
    .Print =
        [](ReaderContract& oReader, Boolean bAbort, Boolean& bSheetEjected) {
            const Boolean bResult = PrintSS(oReader, bAbort);
            bSheetEjected = bAbort;
            return bResult;
        },
    .Reject = [](ReaderContract& oReader) { RejectPageSS(oReader, oReader.Rejecter()); },
    .Eject = [](ReaderContract& oReader, Boolean&) { RejectPageSS(oReader, False); },
};

// Models of the family that neither print nor take a decision on a sheet.
constexpr DriverFamily kScanningSystemsReadOnly = {
    .Init = InitReaderSS,
    .Close = kScanningSystems.Close,
    .Read = ReadPageSS,
};

constexpr DriverFamily kNcs = {
    .Init = InitReaderNCS,
    .Close = CloseReaderNCS,
    .Read = ReadPageNCS,
    .Print = [](ReaderContract& oReader, Boolean bAbort, Boolean&) { return bAbort ? False : PrintNCS(oReader); },
    .Reject =
        [](ReaderContract& oReader) {
            if (oReader.Rejecter())
                RejectPageNCS(oReader);
        },
    .Eject = [](ReaderContract& oReader, Boolean&) { EjectPageNCS(oReader); },
};

constexpr DriverFamily kScantron = {
    .Init = InitReaderST,
    .Close = CloseReaderST,
    .Read =
        [](ReaderContract& oReader) {
            return oReader.RecognitionMode() == kelRecognitionTypePage ? ReadPageST(oReader) : ReadWindowsST(oReader);
        },
    .Print = [](ReaderContract& oReader, Boolean bAbort, Boolean&) { return bAbort ? False : PrintST(oReader); },
    .Reject = [](ReaderContract& oReader) { RejectPageST(oReader, oReader.Rejecter()); },
    .Eject = [](ReaderContract& oReader, Boolean&) { RejectPageST(oReader, False); },
};

// Models of the family that take no decision on a sheet.
constexpr DriverFamily kScantronStraight = {
    .Init = InitReaderST,
    .Close = CloseReaderST,
    .Read = kScantron.Read,
    .Print = kScantron.Print,
};

constexpr DriverFamily kEzData = {
    .Init = InitReaderNCSEZ,
    .Close = CloseReaderNCSEZ,
    .Read = ReadPageNCSEZ,
    .Reject = [](ReaderContract& oReader) { RejectPageNCSEZ(oReader, oReader.Rejecter()); },
    .Eject = [](ReaderContract& oReader, Boolean& bSheetEjected) { bSheetEjected = RejectPageNCSEZ(oReader, False); },
    .Locate = LocateReaderNCSEZ,
    .Firmware = FirmwareVersionNCSEZ,
};

// These reply to the probe and to the firmware query of the EZData.
constexpr DriverFamily kChatsworth = {
    .Init = InitReaderCT,
    .Close = [](ReaderContract&) { return True; },
    .Read = ReadPageCT,
    .Locate = kEzData.Locate,
    .Firmware = kEzData.Firmware,
};

constexpr DriverFamily kChatsworthAls = {
    .Init = InitReaderCT,
    .Close = kChatsworth.Close,
    .Read = ReadPageCT,
    .Reject = [](ReaderContract& oReader) { RejectPageCT(oReader, oReader.Rejecter()); },
    .Eject = [](ReaderContract& oReader, Boolean& bSheetEjected) { bSheetEjected = RejectPageCT(oReader, False); },
    .Locate = kEzData.Locate,
    .Firmware = kEzData.Firmware,
};

constexpr DriverFamily kApperson = {
    .Init = InitReaderAP,
    .Close = CloseReaderAP,
    .Read = ReadPageAP,
    .Reject = [](ReaderContract& oReader) { RejectPageAP(oReader); },
    .Eject = [](ReaderContract& oReader, Boolean&) { EjectPageAP(oReader); },
};

struct ModelRow {
    kelReaderType eReaderType;
    const DriverFamily* family;
};

constexpr ModelRow kModelRows[] = {
    {kelReaderTypeScanningSystemsSR601, &kScanningSystems},
    {kelReaderTypeScanningSystemsSR607, &kScanningSystems},
    {kelReaderTypeScanningSystemsSR700351, &kScanningSystems},
    {kelReaderTypeScanningSystemsSR700352, &kScanningSystems},
    {kelReaderTypeScanningSystemsSR410, &kScanningSystemsReadOnly},
    {kelReaderTypeSekonicSR430, &kScanningSystemsReadOnly},
    {kelReaderTypeSekonicSR2300, &kSekonicUsb},
    {kelReaderTypeSekonicSR3500, &kSekonicUsb},
    {kelReaderTypeSekonicSR6500, &kSekonicUsb},
    {kelReaderTypeSekonicSR1800, &kSekonicUsb},
    {kelReaderTypePDIVMR138, &kPeripheralDynamics},
    {kelReaderTypeNCSOpScan2, &kNcs},
    {kelReaderTypeNCSOpScan3, &kNcs},
    {kelReaderTypeNCSOpScan4, &kNcs},
    {kelReaderTypeNCSOpScan5, &kNcs},
    {kelReaderTypeNCSOpScan7, &kNcs},
    {kelReaderTypeNCSOpScan6, &kNcs},
    {kelReaderTypeNCSOpScan8, &kNcs},
    {kelReaderTypeNCSOpScaniNSIGHT4, &kNcs},
    {kelReaderTypeNCSOpScaniNSIGHT2, &kNcs},
    {kelReaderTypeScantronScanMark2000, &kScantron},
    {kelReaderTypeScantronScanMark2250, &kScantron},
    {kelReaderTypeScantronScanMark2500, &kScantron},
    {kelReaderTypeScantronScanMark4000, &kScantron},
    {kelReaderTypeScantronScanMark5500, &kScantron},
    {kelReaderTypeScantronScanMarkES2800, &kScantron},
    {kelReaderTypeScantron8000, &kScantronStraight},
    {kelReaderTypeScantron8400, &kScantronStraight},
    {kelReaderTypeScantronScanMarkES2010, &kScantronStraight},
    {kelReaderTypeScantronScanMarkES2260, &kScantronStraight},
    {kelReaderTypeNCSEZData, &kEzData},
    {kelReaderTypeChatsworthACF100, &kEzData},
    {kelReaderTypeChatsworthALSAccelScanOMR, &kChatsworthAls},
    {kelReaderTypeChatsworthOMR1100, &kChatsworth},
    {kelReaderTypeChatsworthOMR2000, &kChatsworth},
    {kelReaderTypeChatsworthACF200, &kChatsworth},
    {kelReaderTypeChatsworthACP200, &kChatsworth},
    {kelReaderTypeAppersonAdvantageLink, &kApperson},
    {kelReaderTypeAppersonGradeMaster, &kApperson},
    {kelReaderTypeAppersonBenchMark3000, &kApperson},
    {kelReaderTypeAppersonAdvantage1200, &kApperson},
};
static_assert(modelWithoutRow(kModelRows, &ModelRow::eReaderType) == 0,
              "the model of this number has no driver: it needs one row in kModelRows");

} // namespace

const DriverFamily* driverFamily(kelReaderType eReaderType)
{
    const auto* row = std::ranges::find(kModelRows, eReaderType, &ModelRow::eReaderType);
    return row == std::end(kModelRows) ? nullptr : row->family;
}

} // namespace kel
