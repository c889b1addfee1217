// SPDX-License-Identifier: MIT
#include "recording/SpelledLibrary.h"

#include "recording/Transcript.h"

#include <algorithm>
#include <array>

namespace kel {

namespace {

// The marks of the longest sheet; a host has room for so many at least.
constexpr std::int64_t kMostMarks = 200 * 48;

template <class... Numbers>
std::string inWords(const char* name, Numbers... numbers)
{
    std::string words = name;
    ((words += " " + std::to_string(numbers)), ...);
    return words;
}

std::span<Byte> room(Byte* first, std::int64_t count, std::int64_t most)
{
    return {first, static_cast<std::size_t>(std::clamp<std::int64_t>(count, 0, most))};
}

} // namespace

Int32 SpelledLibrary::OMR_OpenDeviceUSB()
{
    return called({.words = "OMR_OpenDeviceUSB", .make = [](OmrApi& library) { return library.OMR_OpenDeviceUSB(); }});
}

Int32 SpelledLibrary::OMR_CloseDevice()
{
    return called({.words = "OMR_CloseDevice", .make = [](OmrApi& library) { return library.OMR_CloseDevice(); }});
}

Int32 SpelledLibrary::OMR_GetLastError()
{
    return called({.words = "OMR_GetLastError", .make = [](OmrApi& library) { return library.OMR_GetLastError(); }});
}

Int32 SpelledLibrary::OMR_GetReadingMethod(Int32& lVal1, Int32& lVal2)
{
    const std::array numbers{&lVal1, &lVal2};
    return called({
        .words = "OMR_GetReadingMethod",
        .numbers = numbers,
        .make = [&](OmrApi& library) { return library.OMR_GetReadingMethod(lVal1, lVal2); },
    });
}

Int32 SpelledLibrary::OMR_SetReadingMethod(Int32 lMethod, Int32 lVal2)
{
    return called({.words = inWords("OMR_SetReadingMethod", lMethod, lVal2),
                   .make = [&](OmrApi& library) { return library.OMR_SetReadingMethod(lMethod, lVal2); }});
}

Int32 SpelledLibrary::OMR_GetNumberOfColumnsToRead()
{
    return called({.words = "OMR_GetNumberOfColumnsToRead",
                   .make = [](OmrApi& library) { return library.OMR_GetNumberOfColumnsToRead(); }});
}

Int32 SpelledLibrary::OMR_SetNumberOfColumnsToRead(Int32 lCount)
{
    return called({.words = inWords("OMR_SetNumberOfColumnsToRead", lCount),
                   .make = [&](OmrApi& library) { return library.OMR_SetNumberOfColumnsToRead(lCount); }});
}

Int32 SpelledLibrary::OMR_SetBackSensorUnit(Int32 lOn)
{
    return called({.words = inWords("OMR_SetBackSensorUnit", lOn),
                   .make = [&](OmrApi& library) { return library.OMR_SetBackSensorUnit(lOn); }});
}

Int32 SpelledLibrary::OMR_GetSheetFeedMode(Int32& lVal1, Int32& lVal2)
{
    const std::array numbers{&lVal1, &lVal2};
    return called({
        .words = "OMR_GetSheetFeedMode",
        .numbers = numbers,
        .make = [&](OmrApi& library) { return library.OMR_GetSheetFeedMode(lVal1, lVal2); },
    });
}

Int32 SpelledLibrary::OMR_SetSheetFeedMode(Int32 lVal1, Int32 lVal2)
{
    return called({.words = inWords("OMR_SetSheetFeedMode", lVal1, lVal2),
                   .make = [&](OmrApi& library) { return library.OMR_SetSheetFeedMode(lVal1, lVal2); }});
}

Int32 SpelledLibrary::OMR_FeedSheet()
{
    return called({.words = "OMR_FeedSheet", .make = [](OmrApi& library) { return library.OMR_FeedSheet(); }});
}

Int32 SpelledLibrary::OMR_GetMarks(Int32 lSide, SRRead& uRead, Byte* bFirst)
{
    const std::array numbers{&uRead.lRows, &uRead.lCols};
    return called({.words = inWords("OMR_GetMarks", lSide, uRead.lThreshold, uRead.lRows, uRead.lCols),
                   .numbers = numbers,
                   .bytes = room(bFirst, std::int64_t{uRead.lRows} * uRead.lCols, kMostMarks),
                   .make = [&](OmrApi& library) { return library.OMR_GetMarks(lSide, uRead, bFirst); }});
}

Int32 SpelledLibrary::OMR_EjectSheet(Int32 lOutlet)
{
    return called({.words = inWords("OMR_EjectSheet", lOutlet),
                   .make = [&](OmrApi& library) { return library.OMR_EjectSheet(lOutlet); }});
}

Int32 SpelledLibrary::OMR_GetBarcodeReaderUnit()
{
    return called({.words = "OMR_GetBarcodeReaderUnit",
                   .make = [](OmrApi& library) { return library.OMR_GetBarcodeReaderUnit(); }});
}

Int32 SpelledLibrary::OMR_SetBarcodeReaderUnit(Int32 lOn)
{
    return called({.words = inWords("OMR_SetBarcodeReaderUnit", lOn),
                   .make = [&](OmrApi& library) { return library.OMR_SetBarcodeReaderUnit(lOn); }});
}

Int32 SpelledLibrary::OMR_SetBarCodeArea(SRBarcodeArea& uArea)
{
    return called({.words = inWords("OMR_SetBarCodeArea", uArea.lStart, uArea.lLength),
                   .make = [&](OmrApi& library) { return library.OMR_SetBarCodeArea(uArea); }});
}

Int32 SpelledLibrary::OMR_SetBarCodeReadType(Int32 lMask)
{
    return called({.words = inWords("OMR_SetBarCodeReadType", lMask),
                   .make = [&](OmrApi& library) { return library.OMR_SetBarCodeReadType(lMask); }});
}

Int32 SpelledLibrary::OMR_SetBarCodeCheckDigit(Byte bType, Int32 lOn)
{
    return called({.words = inWords("OMR_SetBarCodeCheckDigit", Int32{bType}, lOn),
                   .make = [&](OmrApi& library) { return library.OMR_SetBarCodeCheckDigit(bType, lOn); }});
}

Int32 SpelledLibrary::OMR_GetBarcodeInfo(Int32& lReadCount, Int32& lSettingCount)
{
    const std::array numbers{&lReadCount, &lSettingCount};
    return called({
        .words = "OMR_GetBarcodeInfo",
        .numbers = numbers,
        .make = [&](OmrApi& library) { return library.OMR_GetBarcodeInfo(lReadCount, lSettingCount); },
    });
}

Int32 SpelledLibrary::OMR_GetBarcodeData(Int32 lIndex, Byte& bBcType, Int32& lDataLen, Byte* bFirst)
{
    Int32 type = bBcType;
    const std::array numbers{&type, &lDataLen};
    const Int32 result = called({.words = inWords("OMR_GetBarcodeData", lIndex, Int32{bBcType}, lDataLen),
                                 .numbers = numbers,
                                 .bytes = room(bFirst, lDataLen, lDataLen),
                                 .make = [&](OmrApi& library) {
                                     const Int32 answer = library.OMR_GetBarcodeData(lIndex, bBcType, lDataLen, bFirst);
                                     type = bBcType;
                                     return answer;
                                 }});
    bBcType = static_cast<Byte>(type);
    return result;
}

Int32 SpelledLibrary::OMR_SetPrintOrder(Int32 lFirst, Int32 lSecond, Int32 lThird)
{
    return called({.words = inWords("OMR_SetPrintOrder", lFirst, lSecond, lThird),
                   .make = [&](OmrApi& library) { return library.OMR_SetPrintOrder(lFirst, lSecond, lThird); }});
}

Int32 SpelledLibrary::OMR_SetPrintPosition(Int32 lPosition)
{
    return called({.words = inWords("OMR_SetPrintPosition", lPosition),
                   .make = [&](OmrApi& library) { return library.OMR_SetPrintPosition(lPosition); }});
}

Int32 SpelledLibrary::OMR_SetPrintString(Int32 lLine, const char* sText)
{
    const std::string text = *sText == '\0' ? "" : " " + transcriptBytes(sText);
    return called({.words = inWords("OMR_SetPrintString", lLine) + text,
                   .make = [&](OmrApi& library) { return library.OMR_SetPrintString(lLine, sText); }});
}

} // namespace kel
