// SPDX-License-Identifier: MIT
#include "drivers/sekonic_usb/BarcodeArea.h"
#include "drivers/sekonic_usb/ErrorCodes.h"
#include "drivers/sekonic_usb/MarkBytes.h"
#include "fuzz/Session.h"
#include "simulators/platform/SimulatedPlatform.h"
#include "simulators/sekonic_usb/OmrSimulationState.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <stdexcept>

// What the library of the USB readers' maker may answer: any numbers of rows and columns, any marks, any code, to a
// single call and within a session. Only run-time failures may come out. Besides, the state file of the simulated
// library, which people write.

namespace {

using namespace kel;

constexpr kelReaderType kSekonicUsbModels[] = {kelReaderTypeSekonicSR2300, kelReaderTypeSekonicSR3500,
                                               kelReaderTypeSekonicSR6500, kelReaderTypeSekonicSR1800};

/// Numbers and bytes off the front of the input; zeros after its end.
class Source {
public:
    explicit Source(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

    [[nodiscard]] Int32 number()
    {
        Int32 value = 0;
        const std::size_t count = std::min(sizeof value, bytes_.size());
        std::memcpy(&value, bytes_.data(), count);
        bytes_ = bytes_.subspan(count);
        return value;
    }

    [[nodiscard]] std::span<const std::uint8_t> rest() const { return bytes_; }

private:
    std::span<const std::uint8_t> bytes_;
};

void copyMarks(Source source)
{
    const Int32 lRows = source.number() % 300;
    const Int32 lCols = source.number() % 60;
    Array1<Byte> bytes(1, kMostBytesSR);
    const auto rest = source.rest();
    std::copy_n(rest.begin(), std::min<std::size_t>(rest.size(), kMostBytesSR), bytes.elements().begin());
    MarkArray marks(kMostRowsSR, kColumnsSR);
    MarkCopySR copy;
    const Int16 iRows = copyMarksSR(bytes, lRows, lCols, marks, copy);
    demand(iRows == (lRows > 0 && lCols > 0 ? lRows : 0), "all rows are there");
    for (Int32 lIndex = 1; lIndex <= iRows * lCols; ++lIndex)
        demand(marks((lIndex - 1) / lCols + 1, (lIndex - 1) % lCols + 1) == bytes(lIndex), "a byte is a cell");
}

void anyCount(Source source)
{
    Array1<Byte> bytes(1, kMostBytesSR);
    MarkArray marks(kMostRowsSR, kColumnsSR);
    const Int32 lRows = source.number();
    MarkCopySR copy;
    demand(copyMarksSR(bytes, lRows, source.number(), marks, copy) <= kMostRowsSR, "a sheet has so many rows");
}

void tellCode(Source source)
{
    const Int32 lError = source.number();
    demand(shownErrorSR(lError) >= 0 && shownErrorSR(lError) <= 99999999, "a code has eight digits");
    static_cast<void>(feedResultSR(lError));
    static_cast<void>(errorMessageSR(lError));
}

void mergeZones(Source source)
{
    clsKELReaderBarcodes zones;
    do {
        const auto zone = makeReference<clsKELReaderBarcode>();
        const Int32 number = source.number();
        zone->Distance(static_cast<Int16>(number & 0x7FFF));
        zone->Length(static_cast<Int16>(number >> 16));
        zones.Add(zone);
    } while (!source.rest().empty());
    const SRBarcodeArea uArea = barcodeAreaSR(zones);
    for (Int32 lZone = 1; lZone <= zones.Count(); ++lZone)
        demand(uArea.lStart <= zones.Item(lZone)->Distance(), "the area begins at the first zone");
}

void readState(std::span<const std::uint8_t> bytes)
{
    try {
        const OmrSimulationState state = omrStateFromJson({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
        demand(omrStateFromJson(toJson(state)) == state, "a state is written as it is read");
    } catch (const RuntimeFailure&) {
        throw;
    } catch (const std::runtime_error&) {
        // refused with its place
    }
}

/// A library whose every answer is the input's. It keeps to the room that it gets, and to the rows that it reports.
class HostileLibrary final : public OmrApi {
public:
    explicit HostileLibrary(Input answers) : answers_(answers) {}

    Int32 OMR_OpenDeviceUSB() override { return answers_.byte() & 1; }
    Int32 OMR_CloseDevice() override { return answer(); }
    Int32 OMR_GetLastError() override
    {
        constexpr Int32 kCodes[] = {0, 0, 0, 0x40120003, 0x41120003, 0x42120003, 0x40110000, -1};
        const Byte code = answers_.byte();
        return code < std::size(kCodes) ? kCodes[code] : (code << 16) + answers_.number16();
    }
    Int32 OMR_GetReadingMethod(Int32& lVal1, Int32& lVal2) override { return pair(lVal1, lVal2); }
    Int32 OMR_SetReadingMethod(Int32, Int32) override { return answer(); }
    Int32 OMR_GetNumberOfColumnsToRead() override { return answers_.number(); }
    Int32 OMR_SetNumberOfColumnsToRead(Int32) override { return answer(); }
    Int32 OMR_SetBackSensorUnit(Int32) override { return answer(); }
    Int32 OMR_GetSheetFeedMode(Int32& lVal1, Int32& lVal2) override { return pair(lVal1, lVal2); }
    Int32 OMR_SetSheetFeedMode(Int32, Int32) override { return answer(); }
    Int32 OMR_FeedSheet() override { return answer(); }
    Int32 OMR_GetMarks(Int32, SRRead& uRead, Byte* bFirst) override
    {
        const std::int64_t most = std::max<std::int64_t>(kMostBytesSR, std::int64_t{uRead.lRows} * uRead.lCols);
        const auto marks = answers_.take(static_cast<std::size_t>(std::min<std::int64_t>(most, answers_.byte() * 8)));
        std::copy(marks.begin(), marks.end(), bFirst);
        uRead.lRows = answers_.number();
        return answer();
    }
    Int32 OMR_EjectSheet(Int32) override { return answer(); }
    Int32 OMR_GetBarcodeReaderUnit() override { return answers_.number(); }
    Int32 OMR_SetBarcodeReaderUnit(Int32) override { return answer(); }
    Int32 OMR_SetBarCodeArea(SRBarcodeArea&) override { return answer(); }
    Int32 OMR_SetBarCodeReadType(Int32) override { return answer(); }
    Int32 OMR_SetBarCodeCheckDigit(Byte, Int32) override { return answer(); }
    Int32 OMR_GetBarcodeInfo(Int32& lReadCount, Int32& lSettingCount) override
    {
        return pair(lReadCount, lSettingCount);
    }
    Int32 OMR_GetBarcodeData(Int32, Byte& bBcType, Int32& lDataLen, Byte* bFirst) override
    {
        const auto text = answers_.take(std::min<std::size_t>(static_cast<std::size_t>(lDataLen), answers_.byte() * 3));
        std::copy(text.begin(), text.end(), bFirst);
        bBcType = answers_.byte();
        lDataLen = answers_.number();
        return answer();
    }
    Int32 OMR_SetPrintOrder(Int32, Int32, Int32) override { return answer(); }
    Int32 OMR_SetPrintPosition(Int32) override { return answer(); }
    Int32 OMR_SetPrintString(Int32, const char* sText) override { return std::strlen(sText) > 0 ? answer() : 1; }

private:
    /// Mostly that it went well.
    Int32 answer()
    {
        const Byte code = answers_.byte();
        return code < 0xF0 ? 1 : code - 0xF0;
    }
    Int32 pair(Int32& lVal1, Int32& lVal2)
    {
        lVal1 = answers_.number();
        lVal2 = answers_.number();
        return answer();
    }

    Input answers_;
};

void holdSession(Input input)
{
    SimulatedPlatform machine;
    const PlatformScope scope(machine);
    const Byte kind = input.byte();
    Input settings(input.take(kind & 0x3F));
    HostileLibrary library(input);
    if (kind < 0xFE)
        machine.omrApiLoader().set(&library);
    fuzzSession(machine, kSekonicUsbModels, settings);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 1)
        return 0;
    const std::span<const std::uint8_t> bytes(data + 1, size - 1);
    try {
        switch (data[0] % 6) {
        case 0: copyMarks(Source(bytes)); break;
        case 1: anyCount(Source(bytes)); break;
        case 2: tellCode(Source(bytes)); break;
        case 3: mergeZones(Source(bytes)); break;
        case 4: readState(bytes); break;
        default: holdSession(Input(bytes)); break;
        }
    } catch (const RuntimeFailure& failure) {
        demand(failure.number() == 6 || failure.number() == 9, "the failure is meant");
    }
    return 0;
}
