// SPDX-License-Identifier: MIT
#include "simulators/SimulatorTable.h"

#include "simulators/apperson/DataLineReader.h"
#include "simulators/apperson/RawMarkReader.h"
#include "simulators/chatsworth/Chatsworth.h"
#include "simulators/ezdata/EZData.h"
#include "simulators/ncs/OpScan.h"
#include "simulators/peripheral_dynamics/VMR138.h"
#include "simulators/scanning_systems/SekonicSerial.h"
#include "simulators/scantron/Scanmark.h"
#include "types/ModelTable.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string_view>

namespace kel {

namespace {

/// What is simulated of the models that name it: a family, what their sheets look like, and how a reader is made.
struct SimulatedWire {
    std::string_view name;
    SimulatedFamily family;
    SheetShape (*shape)(); ///< what the models read in page mode with their usual settings
    std::unique_ptr<Simulator> (*make)(SimulatorOptions);
};

template <class Reader>
std::unique_ptr<Simulator> make(SimulatorOptions options)
{
    return std::make_unique<Reader>(std::move(options));
}

using enum SimulatedFamily;

constexpr std::array kWires = std::to_array<SimulatedWire>({
    {"AdvantageLink", Apperson, [] { return SheetShape{.side1Rows = 40, .side1Columns = 12, .highestMark = 199}; },
     make<RawMarkReader>},
    {"GradeMaster", Apperson,
     [] { return SheetShape{.side1Rows = 100, .side1Columns = 5, .barcodes = 1, .barcodeLength = 10}; },
     make<RawMarkReader>},
    {"BenchMark3000", Apperson,
     [] {
         return SheetShape{
             .side1Rows = 50,
             .side1Columns = 5,
             .digitFields = {
                 {"Student ID", 12}, {"Page 1 ID", 4}, {"Test ID", 12}, {"School ID", 12}, {"Class ID", 12}}};
     },
     make<DataLineReader>},
    {"Advantage1200", Apperson,
     [] {
         return SheetShape{
             .side1Rows = 50,
             .side1Columns = 5,
             .digitFields = {
                 {"Student ID", 10}, {"Test Version", 1}, {"Essay Score", 4}, {"Page 1 ID", 4}, {"Page 2 ID", 4}}};
     },
     make<DataLineReader>},
    {"EZData", EZData, [] { return SheetShape{.side1Rows = 40, .side1Columns = 12}; }, make<class EZData>},
    {"Chatsworth", Chatsworth, [] { return SheetShape{.side1Rows = 40, .side1Columns = 12}; }, make<class Chatsworth>},
    {"SekonicLarge", SekonicSerial,
     [] { return SheetShape{.side1Rows = 40, .side1Columns = 48, .highestMark = 15, .barcodes = 1}; },
     make<class SekonicSerial>},
    {"SekonicLargeDuplex", SekonicSerial,
     [] {
         return SheetShape{.side1Rows = 40,
                           .side1Columns = 48,
                           .side2Rows = 40,
                           .side2Columns = 48,
                           .highestMark = 15,
                           .barcodes = 1};
     },
     make<class SekonicSerial>},
    {"SekonicSmall", SekonicSerial, [] { return SheetShape{.side1Rows = 40, .side1Columns = 12, .highestMark = 15}; },
     make<class SekonicSerial>},
    {"OpScan", OpScan, [] { return SheetShape{.side1Rows = 63, .side1Columns = 48, .highestMark = 15}; },
     make<class OpScan>},
    {"Scanmark", Scanmark, [] { return SheetShape{.side1Rows = 63, .side1Columns = 48, .highestMark = 9}; },
     make<class Scanmark>},
    // A raw value of 13 would end the reply.
    {"ScanmarkRaw", Scanmark, [] { return SheetShape{.side1Rows = 63, .side1Columns = 48, .highestMark = 12}; },
     make<class Scanmark>},
    {"VMR138", PeripheralDynamics, [] { return SheetShape{.side1Rows = 40, .side1Columns = 12}; }, make<VMR138>},
    {kNoWire, SekonicUsb, [] { return SheetShape{}; }, nullptr},
});
static_assert(modelWithUnknown(&ModelRow::wire, kWires) == 0,
              "nothing simulates the model of this number: it names what kWires lacks");

/// What simulates a model on a line; nullptr if nothing does.
const SimulatedWire* wireOf(kelReaderType model)
{
    const ModelRow* row = modelRow(model);
    return row && row->wire != kNoWire ? entryNamed(kWires, row->wire) : nullptr;
}

void takeFirst(Int32& size, const std::vector<Int16>& pages)
{
    if (!pages.empty())
        size = pages.front();
}

void demandThatApply(const std::vector<SiteFault>& faults, SimulatedFamily family)
{
    for (const SiteFault& fault : faults)
        if (!entryOf(fault.kind).appliesTo(family))
            throw std::invalid_argument("fault \"" + toText(fault) + "\": does not happen to " + nameOf(family) +
                                        " readers");
}

/// The model that is there instead of one of a family.
std::optional<kelReaderType> otherModel(const std::vector<SiteFault>& faults, SimulatedFamily family)
{
    const bool speaksAsEZData = family == SimulatedFamily::EZData || family == SimulatedFamily::Chatsworth;
    const std::optional<Int32> model = SiteFaults(faults).value(
        SiteFault::Kind::OtherModel, speaksAsEZData ? kelReaderTypePDIVMR138 : kelReaderTypeNCSEZData);
    if (!model)
        return std::nullopt;
    const auto other = static_cast<kelReaderType>(*model);
    if (!wireOf(other))
        throw std::invalid_argument("fault \"other-model:" + std::to_string(*model) +
                                    "\": there is no simulated reader of that model on a line");
    return other;
}

std::string joined(const auto& names)
{
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : ", ") + name;
    return text;
}

} // namespace

std::unique_ptr<Simulator> makeSimulator(kelReaderType model, SimulatorOptions options)
{
    const SimulatedWire* wire = wireOf(model);
    if (!wire)
        throw std::invalid_argument("there is no simulated reader of model " + std::to_string(model));
    demandThatApply(options.siteFaults, wire->family);
    if (const std::optional<kelReaderType> other = otherModel(options.siteFaults, wire->family)) {
        model = *other;
        wire = wireOf(model);
        std::erase_if(options.settings, [](const auto& setting) { return setting.first != "line"; });
    }
    options.model = model;
    options.usualLine = usualLine(model);
    if (options.seeded)
        options.sheets.put(sheetShape(model, options.form), *options.seeded);
    std::unique_ptr<Simulator> reader = wire->make(std::move(options));
    if (const std::vector<std::string> unknown = reader->unknownSettings(); !unknown.empty())
        throw std::invalid_argument("unknown setting " + joined(unknown) + "; this model knows " +
                                    joined(reader->knownSettings()));
    return reader;
}

bool hasSimulator(kelReaderType model)
{
    return wireOf(model) != nullptr;
}

SimulatedFamily simulatedFamily(kelReaderType model)
{
    const SimulatedWire* wire = wireOf(model);
    return wire ? wire->family : SimulatedFamily::SekonicUsb;
}

std::string usualLine(kelReaderType model)
{
    if (!wireOf(model))
        return "";
    const std::string_view line = modelRow(model)->line; // what follows the settings is the host's business
    return std::string(line.substr(0, line.find(' ')));
}

SheetShape sheetShape(kelReaderType model, const FormDescription& form)
{
    const SimulatedWire* wire = wireOf(model);
    SheetShape shape = wire ? wire->shape() : SheetShape{};
    takeFirst(shape.side1Rows, form.side1Rows);
    takeFirst(shape.side1Columns, form.side1Cols);
    takeFirst(shape.side2Rows, form.side2Rows);
    takeFirst(shape.side2Columns, form.side2Cols);
    return shape;
}

} // namespace kel
