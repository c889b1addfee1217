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
#include "types/ModelTable.h"

#include <array>
#include <string_view>

namespace kel {

namespace {

constexpr DriverFamily kPeripheralDynamics = {
    .Init = InitReaderPD,
    // The reader is informed that the session ends, but its close step counts as failed.
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
    // The reader is also informed of a cancelled print, and that ends the sheet.
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

struct NamedFamily {
    std::string_view name;
    const DriverFamily* family;
};

constexpr std::array kFamilies = std::to_array<NamedFamily>({
    {"Apperson", &kApperson},
    {"Chatsworth", &kChatsworth},
    {"ChatsworthAls", &kChatsworthAls},
    {"EzData", &kEzData},
    {"Ncs", &kNcs},
    {"PeripheralDynamics", &kPeripheralDynamics},
    {"ScanningSystems", &kScanningSystems},
    {"ScanningSystemsReadOnly", &kScanningSystemsReadOnly},
    {"Scantron", &kScantron},
    {"ScantronStraight", &kScantronStraight},
    {"SekonicUsb", &kSekonicUsb},
});
static_assert(modelWithUnknown(&ModelRow::driver, kFamilies) == 0,
              "the model of this number names a driver that kFamilies lacks");

} // namespace

const DriverFamily* driverFamily(kelReaderType eReaderType)
{
    const ModelRow* row = modelRow(eReaderType);
    return row ? entryNamed(kFamilies, row->driver)->family : nullptr;
}

} // namespace kel
