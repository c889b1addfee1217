// SPDX-License-Identifier: MIT
#include "host/Simulation.h"

#include "host/ModelLookup.h"
#include "host/PlayedReader.h"
#include "host/SimulatorParts.h"
#include "host/UsageError.h"
#include "platform/Platform.h"
#include "simulators/SimulatorTable.h"
#include "simulators/sekonic_usb/OmrApiSimulation.h"

#include <algorithm>
#include <limits>

namespace kel::host {

namespace {

// On Windows in a folder of its own: a component beside it would always find it.
constexpr const char* kSimulatedLibrary =
#if defined(_WIN32)
    "simulated/OMRAPI.dll";
#else
    "libOMRAPI_simulated.so";
#endif

std::vector<Int16> orNone(const std::optional<std::vector<Int16>>& sizes)
{
    return sizes.value_or(std::vector<Int16>());
}

FormDescription simulatedForm(const Form& form)
{
    FormDescription result;
    result.side1Rows = orNone(form.side1Rows);
    result.side1Cols = orNone(form.side1Cols);
    result.side2Rows = orNone(form.side2Rows);
    result.side2Cols = orNone(form.side2Cols);
    for (const clsKELReaderWindow& window : form.windows)
        result.windows.push_back({window.StartRow(), window.NumRows(), window.RowGap(), window.StartCol(),
                                  window.NumCols(), window.ColGap(), window.Page(), window.Orientation()});
    for (const clsKELReaderBarcode& barcode : form.barcodes)
        result.barcodes.push_back(
            {barcode.Page(), barcode.Distance(), barcode.Length(), barcode.Symbology(), barcode.Orientation()});
    return result;
}

/// NAME=VALUE; the last value of a name counts.
void set(std::map<std::string, std::string>& settings, const std::string& text)
{
    const std::size_t sign = text.find('=');
    if (sign == std::string::npos)
        throw UsageError("'" + text + "' sets nothing; write NAME=VALUE.");
    settings.insert_or_assign(text.substr(0, sign), text.substr(sign + 1));
}

/// Reports what is wrong with the options in a sentence.
template <class Make>
auto orRefuse(Make&& make)
{
    try {
        return make();
    } catch (const UsageError&) {
        throw;
    } catch (const std::exception& refusal) {
        throw UsageError(std::string(refusal.what()) + ".");
    }
}

void takeLargest(Int32& rows, Int32& columns, const MarkRows& side)
{
    rows = std::max(rows, static_cast<Int32>(side.size()));
    for (const std::vector<Int16>& row : side)
        columns = std::max(columns, static_cast<Int32>(row.size()));
}

/// The shape of the largest of some sheets.
SheetShape largestShape(SheetFeeder sheets)
{
    SheetShape shape{.side1Rows = 0, .side1Columns = 0};
    while (!sheets.empty()) {
        const SimulatedSheet sheet = sheets.take();
        takeLargest(shape.side1Rows, shape.side1Columns, sheet.side1);
        takeLargest(shape.side2Rows, shape.side2Columns, sheet.side2);
    }
    return shape;
}

std::vector<Int16> onePage(Int32 size)
{
    return {static_cast<Int16>(std::min<Int32>(size, std::numeric_limits<Int16>::max()))};
}

SimulatorOptions optionsOf(const Simulation& simulation, const Form& form)
{
    SimulatorOptions options;
    options.form = simulatedForm(form);
    options.rate = simulation.unlimited ? Rate::Unlimited : Rate::Wire;
    for (const std::string& setting : simulation.settings)
        set(options.settings, setting);
    // The parity and the data bits of a pseudo-terminal are not visible.
    options.wireShows = false;
    for (const std::string& fault : simulation.faults) {
        if (const std::optional<SiteFault> siteFault = parseSiteFault(fault))
            options.siteFaults.push_back(*siteFault);
        else
            options.faults.push_back(parseFault(fault));
    }
    if (!simulation.sheets.empty())
        options.sheets = SheetFeeder::fromFile(simulation.sheets);
    else
        options.seeded = SeededSheets{simulation.seed, simulation.count, simulation.copies};
    return options;
}

} // namespace

Form formOfSheets(const Simulation& simulation, kelReaderType model)
{
    SheetShape shape = isUsbModel(model) ? omrSheetShape({}) : sheetShape(model);
    if (!simulation.sheets.empty()) {
        const SheetShape largest = orRefuse([&] { return largestShape(SheetFeeder::fromFile(simulation.sheets)); });
        if (largest.side1Rows > 0 && largest.side1Columns > 0)
            shape = largest;
    }
    Form form;
    form.side1Rows = onePage(shape.side1Rows);
    form.side1Cols = onePage(shape.side1Columns);
    form.side2Rows = onePage(shape.side2Rows);
    form.side2Cols = onePage(shape.side2Columns);
    return form;
}

std::unique_ptr<Simulator> makeSimulator(const Simulation& simulation, kelReaderType model, const Form& form)
{
    return orRefuse([&] { return kel::makeSimulator(model, optionsOf(simulation, form)); });
}

OmrSimulationState omrState(const Simulation& simulation, const Form& form)
{
    return orRefuse([&] {
        const OmrSimulationState state = omrSimulationState(optionsOf(simulation, form));
        // The user's texts are checked here, where a mistake can be reported.
        return simulation.sheets.empty() ? state : omrStateFromJson(toJson(state));
    });
}

std::filesystem::path simulatedOmrApiFile()
{
    const std::filesystem::path file = platform().process().ComponentFolder() / kSimulatedLibrary;
    if (!std::filesystem::exists(file))
        throw OperationError("The simulated library of the USB readers is missing: " + file.string() + ".");
    return file;
}

namespace {

class PlayedLibrary final : public PlayedReader {
public:
    explicit PlayedLibrary(const OmrSimulationState& state) : simulation_(simulatedOmrApiFile(), state)
    {
        platform().omrApiLoader().libraryFile(simulation_.library());
    }

    [[nodiscard]] std::string device() const override { return {}; }

    [[nodiscard]] std::vector<std::string> end() override { return simulation_.report().faults; }

private:
    OmrApiSimulation simulation_;
};

} // namespace

SimulatedReader::SimulatedReader(kelReaderType model, const Simulation& simulation, const Form& form)
{
    if (isUsbModel(model))
        player_ = std::make_unique<PlayedLibrary>(omrState(simulation, form));
    else
        player_ = playedReader(makeSimulator(simulation, model, form));
}

SimulatedReader::~SimulatedReader() = default;

std::string SimulatedReader::device() const
{
    return player_->device();
}

std::vector<std::string> SimulatedReader::end()
{
    return player_->end();
}

} // namespace kel::host
