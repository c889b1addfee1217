#include "cli/SimulatorArguments.h"

#include "cli/UsageError.h"
#include "dispatch/ReaderModels.h"
#include "simulators/SimulatorTable.h"

#include <algorithm>

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
    result.windowMode = form.recognitionMode == kelRecognitionTypeWindow;
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
                                         "What goes wrong: jam@sheet=3, late=2500@sheet=1, "
                                         "drop@byte=120, unplug@byte=64 ...")
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

std::unique_ptr<Simulator> SimulatorArguments::make(kelReaderType model, const ScanForm& form) const
{
    if (!hasSimulator(model))
        throw UsageError("There is no simulated " + ReturnReaderName(model) + ".");
    SimulatorOptions options;
    options.form = simulatedForm(form);
    options.rate = rate_ == "unlimited" ? Rate::Unlimited : Rate::Wire;
    for (const std::string& setting : settings_)
        options.settings.insert(nameAndValue(setting));
    try {
        for (const std::string& fault : faults_)
            options.faults.push_back(parseFault(fault));
        if (sheetsOption_->count() > 0)
            options.sheets = SheetFeeder::fromFile(sheetsFile_);
        else
            options.seeded = SeededSheets{seed_, count_};
        return makeSimulator(model, std::move(options));
    } catch (const std::exception& refusal) {
        throw UsageError(std::string(refusal.what()) + ".");
    }
}

} // namespace kel
