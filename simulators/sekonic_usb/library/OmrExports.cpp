// SPDX-License-Identifier: MIT
#include "simulators/sekonic_usb/library/OmrDevice.h"

#include "formats/Json.h"
#include "simulators/sekonic_usb/OmrSimulationControl.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <type_traits>

#if !defined(_WIN32)
#include <dlfcn.h>
#endif

// The functions of the maker's library as a program sees them: C functions on 32-bit numbers, records of 32-bit
// fields, arrays by their first byte, and texts that end with a zero.

#if defined(_WIN32)
// In 32 bits each function takes its arguments off the stack by itself; elsewhere there is one way only.
#define OMR_EXPORT extern "C" __declspec(dllexport) __stdcall
#define OMRSIM_EXPORT extern "C" __declspec(dllexport)
#else
#define OMR_EXPORT extern "C" __attribute__((visibility("default")))
#define OMRSIM_EXPORT OMR_EXPORT
#endif

namespace {

/// What is to be read of a side, and has been.
struct MarksRecord {
    std::int32_t threshold;
    std::int32_t rows;
    std::int32_t columns;
};
static_assert(sizeof(MarksRecord) == 12 && offsetof(MarksRecord, rows) == 4 && offsetof(MarksRecord, columns) == 8);

/// Where barcodes are looked for.
struct AreaRecord {
    std::int32_t start;
    std::int32_t length;
};
static_assert(sizeof(AreaRecord) == 8 && offsetof(AreaRecord, length) == 4);

/// The file beside this library that has the name under which it was loaded, with ".json" after it.
std::string fileBesideLibrary()
{
#if defined(_WIN32)
    return {};
#else
    Dl_info self{};
    ::dladdr(reinterpret_cast<const void*>(&fileBesideLibrary), &self);
    const std::string file = std::string(self.dli_fname ? self.dli_fname : "") + ".json";
    return std::filesystem::exists(file) ? file : std::string();
#endif
}

/// The source of the reader's state; empty if there is none.
std::string stateFile()
{
    const char* named = std::getenv("KEL_OMRAPI_SIMULATION");
    return named ? named : fileBesideLibrary();
}

/// A reader that nobody has set up: as the state file describes it, with an empty feeder without one, and no reader at
/// all where the file is broken.
std::unique_ptr<kel::OmrDevice> deviceOfFile()
{
    const std::string file = stateFile();
    if (file.empty())
        return std::make_unique<kel::OmrDevice>();
    try {
        return std::make_unique<kel::OmrDevice>(kel::omrStateFromJson(kel::readWholeFile(file, {"state file", 64})));
    } catch (const std::exception& error) {
        std::cerr << "simulated OMRAPI: " << file << ": " << error.what() << '\n';
        return std::make_unique<kel::OmrDevice>(kel::OmrSimulationState{.connected = false});
    }
}

/// The one reader that the library knows.
std::unique_ptr<kel::OmrDevice>& place()
{
    static std::unique_ptr<kel::OmrDevice> device;
    return device;
}

kel::OmrDevice& device()
{
    if (!place())
        place() = deviceOfFile();
    return *place();
}

kel::MarkRows rowsOf(const OmrSimSide& side)
{
    kel::MarkRows rows;
    const std::uint8_t* cell = side.marks;
    for (std::int32_t row = 0; row < side.rows; ++row, cell += side.columns)
        rows.emplace_back(cell, cell + side.columns);
    return rows;
}

/// As much of a text as fits, with a zero after it; the length of the whole.
std::int32_t give(const std::string& text, char* room, std::int32_t size)
{
    if (size > 0) {
        const std::size_t count = std::min(text.size(), static_cast<std::size_t>(size) - 1);
        std::copy_n(text.begin(), count, room);
        room[count] = '\0';
    }
    return static_cast<std::int32_t>(text.size());
}

} // namespace

// --- What a test or a program says to the simulation itself

OMRSIM_EXPORT std::int32_t OMRSIM_Configure(const char* state, char* message, std::int32_t size)
{
    try {
        place() = std::make_unique<kel::OmrDevice>(kel::omrStateFromJson(state));
        give({}, message, size);
        return 1;
    } catch (const std::exception& error) {
        give(error.what(), message, size);
        return 0;
    }
}

OMRSIM_EXPORT std::int32_t OMRSIM_PutSheet(const OmrSimSheet* sheet)
{
    if (sheet->side[0].rows > kel::kOmrMostRows || sheet->side[1].rows > kel::kOmrMostRows)
        return 0;
    device().put({.side1 = rowsOf(sheet->side[0]),
                  .side2 = rowsOf(sheet->side[1]),
                  .barcodes = {sheet->barcodes, sheet->barcodes + sheet->barcodeCount},
                  .fields = {}});
    return 1;
}

OMRSIM_EXPORT std::int32_t OMRSIM_Report(char* text, std::int32_t size)
{
    return give(toJson(device().report()), text, size);
}

// The three are what the header says they are.
static_assert(std::is_same_v<decltype(OMRSIM_Configure), OmrSimConfigure>);
static_assert(std::is_same_v<decltype(OMRSIM_PutSheet), OmrSimPutSheet>);
static_assert(std::is_same_v<decltype(OMRSIM_Report), OmrSimReport>);

// --- The library

OMR_EXPORT std::int32_t OMR_OpenDeviceUSB()
{
    return device().open();
}

OMR_EXPORT std::int32_t OMR_CloseDevice()
{
    return device().close();
}

OMR_EXPORT std::int32_t OMR_GetLastError()
{
    return device().lastError();
}

OMR_EXPORT std::int32_t OMR_GetReadingMethod(std::int32_t* first, std::int32_t* second)
{
    return device().readingMethod(*first, *second);
}

OMR_EXPORT std::int32_t OMR_SetReadingMethod(std::int32_t method, std::int32_t second)
{
    return device().setReadingMethod(method, second);
}

OMR_EXPORT std::int32_t OMR_GetNumberOfColumnsToRead()
{
    return device().columns();
}

OMR_EXPORT std::int32_t OMR_SetNumberOfColumnsToRead(std::int32_t count)
{
    return device().setColumns(count);
}

OMR_EXPORT std::int32_t OMR_SetBackSensorUnit(std::int32_t on)
{
    return device().setBackSensor(on);
}

OMR_EXPORT std::int32_t OMR_GetSheetFeedMode(std::int32_t* first, std::int32_t* second)
{
    return device().feedMode(*first, *second);
}

OMR_EXPORT std::int32_t OMR_SetSheetFeedMode(std::int32_t first, std::int32_t second)
{
    return device().setFeedMode(first, second);
}

OMR_EXPORT std::int32_t OMR_FeedSheet()
{
    return device().feed();
}

OMR_EXPORT std::int32_t OMR_GetMarks(std::int32_t side, MarksRecord* record, std::uint8_t* bytes)
{
    return device().marks(side, record->threshold, record->rows, record->columns, bytes);
}

OMR_EXPORT std::int32_t OMR_EjectSheet(std::int32_t outlet)
{
    return device().eject(outlet);
}

OMR_EXPORT std::int32_t OMR_GetBarcodeReaderUnit()
{
    return device().barcodeUnit();
}

OMR_EXPORT std::int32_t OMR_SetBarcodeReaderUnit(std::int32_t on)
{
    return device().setBarcodeUnit(on);
}

OMR_EXPORT std::int32_t OMR_SetBarCodeArea(const AreaRecord* area)
{
    return device().setBarcodeArea(area->start, area->length);
}

OMR_EXPORT std::int32_t OMR_SetBarCodeReadType(std::int32_t mask)
{
    return device().setBarcodeTypes(mask);
}

OMR_EXPORT std::int32_t OMR_SetBarCodeCheckDigit(std::uint8_t type, std::int32_t on)
{
    return device().setCheckDigit(type, on);
}

OMR_EXPORT std::int32_t OMR_GetBarcodeInfo(std::int32_t* readCount, std::int32_t* settingCount)
{
    return device().barcodeInfo(*readCount, *settingCount);
}

OMR_EXPORT std::int32_t OMR_GetBarcodeData(std::int32_t index, std::uint8_t* type, std::int32_t* length,
                                           std::uint8_t* bytes)
{
    return device().barcode(index, *type, *length, bytes);
}

OMR_EXPORT std::int32_t OMR_SetPrintOrder(std::int32_t first, std::int32_t second, std::int32_t third)
{
    return device().setPrintOrder(first, second, third);
}

OMR_EXPORT std::int32_t OMR_SetPrintPosition(std::int32_t position)
{
    return device().setPrintPosition(position);
}

OMR_EXPORT std::int32_t OMR_SetPrintString(std::int32_t line, const char* text)
{
    return device().setPrintString(line, text);
}

// --- There, and never called

OMR_EXPORT std::int32_t OMR_FormatMessage()
{
    return device().unexpected("OMR_FormatMessage");
}

OMR_EXPORT std::int32_t OMR_GetPrintString()
{
    return device().unexpected("OMR_GetPrintString");
}

OMR_EXPORT std::int32_t OMR_GetPrintPosition()
{
    return device().unexpected("OMR_GetPrintPosition");
}

OMR_EXPORT std::int32_t OMR_GetPrinterMode()
{
    return device().unexpected("OMR_GetPrinterMode");
}

OMR_EXPORT std::int32_t OMR_SetPrinterMode()
{
    return device().unexpected("OMR_SetPrinterMode");
}

OMR_EXPORT std::int32_t OMR_GetPrintOrder()
{
    return device().unexpected("OMR_GetPrintOrder");
}

OMR_EXPORT std::int32_t OMR_GetBackSensorUnit()
{
    return device().unexpected("OMR_GetBackSensorUnit");
}
