// SPDX-License-Identifier: MIT
#include "drivers/sekonic_usb/basSekonicSR.h"

#include "contract/clsKELReaderBarcodes.h"
#include "drivers/sekonic_usb/ErrorCodes.h"
#include "drivers/sekonic_usb/Library.h"
#include "drivers/sekonic_usb/MarkBytes.h"
#include "failure/ReportedText.h"
#include "failure/basError.h"
#include "failure/guarded.h"
#include "types/Text.h"

namespace kel {

namespace {

constexpr const char* kInitReader = "KELReader81 - basSekonicSR.InitReaderSR";
constexpr const char* kCloseReader = "KELReader81 - basSekonicSR.CloseReaderSR";
constexpr const char* kInitBarcode = "KELReader81 - basSekonicSR.InitBarcodeSR";
constexpr const char* kReturnError = "KELReader81 - basSekonicSR.ReturnErrorSR";
// An eject is reported under this name too.
constexpr const char* kRejectPage = "KELReader81 - basSekonicSR.RejectPageSR";

/// Reports a missing library with a text of its own; False for any other failure.
bool toldMissingLibrary(const RuntimeFailure& failure)
{
    if (failure.text().find("OMRAPI.DLL") == std::string::npos || failure.code() != FailureCode::FileNotFound)
        return false;
    std::string sText = VBLM_RTString(text::kSrLibraryMissing);
    sText.append(kLineEnd).append(kLineEnd).append(VBLM_RTString(text::kSrLibraryAdvice));
    if (const Int32 lBits = platform().omrApiLoader().widthNeeded(); lBits != 0)
        sText.append(kLineEnd).append(kLineEnd).append(
            replaceAll(VBLM_RTString(text::kSrLibraryWidth), "%1", CStr(lBits)));
    platform().screen().MsgBox(sText, BoxIcon::Exclamation, BoxButtons::Ok, VBLM_RTString(text::kSrLibraryTitle));
    return true;
}

/// The outlet code: 1 and 2 end the run, 3 and 4 let the reader go on; 2 and 4 are the rejecter.
Int32 outletSR(Boolean bRejecter, Boolean bStop)
{
    if (bStop)
        return bRejecter ? 2 : 1;
    return bRejecter ? 4 : 3;
}

} // namespace

Boolean InitReaderSR(ReaderContract& oReader)
{
    Boolean bResult = False;
    Int32 lVal1 = 0;
    Int32 lVal2 = 0;
    const auto init = [&] {
        if (omrApi().OMR_OpenDeviceUSB() != 0) {
            omrApi().OMR_GetLastError();
            reportNumberedFault(kInitReader, text::kSrNotOpened, text::kNotStartedTitle);
            return;
        }
        if (omrApi().OMR_GetReadingMethod(lVal1, lVal2) == 0) {
            reportNumberedFault(kInitReader, text::kSrReadingMethodNotReported, text::kNotStartedTitle);
            return;
        }
        if (lVal1 != 0 && lVal1 != 3 && omrApi().OMR_SetReadingMethod(3, lVal2) == 0) {
            reportNumberedFault(kInitReader, text::kSrReadingMethodRefused, text::kNotStartedTitle);
            return;
        }
        if (omrApi().OMR_GetNumberOfColumnsToRead() != kColumnsSR &&
            omrApi().OMR_SetNumberOfColumnsToRead(kColumnsSR) == 0) {
            reportNumberedFault(kInitReader, text::kSrColumnsRefused, text::kNotStartedTitle);
            return;
        }
        omrApi().OMR_SetBackSensorUnit(oReader.Duplex() && oReader.DuplexForm() ? 1 : 0);
        if (omrApi().OMR_GetSheetFeedMode(lVal1, lVal2) == 0) {
            reportNumberedFault(kInitReader, text::kSrFeedModeNotReported, text::kNotStartedTitle);
            return;
        }
        if (lVal1 != 0 && omrApi().OMR_SetSheetFeedMode(0, 0) == 0) {
            reportNumberedFault(kInitReader, text::kSrFeedModeRefused, text::kNotStartedTitle);
            return;
        }
        if (oReader.Barcode() && oReader.Barcodes()->Count() > 0)
            InitBarcodeSR();
        bResult = True;
    };
    guarded(kInitReader, KEL_PARAMETERS(oReader) + KEL_LOCALS(lVal1, lVal2), init, toldMissingLibrary);
    return bResult;
}

Boolean CloseReaderSR()
{
    Boolean bResult = False;
    guarded(kCloseReader, [&] {
        omrApi().OMR_CloseDevice();
        bResult = True;
    });
    return bResult;
}

Boolean InitBarcodeSR()
{
    Boolean bResult = False;
    Int32 lUnit = 0;
    guarded(kInitBarcode, KEL_LOCALS(lUnit), [&] {
        lUnit = omrApi().OMR_GetBarcodeReaderUnit();
        if (lUnit == -1)
            return;
        bResult = lUnit != 0 || omrApi().OMR_SetBarcodeReaderUnit(1) != 0;
    });
    return bResult;
}

void ReturnErrorSR(Int32 lError)
{
    guarded(kReturnError, KEL_PARAMETERS(lError), [&] {
        const ReportedText reported(errorMessageSR(lError));
        DisplayError({.ErrorNumber = shownErrorSR(lError),
                      .ErrorType = kErrorTypeSettings,
                      .ErrorDescription = VBLM_RTString(errorMessageSR(lError)),
                      .ErrorSource = kReturnError,
                      .ErrorTitle = VBLM_RTString(text::kSrErrorTitle)});
    });
}

Boolean RejectPageSR(ReaderContract& oReader)
{
    Boolean bResult = False;
    Int32 lOutlet = 0;
    guarded(kRejectPage, KEL_PARAMETERS(oReader) + KEL_LOCALS(lOutlet), [&] {
        lOutlet = outletSR(oReader.Rejecter(), oReader.CancelScan());
        bResult = omrApi().OMR_EjectSheet(lOutlet) == 1;
    });
    return bResult;
}

Boolean EjectPageSR(ReaderContract& oReader)
{
    Boolean bResult = False;
    Int32 lOutlet = 0;
    guarded(kRejectPage, KEL_PARAMETERS(oReader) + KEL_LOCALS(lOutlet), [&] {
        lOutlet = outletSR(False, oReader.CancelScan());
        bResult = omrApi().OMR_EjectSheet(lOutlet) == 1;
    });
    return bResult;
}

} // namespace kel
