// SPDX-License-Identifier: MIT
#pragma once

#include "platform/OmrApi.h"

#include <array>
#include <cstdint>

/// How the functions of the library are called: its 32-bit Windows edition clears the stack by itself.
#if defined(_WIN32) && !defined(_WIN64)
#define KEL_OMR_CALL __stdcall
#else
#define KEL_OMR_CALL
#endif

namespace kel {

/// The library's name in failures, on every system.
inline constexpr const char* kOmrLibraryName = "OMRAPI.DLL";

/// The functions of the library that this component declares. The last group is declared and never called.
enum class OmrFunction : std::uint8_t {
    OMR_OpenDeviceUSB,
    OMR_CloseDevice,
    OMR_GetLastError,
    OMR_GetReadingMethod,
    OMR_SetReadingMethod,
    OMR_GetNumberOfColumnsToRead,
    OMR_SetNumberOfColumnsToRead,
    OMR_SetBackSensorUnit,
    OMR_GetSheetFeedMode,
    OMR_SetSheetFeedMode,
    OMR_GetBarcodeReaderUnit,
    OMR_SetBarcodeReaderUnit,
    OMR_EjectSheet,
    OMR_FeedSheet,
    OMR_GetMarks,
    OMR_SetBarCodeArea,
    OMR_SetBarCodeReadType,
    OMR_SetBarCodeCheckDigit,
    OMR_GetBarcodeInfo,
    OMR_GetBarcodeData,
    OMR_SetPrintOrder,
    OMR_SetPrintPosition,
    OMR_SetPrintString,

    OMR_FormatMessage,
    OMR_GetPrintString,
    OMR_GetPrintPosition,
    OMR_GetPrinterMode,
    OMR_SetPrinterMode,
    OMR_GetPrintOrder,
    OMR_GetBackSensorUnit,
};

inline constexpr std::size_t kOmrFunctionCount = static_cast<std::size_t>(OmrFunction::OMR_GetBackSensorUnit) + 1;

/// The name under which the library exports a function.
[[nodiscard]] const char* omrFunctionName(OmrFunction function);

/// A library whose functions are found by their names.
class SymbolSource {
public:
    virtual ~SymbolSource() = default;

    /// The address of a function, null if the library has none of that name. Loads the library if that has not been
    /// done; 53 "File not found: OMRAPI.DLL" when there is none, 48 when the file is there and cannot be loaded.
    [[nodiscard]] virtual void* find(const char* name) = 0;

    /// The same for a function under the name that a compiler of the library's makes of it, with the bytes of its
    /// arguments: "_OMR_EjectSheet@4". Only a 32-bit Windows edition has any.
    [[nodiscard]] virtual void* findDecorated(const char* name, std::size_t argumentBytes)
    {
        static_cast<void>(name);
        static_cast<void>(argumentBytes);
        return nullptr;
    }
};

/// The library as it was loaded. A function is looked for at its first call and then kept.
class OmrApiBinding final : public OmrApi {
public:
    /// The library must outlive the binding.
    explicit OmrApiBinding(SymbolSource& library) : library_(library) {}

    /// Whether the library has a function, also one that is never called. Loads the library.
    [[nodiscard]] bool has(OmrFunction function);

    Int32 OMR_OpenDeviceUSB() override;
    Int32 OMR_CloseDevice() override;
    Int32 OMR_GetLastError() override;
    Int32 OMR_GetReadingMethod(Int32& lVal1, Int32& lVal2) override;
    Int32 OMR_SetReadingMethod(Int32 lMethod, Int32 lVal2) override;
    Int32 OMR_GetNumberOfColumnsToRead() override;
    Int32 OMR_SetNumberOfColumnsToRead(Int32 lCount) override;
    Int32 OMR_SetBackSensorUnit(Int32 lOn) override;
    Int32 OMR_GetSheetFeedMode(Int32& lVal1, Int32& lVal2) override;
    Int32 OMR_SetSheetFeedMode(Int32 lVal1, Int32 lVal2) override;
    Int32 OMR_FeedSheet() override;
    Int32 OMR_GetMarks(Int32 lSide, SRRead& uRead, Byte* bFirst) override;
    Int32 OMR_EjectSheet(Int32 lOutlet) override;
    Int32 OMR_GetBarcodeReaderUnit() override;
    Int32 OMR_SetBarcodeReaderUnit(Int32 lOn) override;
    Int32 OMR_SetBarCodeArea(SRBarcodeArea& uArea) override;
    Int32 OMR_SetBarCodeReadType(Int32 lMask) override;
    Int32 OMR_SetBarCodeCheckDigit(Byte bType, Int32 lOn) override;
    Int32 OMR_GetBarcodeInfo(Int32& lReadCount, Int32& lSettingCount) override;
    Int32 OMR_GetBarcodeData(Int32 lIndex, Byte& bBcType, Int32& lDataLen, Byte* bFirst) override;
    Int32 OMR_SetPrintOrder(Int32 lFirst, Int32 lSecond, Int32 lThird) override;
    Int32 OMR_SetPrintPosition(Int32 lPosition) override;
    Int32 OMR_SetPrintString(Int32 lLine, const char* sText) override;

private:
    template <class... Arguments>
    Int32 call(OmrFunction function, Arguments... arguments);

    [[nodiscard]] void* find(OmrFunction function);
    [[nodiscard]] void* find(OmrFunction function, std::size_t argumentCount);

    SymbolSource& library_;
    std::array<void*, kOmrFunctionCount> found_{};
};

} // namespace kel
