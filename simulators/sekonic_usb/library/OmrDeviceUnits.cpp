// SPDX-License-Identifier: MIT
#include "simulators/sekonic_usb/library/OmrDevice.h"

#include <algorithm>

// The units that a reader may have beside its transport: the barcode reader and the imprinter.

namespace kel {

namespace {

constexpr Int32 kSymbologies = 0x17;
constexpr Int32 kRoomForBarcode = 512;
constexpr Byte kAnyType = 0x40;
/// What the reader says of every barcode.
constexpr Byte kCode39 = 0x01;

} // namespace

// --- Barcodes

Int32 OmrDevice::barcodeUnit()
{
    if (const auto refused = begin("OMR_GetBarcodeReaderUnit", {}))
        return *refused;
    return demandOpen("OMR_GetBarcodeReaderUnit") ? state_.barcodeUnit : fail(kSomeError, -1);
}

Int32 OmrDevice::setBarcodeUnit(Int32 on)
{
    if (const auto refused = begin("OMR_SetBarcodeReaderUnit", {on}))
        return *refused;
    if (!demandOpen("OMR_SetBarcodeReaderUnit"))
        return fail(kSomeError);
    demand(on == 1, "barcode unit " + std::to_string(on));
    demand(state_.barcodeUnit == 0, "the barcode unit is switched on that is missing or on");
    state_.barcodeUnit = on;
    return 1;
}

// Without a unit, or with it off, the reader refuses the area.
Int32 OmrDevice::setBarcodeArea(Int32 start, Int32 length)
{
    if (const auto refused = begin("OMR_SetBarCodeArea", {start, length}))
        return *refused;
    if (!demandOpen("OMR_SetBarCodeArea") || state_.barcodeUnit == 0 || state_.barcodeUnit == -1)
        return fail(kSomeError);
    areaSet_ = true;
    return 1;
}

Int32 OmrDevice::setBarcodeTypes(Int32 mask)
{
    if (const auto refused = begin("OMR_SetBarCodeReadType", {mask}))
        return *refused;
    if (!demandOpen("OMR_SetBarCodeReadType") || !demand(areaSet_, "symbologies before an area"))
        return fail(kSomeError);
    demand(mask == kSymbologies, "symbologies " + std::to_string(mask));
    typesSet_ = true;
    return 1;
}

Int32 OmrDevice::setCheckDigit(Byte type, Int32 on)
{
    if (const auto refused = begin("OMR_SetBarCodeCheckDigit", {type, on}))
        return *refused;
    if (!demandOpen("OMR_SetBarCodeCheckDigit") || !demand(typesSet_, "a check digit before the symbologies"))
        return fail(kSomeError);
    demand(type >= 'a' && type <= 'c' && on == 0, "check digit " + std::to_string(type) + ", " + std::to_string(on));
    demand(checkDigits_.insert(type).second, "check digit " + std::to_string(type) + " is set twice");
    return 1;
}

Int32 OmrDevice::barcodeInfo(Int32& readCount, Int32& settingCount)
{
    if (const auto refused = begin("OMR_GetBarcodeInfo", {}))
        return *refused;
    if (!demandOpen("OMR_GetBarcodeInfo") || !demand(transport_.has_value(), "OMR_GetBarcodeInfo without a sheet") ||
        !demand(transport_->barcodesPrepared, "barcodes of a sheet that was fed without an area"))
        return fail(kSomeError);
    demand(transport_->frontFetched && transport_->backFetched == (backSensor_ == 1), "barcodes before the marks");
    readCount = static_cast<Int32>(transport_->sheet.barcodes.size());
    settingCount = 1;
    return 1;
}

Int32 OmrDevice::barcode(Int32 index, Byte& type, Int32& length, Byte* bytes)
{
    if (const auto refused = begin("OMR_GetBarcodeData", {index, type, length}))
        return *refused;
    if (!demandOpen("OMR_GetBarcodeData") || !demand(transport_.has_value(), "OMR_GetBarcodeData without a sheet") ||
        !demand(index >= 1 && static_cast<std::size_t>(index) <= transport_->sheet.barcodes.size(),
                "barcode " + std::to_string(index)) ||
        !demand(length == kRoomForBarcode && type == kAnyType, "room or type of a barcode"))
        return fail(kSomeError);
    const std::string& text = transport_->sheet.barcodes[static_cast<std::size_t>(index - 1)];
    const std::size_t count = std::min(text.size(), static_cast<std::size_t>(length));
    std::copy_n(text.begin(), count, bytes);
    length = static_cast<Int32>(text.size());
    type = kCode39;
    return 1;
}

// --- Print

Int32 OmrDevice::setPrintOrder(Int32 first, Int32 second, Int32 third)
{
    if (const auto refused = begin("OMR_SetPrintOrder", {first, second, third}))
        return *refused;
    if (!demandOpen("OMR_SetPrintOrder"))
        return fail(kSomeError);
    demand(transport_.has_value(), "a print without a sheet");
    demand(first == 1 && second == 2 && third == 3, "print lines out of order");
    orderSet_ = true;
    linesSet_ = 0;
    return 1;
}

Int32 OmrDevice::setPrintPosition(Int32 position)
{
    if (const auto refused = begin("OMR_SetPrintPosition", {position}))
        return *refused;
    if (!demandOpen("OMR_SetPrintPosition"))
        return fail(kSomeError);
    demand(orderSet_, "a print position before the order");
    printPosition_ = position;
    return 1;
}

Int32 OmrDevice::setPrintString(Int32 line, const char* text)
{
    if (const auto refused = begin("OMR_SetPrintString", {line}, std::string(" '") + text + "'"))
        return *refused;
    if (!demandOpen("OMR_SetPrintString") || !demand(line >= 1 && line <= 3, "print line " + std::to_string(line)))
        return fail(kSomeError);
    demand(printPosition_.has_value(), "a print line before the position");
    demand(line == linesSet_ + 1, "print line " + std::to_string(line) + " out of turn");
    printStrings_[static_cast<std::size_t>(line - 1)] = text;
    linesSet_ = line;
    return 1;
}

} // namespace kel
