// SPDX-License-Identifier: MIT
#pragma once

#include "com/Text.h"
#include "types/Boolean.h"
#include "types/Enumerations.h"
#include "types/Numbers.h"

#include "KELReader81U.h"

#include <string>

namespace kel::com {

/// Marks a property whose text is one of a sheet; see Text.h.
struct SheetText;

/// How a native value goes over the boundary: its type there, and the way there and back.
template <class Native>
struct Automation {
    using type = Native;
    [[nodiscard]] static type give(Native value) { return value; }
    [[nodiscard]] static Native take(type value) { return value; }
};

template <>
struct Automation<Int32> {
    using type = LONG;
    [[nodiscard]] static type give(Int32 value) { return value; }
    [[nodiscard]] static Int32 take(type value) { return static_cast<Int32>(value); }
};

template <>
struct Automation<Boolean> {
    using type = VARIANT_BOOL;
    [[nodiscard]] static type give(Boolean value) { return value.bits(); }
    [[nodiscard]] static Boolean take(type value) { return Boolean::fromBits(value); }
};

template <>
struct Automation<std::string> {
    using type = BSTR;
    [[nodiscard]] static type give(const std::string& value) { return newText(value); }
    [[nodiscard]] static std::string take(type value) { return textOf(value); }
};

template <>
struct Automation<SheetText> {
    using type = BSTR;
    [[nodiscard]] static type give(const std::string& value) { return newSheetText(value); }
    [[nodiscard]] static std::string take(type value) { return sheetTextOf(value); }
};

/// An enumeration has the same name on both sides. A number that is none of its members passes as it is.
template <class Native, class There>
struct AutomationEnum {
    using type = There;
    [[nodiscard]] static type give(Native value) { return static_cast<There>(value); }
    [[nodiscard]] static Native take(type value) { return static_cast<Native>(value); }
};

// clang-format off
template <> struct Automation<kelReaderType> : AutomationEnum<kelReaderType, ::kelReaderType> {};
template <> struct Automation<kelProfileType> : AutomationEnum<kelProfileType, ::kelProfileType> {};
template <> struct Automation<kelReaderHelpID> : AutomationEnum<kelReaderHelpID, ::kelReaderHelpID> {};
template <> struct Automation<kelBarcodeType> : AutomationEnum<kelBarcodeType, ::kelBarcodeType> {};
template <> struct Automation<kelBarcodeOrientation> : AutomationEnum<kelBarcodeOrientation, ::kelBarcodeOrientation> {};
template <> struct Automation<kelReaderRegistryKey> : AutomationEnum<kelReaderRegistryKey, ::kelReaderRegistryKey> {};
template <> struct Automation<kelRecognitionType> : AutomationEnum<kelRecognitionType, ::kelRecognitionType> {};
template <> struct Automation<kelReaderInterfaceType> : AutomationEnum<kelReaderInterfaceType, ::kelReaderInterfaceType> {};
template <> struct Automation<kelReaderBaudRate> : AutomationEnum<kelReaderBaudRate, ::kelReaderBaudRate> {};
template <> struct Automation<kelReaderDataBits> : AutomationEnum<kelReaderDataBits, ::kelReaderDataBits> {};
template <> struct Automation<kelReaderFlowControl> : AutomationEnum<kelReaderFlowControl, ::kelReaderFlowControl> {};
// clang-format on

} // namespace kel::com
