#include "cli/SimulatorArguments.h"

#include "cli/ModelLookup.h"
#include "cli/UsageError.h"
#include "simulators/SimulatorTable.h"
#include "simulators/sekonic_usb/OmrApiSimulation.h"

#include <algorithm>
#include <limits>

namespace kel {

namespace {

// So many sheets of random marks are more than anybody feeds.
constexpr std::uint64_t kMostSheets = 1'000'000;

std::vector<Int16> orNone(const std::optional<std::vector<Int16>>& sizes)
{
    return sizes.value_or(std::vector<Int16>());
}

FormDescription simulatedForm(const ScanForm& form)
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

std::pair<std::string, std::string> nameAndValue(const std::string& text)
{
    const std::size_t sign = text.find('=');
    if (sign == std::string::npos)
        throw UsageError("'" + text + "' sets nothing; write NAME=VALUE.");
    return {text.substr(0, sign), text.substr(sign + 1)};
}

/// Has what is wrong with the options told in a sentence.
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

} // namespace

void SimulatorArguments::addTo(CLI::App& command)
{
    sheetsOption_ = command.add_option("--sheets", sheetsFile_, "The sheets in the feeder, from a file")
                        ->type_name("FILE")
                        ->group("Simulated reader");
    CLI::Option* seed = command.add_option("--seed", seed_, "Makes the sheets up, the same for the same number")
                            ->capture_default_str()
                            ->type_name("N")
                            ->group("Simulated reader")
                            ->excludes(sheetsOption_);
    CLI::Option* count = command.add_option("--count", count_, "How many sheets to make up")
                             ->capture_default_str()
                             ->check(CLI::Range(std::uint64_t{0}, kMostSheets))
                             ->type_name("N")
                             ->group("Simulated reader")
                             ->excludes(sheetsOption_);
    CLI::Option* fault = command
                             .add_option("--fault", faults_,
                                         "What goes wrong: jam@sheet=3, late=2500@sheet=1, drop@byte=120, "
                                         "unplug@byte=64 ..., or one that 'kelreader simulate --list-faults' lists")
                             ->type_name("FAULT")
                             ->allow_extra_args(false)
                             ->group("Simulated reader");
    CLI::Option* rate = command.add_option("--rate", rate_, "How fast the bytes come")
                            ->check(CLI::IsMember({"wire", "unlimited"}))
                            ->default_str("wire")
                            ->group("Simulated reader");
    CLI::Option* setting = command.add_option("--setting", settings_, "What only this model has: NAME=VALUE")
                               ->type_name("NAME=VALUE")
                               ->allow_extra_args(false)
                               ->group("Simulated reader");
    options_ = {sheetsOption_, seed, count, fault, rate, setting};
}

bool SimulatorArguments::given() const
{
    return std::any_of(options_.begin(), options_.end(), [](const CLI::Option* option) { return option->count() > 0; });
}

ScanForm SimulatorArguments::formOfSheets(kelReaderType model) const
{
    SheetShape shape = isUsbModel(model) ? omrSheetShape({}) : sheetShape(model);
    if (sheetsOption_->count() > 0) {
        const SheetShape largest = orRefuse([&] { return largestShape(SheetFeeder::fromFile(sheetsFile_)); });
        if (largest.side1Rows > 0 && largest.side1Columns > 0)
            shape = largest;
    }
    ScanForm form;
    form.side1Rows = onePage(shape.side1Rows);
    form.side1Cols = onePage(shape.side1Columns);
    form.side2Rows = onePage(shape.side2Rows);
    form.side2Cols = onePage(shape.side2Columns);
    return form;
}

SimulatorOptions SimulatorArguments::options(const ScanForm& form) const
{
    SimulatorOptions options;
    options.form = simulatedForm(form);
    options.rate = rate_ == "unlimited" ? Rate::Unlimited : Rate::Wire;
    for (const std::string& setting : settings_)
        options.settings.insert(nameAndValue(setting));
    // The parity and the data bits of a pseudo-terminal do not show.
    options.wireShows = false;
    for (const std::string& fault : faults_) {
        if (const std::optional<SiteFault> siteFault = parseSiteFault(fault))
            options.siteFaults.push_back(*siteFault);
        else
            options.faults.push_back(parseFault(fault));
    }
    if (sheetsOption_->count() > 0)
        options.sheets = SheetFeeder::fromFile(sheetsFile_);
    else
        options.seeded = SeededSheets{seed_, count_};
    return options;
}

std::unique_ptr<Simulator> SimulatorArguments::make(kelReaderType model, const ScanForm& form) const
{
    return orRefuse([&] { return makeSimulator(model, options(form)); });
}

OmrSimulationState SimulatorArguments::omrState(const ScanForm& form) const
{
    return orRefuse([&] {
        const OmrSimulationState state = omrSimulationState(options(form));
        // What somebody has written is looked at here, where it can be told.
        return sheetsOption_->count() > 0 ? omrStateFromJson(toJson(state)) : state;
    });
}

} // namespace kel
