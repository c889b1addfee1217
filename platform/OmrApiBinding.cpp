// SPDX-License-Identifier: MIT
#include "platform/OmrApiBinding.h"

#include "platform/WayBack.h"

#include <string>

// The library does not share our types' names, only their layout.
#if defined(__clang__)
#define KEL_CALLS_FOREIGN_CODE __attribute__((no_sanitize("function")))
#else
#define KEL_CALLS_FOREIGN_CODE
#endif

namespace kel {

namespace {

// In the order of OmrFunction.
constexpr std::array<const char*, kOmrFunctionCount> kNames = {
    "OMR_OpenDeviceUSB",
    "OMR_CloseDevice",
    "OMR_GetLastError",
    "OMR_GetReadingMethod",
    "OMR_SetReadingMethod",
    "OMR_GetNumberOfColumnsToRead",
    "OMR_SetNumberOfColumnsToRead",
    "OMR_SetBackSensorUnit",
    "OMR_GetSheetFeedMode",
    "OMR_SetSheetFeedMode",
    "OMR_GetBarcodeReaderUnit",
    "OMR_SetBarcodeReaderUnit",
    "OMR_EjectSheet",
    "OMR_FeedSheet",
    "OMR_GetMarks",
    "OMR_SetBarCodeArea",
    "OMR_SetBarCodeReadType",
    "OMR_SetBarCodeCheckDigit",
    "OMR_GetBarcodeInfo",
    "OMR_GetBarcodeData",
    "OMR_SetPrintOrder",
    "OMR_SetPrintPosition",
    "OMR_SetPrintString",

    "OMR_FormatMessage",
    "OMR_GetPrintString",
    "OMR_GetPrintPosition",
    "OMR_GetPrinterMode",
    "OMR_SetPrinterMode",
    "OMR_GetPrintOrder",
    "OMR_GetBackSensorUnit",
};
static_assert(kNames.back() != nullptr);

} // namespace

const char* omrFunctionName(OmrFunction function)
{
    return kNames[static_cast<std::size_t>(function)];
}

bool OmrApiBinding::has(OmrFunction function)
{
    return find(function) != nullptr;
}

void* OmrApiBinding::find(OmrFunction function)
{
    void*& entry = found_[static_cast<std::size_t>(function)];
    if (!entry)
        entry = library_.find(omrFunctionName(function));
    return entry;
}

void* OmrApiBinding::find(OmrFunction function, std::size_t argumentCount)
{
    constexpr std::size_t kBytesOfArgument = 4; // also of one that is narrower
    void*& entry = found_[static_cast<std::size_t>(function)];
    if (!find(function))
        entry = library_.findDecorated(omrFunctionName(function), argumentCount * kBytesOfArgument);
    return entry;
}

template <class Entry, class... Arguments>
KEL_CALLS_FOREIGN_CODE Int32 callForeign(Entry entry, Arguments... arguments)
{
    return entry(arguments...);
}

template <class... Arguments>
Int32 OmrApiBinding::call(OmrFunction function, Arguments... arguments)
{
    using Entry = Int32(KEL_OMR_CALL*)(Arguments...);
    void* const entry = find(function, sizeof...(arguments));
    if (!entry)
        throw RuntimeFailure(FailureCode::LibraryFunctionNotFound, std::string("Can't find DLL entry point ") +
                                                                       omrFunctionName(function) + " in " +
                                                                       kOmrLibraryName);
    return withWayBack([&] { return callForeign(reinterpret_cast<Entry>(entry), arguments...); });
}

Int32 OmrApiBinding::OMR_OpenDeviceUSB()
{
    return call(OmrFunction::OMR_OpenDeviceUSB);
}

Int32 OmrApiBinding::OMR_CloseDevice()
{
    return call(OmrFunction::OMR_CloseDevice);
}

Int32 OmrApiBinding::OMR_GetLastError()
{
    return call(OmrFunction::OMR_GetLastError);
}

Int32 OmrApiBinding::OMR_GetReadingMethod(Int32& lVal1, Int32& lVal2)
{
    return call(OmrFunction::OMR_GetReadingMethod, &lVal1, &lVal2);
}

Int32 OmrApiBinding::OMR_SetReadingMethod(Int32 lMethod, Int32 lVal2)
{
    return call(OmrFunction::OMR_SetReadingMethod, lMethod, lVal2);
}

Int32 OmrApiBinding::OMR_GetNumberOfColumnsToRead()
{
    return call(OmrFunction::OMR_GetNumberOfColumnsToRead);
}

Int32 OmrApiBinding::OMR_SetNumberOfColumnsToRead(Int32 lCount)
{
    return call(OmrFunction::OMR_SetNumberOfColumnsToRead, lCount);
}

Int32 OmrApiBinding::OMR_SetBackSensorUnit(Int32 lOn)
{
    return call(OmrFunction::OMR_SetBackSensorUnit, lOn);
}

Int32 OmrApiBinding::OMR_GetSheetFeedMode(Int32& lVal1, Int32& lVal2)
{
    return call(OmrFunction::OMR_GetSheetFeedMode, &lVal1, &lVal2);
}

Int32 OmrApiBinding::OMR_SetSheetFeedMode(Int32 lVal1, Int32 lVal2)
{
    return call(OmrFunction::OMR_SetSheetFeedMode, lVal1, lVal2);
}

Int32 OmrApiBinding::OMR_FeedSheet()
{
    return call(OmrFunction::OMR_FeedSheet);
}

Int32 OmrApiBinding::OMR_GetMarks(Int32 lSide, SRRead& uRead, Byte* bFirst)
{
    return call(OmrFunction::OMR_GetMarks, lSide, &uRead, bFirst);
}

Int32 OmrApiBinding::OMR_EjectSheet(Int32 lOutlet)
{
    return call(OmrFunction::OMR_EjectSheet, lOutlet);
}

Int32 OmrApiBinding::OMR_GetBarcodeReaderUnit()
{
    return call(OmrFunction::OMR_GetBarcodeReaderUnit);
}

Int32 OmrApiBinding::OMR_SetBarcodeReaderUnit(Int32 lOn)
{
    return call(OmrFunction::OMR_SetBarcodeReaderUnit, lOn);
}

Int32 OmrApiBinding::OMR_SetBarCodeArea(SRBarcodeArea& uArea)
{
    return call(OmrFunction::OMR_SetBarCodeArea, &uArea);
}

Int32 OmrApiBinding::OMR_SetBarCodeReadType(Int32 lMask)
{
    return call(OmrFunction::OMR_SetBarCodeReadType, lMask);
}

Int32 OmrApiBinding::OMR_SetBarCodeCheckDigit(Byte bType, Int32 lOn)
{
    return call(OmrFunction::OMR_SetBarCodeCheckDigit, bType, lOn);
}

Int32 OmrApiBinding::OMR_GetBarcodeInfo(Int32& lReadCount, Int32& lSettingCount)
{
    return call(OmrFunction::OMR_GetBarcodeInfo, &lReadCount, &lSettingCount);
}

Int32 OmrApiBinding::OMR_GetBarcodeData(Int32 lIndex, Byte& bBcType, Int32& lDataLen, Byte* bFirst)
{
    return call(OmrFunction::OMR_GetBarcodeData, lIndex, &bBcType, &lDataLen, bFirst);
}

Int32 OmrApiBinding::OMR_SetPrintOrder(Int32 lFirst, Int32 lSecond, Int32 lThird)
{
    return call(OmrFunction::OMR_SetPrintOrder, lFirst, lSecond, lThird);
}

Int32 OmrApiBinding::OMR_SetPrintPosition(Int32 lPosition)
{
    return call(OmrFunction::OMR_SetPrintPosition, lPosition);
}

Int32 OmrApiBinding::OMR_SetPrintString(Int32 lLine, const char* sText)
{
    return call(OmrFunction::OMR_SetPrintString, lLine, sText);
}

} // namespace kel
