// SPDX-License-Identifier: MIT
#pragma once

#include "types/Numbers.h"

#include <cstddef>
#include <filesystem>

namespace kel {

/// What `OMR_GetMarks` is to deliver, and what it delivered.
struct SRRead {
    Int32 lThreshold = 0; ///< recognition threshold
    Int32 lRows = 0;      ///< rows wanted; comes back as the rows that were delivered
    Int32 lCols = 0;      ///< columns wanted
};
static_assert(offsetof(SRRead, lThreshold) == 0 && offsetof(SRRead, lRows) == 4 && offsetof(SRRead, lCols) == 8 &&
              sizeof(SRRead) == 12);

/// The one area in which barcodes are looked for, along the sheet.
struct SRBarcodeArea {
    Int32 lStart = 0;
    Int32 lLength = 0;
};
static_assert(offsetof(SRBarcodeArea, lStart) == 0 && offsetof(SRBarcodeArea, lLength) == 4 &&
              sizeof(SRBarcodeArea) == 8);

/// The library of the USB readers' maker, OMRAPI.DLL: its functions under their own names.
///
/// It keeps the state of the one device that is open at a time. A call blocks until the device is done; no events
/// run meanwhile. An array is handed over by its first byte, a text in ANSI with a zero after it. The library is
/// loaded at the first call of any function, and each function is looked for when it is called: a missing library is
/// failure 53, a function that the library lacks is failure 453.
class OmrApi {
public:
    virtual ~OmrApi() = default;

    // --- The device

    /// 0 is success, anything else a failure.
    virtual Int32 OMR_OpenDeviceUSB() = 0;
    virtual Int32 OMR_CloseDevice() = 0;
    /// The code of the last failure, 0 if there was none.
    virtual Int32 OMR_GetLastError() = 0;
    /// Not 0 is success, here and wherever nothing else is said.
    virtual Int32 OMR_GetReadingMethod(Int32& lVal1, Int32& lVal2) = 0;
    virtual Int32 OMR_SetReadingMethod(Int32 lMethod, Int32 lVal2) = 0;
    /// The number of columns itself.
    virtual Int32 OMR_GetNumberOfColumnsToRead() = 0;
    virtual Int32 OMR_SetNumberOfColumnsToRead(Int32 lCount) = 0;
    /// 1 switches the sensor of the back on, 0 off.
    virtual Int32 OMR_SetBackSensorUnit(Int32 lOn) = 0;
    virtual Int32 OMR_GetSheetFeedMode(Int32& lVal1, Int32& lVal2) = 0;
    virtual Int32 OMR_SetSheetFeedMode(Int32 lVal1, Int32 lVal2) = 0;

    // --- A sheet

    /// Whether it went well is what `OMR_GetLastError` says.
    virtual Int32 OMR_FeedSheet() = 0;
    /// Side 0 is the front, 1 the back. Fills one byte a cell, row after row.
    virtual Int32 OMR_GetMarks(Int32 lSide, SRRead& uRead, Byte* bFirst) = 0;
    /// 1 is success.
    virtual Int32 OMR_EjectSheet(Int32 lOutlet) = 0;

    // --- Barcodes

    /// -1 is a failure, 0 off, anything else on.
    virtual Int32 OMR_GetBarcodeReaderUnit() = 0;
    virtual Int32 OMR_SetBarcodeReaderUnit(Int32 lOn) = 0;
    virtual Int32 OMR_SetBarCodeArea(SRBarcodeArea& uArea) = 0;
    /// A mask of symbologies, the bits as in `kelBarcodeType`.
    virtual Int32 OMR_SetBarCodeReadType(Int32 lMask) = 0;
    virtual Int32 OMR_SetBarCodeCheckDigit(Byte bType, Int32 lOn) = 0;
    virtual Int32 OMR_GetBarcodeInfo(Int32& lReadCount, Int32& lSettingCount) = 0;
    /// Barcode `lIndex`, from 1. `lDataLen` says how much room there is and comes back as the length of the text.
    virtual Int32 OMR_GetBarcodeData(Int32 lIndex, Byte& bBcType, Int32& lDataLen, Byte* bFirst) = 0;

    // --- Print

    /// The lines in the order in which they are printed.
    virtual Int32 OMR_SetPrintOrder(Int32 lFirst, Int32 lSecond, Int32 lThird) = 0;
    virtual Int32 OMR_SetPrintPosition(Int32 lPosition) = 0;
    virtual Int32 OMR_SetPrintString(Int32 lLine, const char* sText) = 0;
};

/// Finds the library of the USB readers' maker.
class OmrApiLoader {
public:
    virtual ~OmrApiLoader() = default;

    /// The library. Nothing is loaded before one of its functions is called.
    [[nodiscard]] virtual OmrApi& omrApi() = 0;

    /// The file to load instead of the one that would be found by name, from the next call on; empty for that one. A
    /// platform whose library is no file ignores it.
    virtual void libraryFile(const std::filesystem::path& file) { static_cast<void>(file); }

    /// The width in bits that the library must have, if one was found and is of no use in this process; 0 otherwise.
    [[nodiscard]] virtual Int32 widthNeeded() const { return 0; }
};

} // namespace kel
