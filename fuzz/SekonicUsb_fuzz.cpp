#include "drivers/sekonic_usb/BarcodeAreaSR.h"
#include "drivers/sekonic_usb/ErrorCodesSR.h"
#include "drivers/sekonic_usb/MarkBytesSR.h"
#include "simulators/sekonic_usb/OmrSimulationState.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <span>
#include <stdexcept>

// What the library of the USB readers' maker may answer: any numbers of rows and columns, any marks, any code. Only
// run-time failures may come out. Besides, the state file of the simulated library, which people write.

namespace {

using namespace kel;

void demand(bool holds)
{
    if (!holds)
        std::abort();
}

/// Numbers and bytes off the front of the input; zeros behind its end.
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
    const Int16 iRows = copyMarksSR(bytes, lRows, lCols, marks);
    demand(iRows == (lRows > 0 && lCols > 0 ? lRows : 0));
    for (Int32 lIndex = 1; lIndex <= iRows * lCols; ++lIndex)
        demand(marks((lIndex - 1) / lCols + 1, (lIndex - 1) % lCols + 1) == bytes(lIndex));
}

void anyCount(Source source)
{
    Array1<Byte> bytes(1, kMostBytesSR);
    MarkArray marks(kMostRowsSR, kColumnsSR);
    const Int32 lRows = source.number();
    demand(copyMarksSR(bytes, lRows, source.number(), marks) <= kMostRowsSR);
}

void tellCode(Source source)
{
    const Int32 lError = source.number();
    demand(shownErrorSR(lError) >= 0 && shownErrorSR(lError) <= 99999999);
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
        demand(uArea.lStart <= zones.Item(lZone)->Distance());
}

void readState(std::span<const std::uint8_t> bytes)
{
    try {
        const OmrSimulationState state = omrStateFromJson({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
        demand(omrStateFromJson(toJson(state)) == state);
    } catch (const RuntimeFailure&) {
        throw;
    } catch (const std::runtime_error&) {
        // refused with its place
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 1)
        return 0;
    const std::span<const std::uint8_t> bytes(data + 1, size - 1);
    try {
        switch (data[0] % 5) {
        case 0: copyMarks(Source(bytes)); break;
        case 1: anyCount(Source(bytes)); break;
        case 2: tellCode(Source(bytes)); break;
        case 3: mergeZones(Source(bytes)); break;
        default: readState(bytes); break;
        }
    } catch (const RuntimeFailure& failure) {
        demand(failure.number() == 6 || failure.number() == 9);
    }
    return 0;
}
