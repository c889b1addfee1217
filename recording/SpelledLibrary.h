// SPDX-License-Identifier: MIT
#pragma once

#include "platform/OmrApi.h"

#include <functional>
#include <span>
#include <string>

namespace kel {

/// The USB readers' library with each of its calls in words, as a line of a transcript has them.
class SpelledLibrary : public OmrApi {
public:
    Int32 OMR_OpenDeviceUSB() final;
    Int32 OMR_CloseDevice() final;
    Int32 OMR_GetLastError() final;
    Int32 OMR_GetReadingMethod(Int32& lVal1, Int32& lVal2) final;
    Int32 OMR_SetReadingMethod(Int32 lMethod, Int32 lVal2) final;
    Int32 OMR_GetNumberOfColumnsToRead() final;
    Int32 OMR_SetNumberOfColumnsToRead(Int32 lCount) final;
    Int32 OMR_SetBackSensorUnit(Int32 lOn) final;
    Int32 OMR_GetSheetFeedMode(Int32& lVal1, Int32& lVal2) final;
    Int32 OMR_SetSheetFeedMode(Int32 lVal1, Int32 lVal2) final;
    Int32 OMR_FeedSheet() final;
    Int32 OMR_GetMarks(Int32 lSide, SRRead& uRead, Byte* bFirst) final;
    Int32 OMR_EjectSheet(Int32 lOutlet) final;
    Int32 OMR_GetBarcodeReaderUnit() final;
    Int32 OMR_SetBarcodeReaderUnit(Int32 lOn) final;
    Int32 OMR_SetBarCodeArea(SRBarcodeArea& uArea) final;
    Int32 OMR_SetBarCodeReadType(Int32 lMask) final;
    Int32 OMR_SetBarCodeCheckDigit(Byte bType, Int32 lOn) final;
    Int32 OMR_GetBarcodeInfo(Int32& lReadCount, Int32& lSettingCount) final;
    Int32 OMR_GetBarcodeData(Int32 lIndex, Byte& bBcType, Int32& lDataLen, Byte* bFirst) final;
    Int32 OMR_SetPrintOrder(Int32 lFirst, Int32 lSecond, Int32 lThird) final;
    Int32 OMR_SetPrintPosition(Int32 lPosition) final;
    Int32 OMR_SetPrintString(Int32 lLine, const char* sText) final;

protected:
    /// A call: its words, what it sets beside its result, and how a library is called so.
    struct Call {
        std::string words;
        std::span<Int32* const> numbers{};
        std::span<Byte> bytes{};
        std::function<Int32(OmrApi& library)> make;
    };

    /// Makes the call or plays it; its result.
    virtual Int32 called(const Call& call) = 0;
};

} // namespace kel
