// SPDX-License-Identifier: MIT
#include "contract/clsKELReaderPrinter.h"
#include "drivers/sekonic_usb/BarcodeArea.h"
#include "drivers/sekonic_usb/ErrorCodes.h"
#include "drivers/sekonic_usb/Library.h"
#include "drivers/sekonic_usb/MarkBytes.h"
#include "drivers/sekonic_usb/basSekonicSR.h"
#include "failure/basError.h"
#include "failure/guarded.h"
#include "types/Text.h"

#include <algorithm>
#include <optional>

namespace kel {

namespace {

constexpr const char* kReadPage = "KELReader81 - basSekonicSR.ReadPageSR";
constexpr const char* kPrint = "KELReader81 - basSekonicSR.PrintSR";

constexpr Int32 kFront = 0;
constexpr Int32 kBack = 1;

/// Code 39, ITF, NW-7 and Code 128, whatever the zones ask for.
constexpr Int32 kSymbologies = 0x17;
static_assert(kSymbologies == (kelBarcodeTypeCode39 | kelBarcodeTypeITF | kelBarcodeTypeNW7 | kelBarcodeTypeCode128));

constexpr Int32 kLongestBarcode = 512;
constexpr Byte kAnyBarcode = 0x40;

/// More than any reader can count; only a bound for the room that is set aside below.
constexpr std::int64_t kMostRoom = 1 << 20;

/// The barcodes of a sheet while the library is asked for them.
struct BarcodesSR {
    bool bReadBarcodes = false; ///< whether they are to be fetched after the sheet
    SRBarcodeArea uBarcodeArea;
    Int32 lReadCount = 0;
    Int32 lSettingCount = 0;
    Byte bBcType = 0;
    Int32 lDataLen = 0;
    Array1<Byte> bBarcodeArr;
    TextArray sBarcodeArr; ///< from index 1 on; one empty element at index 0 when there are none

    KEL_TELLS(bReadBarcodes, uBarcodeArea, lReadCount, lSettingCount, bBcType, lDataLen, bBarcodeArr, sBarcodeArr)
};

/// Passes the positions and types of the barcodes to the library; True if they have to be fetched after the sheet.
bool prepareBarcodes(ReaderContract& oReader, SRBarcodeArea& uBarcodeArea)
{
    uBarcodeArea = barcodeAreaSR(*oReader.Barcodes());
    if (omrApi().OMR_SetBarCodeArea(uBarcodeArea) == 0 || omrApi().OMR_SetBarCodeReadType(kSymbologies) == 0)
        return false;
    for (const Byte bType : {Byte{'a'}, Byte{'b'}, Byte{'c'}})
        omrApi().OMR_SetBarCodeCheckDigit(bType, 0);
    return true;
}

/// Feeds a sheet. False when there is none to be read; a failure is reported.
bool feedSheet(Int32& lReturn)
{
    omrApi().OMR_FeedSheet();
    lReturn = omrApi().OMR_GetLastError();
    const FeedResultSR result = feedResultSR(lReturn);
    if (result == FeedResultSR::Failed)
        ReturnErrorSR(lReturn);
    return result == FeedResultSR::SheetRead;
}

/// Fetches one side of the sheet into its cells; the number of its rows. Nothing, after a report, when the library does
/// not deliver it.
std::optional<Int16> fetchSide(Int32 lSide, SRRead& uRead, Array1<Byte>& bSRArr, MarkArray& iSideArr, MarkCopySR& copy,
                               TextNumber missing)
{
    // A library that counts more columns than a sheet has writes on after the last byte: there is room for that.
    const std::int64_t lRoom =
        std::clamp<std::int64_t>(std::int64_t{uRead.lRows} * uRead.lCols, kMostBytesSR, kMostRoom);
    bSRArr.ReDim(1, static_cast<Int32>(lRoom));
    if (omrApi().OMR_GetMarks(lSide, uRead, &bSRArr(1)) == 0) {
        reportNumberedFault(kReadPage, missing, text::kSheetNotReadTitle);
        return std::nullopt;
    }
    return copyMarksSR(bSRArr, uRead.lRows, uRead.lCols, iSideArr, copy);
}

/// One barcode of the sheet; empty when the library does not deliver it.
std::string fetchBarcode(BarcodesSR& barcodes, Int32 lIndex)
{
    barcodes.lDataLen = kLongestBarcode;
    barcodes.bBcType = kAnyBarcode;
    barcodes.bBarcodeArr.ReDim(1, kLongestBarcode);
    if (omrApi().OMR_GetBarcodeData(lIndex, barcodes.bBcType, barcodes.lDataLen, &barcodes.bBarcodeArr(1)) == 0 ||
        barcodes.lDataLen <= 0)
        return {};
    const auto& bytes = barcodes.bBarcodeArr.elements();
    return Left(std::string(bytes.begin(), bytes.end()), barcodes.lDataLen);
}

/// Fetches the barcodes of the sheet.
void fetchBarcodes(BarcodesSR& barcodes, Int32& lIndex)
{
    if (omrApi().OMR_GetBarcodeInfo(barcodes.lReadCount, barcodes.lSettingCount) == 0 || barcodes.lReadCount <= 0)
        return;
    barcodes.sBarcodeArr.ReDim(1, barcodes.lReadCount);
    for (lIndex = 1; lIndex <= barcodes.lReadCount; ++lIndex)
        barcodes.sBarcodeArr(lIndex) = fetchBarcode(barcodes, lIndex);
}

} // namespace

Boolean ReadPageSR(ReaderContract& oReader, Int32 lRecognitionThreshold)
{
    Boolean bResult = False;
    MarkArray iSide1Arr;
    MarkArray iSide2Arr;
    Array1<Byte> bSRFrontArr;
    Array1<Byte> bSRBackArr;
    BarcodesSR barcodes;
    SRRead uRead;
    MarkCopySR copy;
    Int32 lReturn = 0;
    const auto variables = KEL_PARAMETERS(oReader, lRecognitionThreshold) +
                           KEL_LOCALS(iSide1Arr, iSide2Arr, bSRFrontArr, bSRBackArr, barcodes, uRead, copy, lReturn);
    guarded(kReadPage, variables, [&] {
        iSide1Arr.ReDim(kMostRowsSR, kColumnsSR);
        iSide2Arr.ReDim(kMostRowsSR, kColumnsSR);
        barcodes.sBarcodeArr.ReDim(0, 0);

        if (oReader.Barcode() && oReader.Barcodes()->Count() > 0)
            barcodes.bReadBarcodes = prepareBarcodes(oReader, barcodes.uBarcodeArea);

        uRead.lCols = omrApi().OMR_GetNumberOfColumnsToRead();
        uRead.lRows = kMostRowsSR;
        uRead.lThreshold = lRecognitionThreshold;

        if (!feedSheet(lReturn))
            return;

        const auto iFrontRows = fetchSide(kFront, uRead, bSRFrontArr, iSide1Arr, copy, text::kSrMarksOfSide1Missing);
        if (!iFrontRows)
            return;
        oReader.Side1TimingMarks(*iFrontRows);

        if (oReader.Duplex() && oReader.DuplexForm()) {
            uRead.lRows = kMostRowsSR;
            const auto iBackRows = fetchSide(kBack, uRead, bSRBackArr, iSide2Arr, copy, text::kSrMarksOfSide2Missing);
            if (!iBackRows)
                return;
            oReader.Side2TimingMarks(*iBackRows);
        }

        if (barcodes.bReadBarcodes)
            fetchBarcodes(barcodes, copy.lIndex);

        oReader.Side1Array(iSide1Arr);
        oReader.Side2Array(iSide2Arr);
        oReader.BarcodeArray(barcodes.sBarcodeArr);
        bResult = True;
    });
    return bResult;
}

Boolean PrintSR(const Reference<clsKELReaderPrinter>& cPrinter)
{
    Boolean bResult = False;
    Int32 lPosition = 0;
    guarded(kPrint, KEL_PARAMETERS(cPrinter) + KEL_LOCALS(lPosition), [&] {
        if (cPrinter.isNothing() || !cPrinter->Active() || !cPrinter->Enabled() || !cPrinter->Initialized() ||
            cPrinter->BufferCount() < 1)
            return;
        if (omrApi().OMR_SetPrintOrder(1, 2, 3) == 0)
            return;
        lPosition = CLng(Val(CStr(cPrinter->Distance())));
        if (omrApi().OMR_SetPrintPosition(lPosition) == 0)
            return;
        if (omrApi().OMR_SetPrintString(1, cPrinter->Buffer1().c_str()) == 0)
            return;
        if (omrApi().OMR_SetPrintString(2, cPrinter->Buffer2().c_str()) == 0)
            return;
        if (omrApi().OMR_SetPrintString(3, cPrinter->Buffer3().c_str()) == 0)
            return;
        bResult = True;
    });
    return bResult;
}

} // namespace kel
