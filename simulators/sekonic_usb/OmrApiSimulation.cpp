// SPDX-License-Identifier: MIT
#include "simulators/sekonic_usb/OmrApiSimulation.h"

#include "simulators/sekonic_usb/LoadedLibrary.h"
#include "simulators/sekonic_usb/OmrSimulationControl.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>

namespace kel {

namespace {

constexpr Int32 kFeederEmpty = 0x40110000;
constexpr Int32 kJam = 0x35090000;
constexpr Int32 kNoAnswer = 0x20070000;
constexpr Int32 kRefused = 0x30080000;

/// A side as the library takes it: all rows as long as the longest.
class PackedSide {
public:
    explicit PackedSide(const MarkRows& cells) : rows_(static_cast<Int32>(cells.size()))
    {
        for (const std::vector<Int16>& row : cells)
            columns_ = std::max(columns_, static_cast<Int32>(row.size()));
        for (Int32 row = 1; row <= rows_; ++row) {
            for (Int32 column = 1; column <= columns_; ++column)
                marks_.push_back(byteOf(markAt(cells, row, column)));
        }
    }

    [[nodiscard]] OmrSimSide side() const { return {marks_.data(), rows_, columns_}; }

private:
    static std::uint8_t byteOf(Int16 mark)
    {
        if (mark < 0 || mark > 255)
            throw std::runtime_error(std::to_string(mark) + " is not a mark from 0 to 255");
        return static_cast<std::uint8_t>(mark);
    }

    Int32 rows_;
    Int32 columns_ = 0;
    std::vector<std::uint8_t> marks_;
};

/// What a fault of the transport is at a feed.
OmrSimulationState::FeedCode feedCodeOf(const Fault& fault)
{
    if (!fault.byte && fault.sheet) {
        if (fault.kind == Fault::Kind::Jam)
            return {*fault.sheet, kJam};
        if (fault.kind == Fault::Kind::Empty)
            return {*fault.sheet, kFeederEmpty};
    }
    throw std::invalid_argument("no fault " + toText(fault) + " here; the USB models know jam and empty at a sheet");
}

/// What is wrong where the reader stands, as the library has it.
void spoil(OmrSimulationState& state, const SiteFaults& faults)
{
    using Kind = SiteFault::Kind;
    const bool setUpOtherwise = faults.has(Kind::LeftInMode) || faults.has(Kind::SetupRefused);
    if (setUpOtherwise) {
        state.readingMethod = {1, 0};
        state.feedMode = {1, 0};
        state.columns = 24;
    }
    if (faults.has(Kind::SetupRefused))
        for (const char* function : {"OMR_SetReadingMethod", "OMR_SetNumberOfColumnsToRead", "OMR_SetSheetFeedMode"})
            state.refusals.push_back({.function = function, .code = kRefused});
    if (faults.has(Kind::BarcodeUnitMissing))
        state.barcodeUnit = -1;
    if (faults.has(Kind::NotConnected) || faults.value(Kind::SwitchedOff, 1) == 0)
        state.connected = false;
    else if (const std::optional<Int32> off = faults.value(Kind::SwitchedOff, 1))
        state.refusals.push_back({.function = "OMR_FeedSheet", .call = *off, .code = kNoAnswer});
    if (faults.has(Kind::EmptyFeeder)) {
        state.sheets.clear();
        state.randomSheets.reset();
    }
    if (const std::optional<Int32> jam = faults.value(Kind::Jam, 1))
        state.feedCodes.push_back({*jam, kJam});
    for (const SiteFault& fault : faults.all())
        if (isOmrPaperFault(fault.kind))
            state.paperFaults.push_back(fault);
}

Int32 settingValue(const std::string& name, const std::string& text)
{
    Int32 value = 0;
    const char* const end = text.data() + text.size();
    if (text.empty() || std::from_chars(text.data(), end, value).ptr != end)
        throw std::invalid_argument("setting " + name + ": " + text + " is not a number");
    return value;
}

} // namespace

OmrApiSimulation::OmrApiSimulation(std::filesystem::path library, const OmrSimulationState& state)
    : library_(std::filesystem::absolute(library)), handle_(loadLibrary(library_))
{
    configure(state);
}

void OmrApiSimulation::configure(const OmrSimulationState& state)
{
    OmrSimulationState withoutSheets = state;
    withoutSheets.sheets.clear();
    char message[512];
    auto* const set = reinterpret_cast<OmrSimConfigure*>(find("OMRSIM_Configure"));
    if (set(toJson(withoutSheets).c_str(), message, sizeof message) == 0)
        throw std::runtime_error(message);
    for (const SimulatedSheet& sheet : state.sheets)
        put(sheet);
}

void OmrApiSimulation::put(const SimulatedSheet& sheet)
{
    const PackedSide side1(sheet.side1);
    const PackedSide side2(sheet.side2);
    std::vector<const char*> barcodes;
    for (const std::string& barcode : sheet.barcodes)
        barcodes.push_back(barcode.c_str());
    const OmrSimSheet packed{.side = {side1.side(), side2.side()},
                             .barcodes = barcodes.data(),
                             .barcodeCount = static_cast<std::int32_t>(barcodes.size())};
    if (reinterpret_cast<OmrSimPutSheet*>(find("OMRSIM_PutSheet"))(&packed) == 0)
        throw std::runtime_error("a side of a sheet has more than 200 rows");
}

OmrSimulationReport OmrApiSimulation::report() const
{
    auto* const ask = reinterpret_cast<OmrSimReport*>(find("OMRSIM_Report"));
    std::string text(static_cast<std::size_t>(ask(nullptr, 0)) + 1, '\0');
    text.resize(static_cast<std::size_t>(ask(text.data(), static_cast<std::int32_t>(text.size()))));
    return omrReportFromJson(text);
}

void* OmrApiSimulation::find(const char* name) const
{
    if (void* found = findInLibrary(handle_, name))
        return found;
    throw std::runtime_error(library_.string() + " is not the simulated library: it lacks " + name);
}

SheetShape omrSheetShape(const FormDescription& form)
{
    SheetShape shape = OmrSimulationState::RandomSheets().shape;
    shape.barcodes = static_cast<Int32>(form.barcodes.size());
    if (!form.side1Rows.empty())
        shape.side1Rows = form.side1Rows.front();
    if (!form.side2Rows.empty())
        shape.side2Rows = form.side2Rows.front();
    return shape;
}

OmrSimulationState omrSimulationState(const SimulatorOptions& options)
{
    OmrSimulationState state;
    for (SheetFeeder sheets = options.sheets; !sheets.empty();)
        state.sheets.push_back(sheets.take());
    if (options.seeded)
        state.randomSheets = {.shape = omrSheetShape(options.form), .seeded = *options.seeded};
    for (const Fault& fault : options.faults)
        state.feedCodes.push_back(feedCodeOf(fault));
    for (const auto& [name, value] : options.settings) {
        if (name == "columns")
            state.columns = settingValue(name, value);
        else if (name == "barcodeUnit")
            state.barcodeUnit = settingValue(name, value);
        else
            throw std::invalid_argument("unknown setting " + name + "; this model knows barcodeUnit, columns");
    }
    for (const SiteFault& fault : options.siteFaults)
        if (!entryOf(fault.kind).appliesTo(SimulatedFamily::SekonicUsb))
            throw std::invalid_argument("fault \"" + toText(fault) + "\": does not happen to " +
                                        nameOf(SimulatedFamily::SekonicUsb) + " readers");
    spoil(state, SiteFaults(options.siteFaults));
    return state;
}

} // namespace kel
