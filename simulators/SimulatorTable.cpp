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

#include <algorithm>
#include <array>
#include <stdexcept>

namespace kel {

namespace {

/// Models of one simulated reader, how their line is usually set, what their sheets look like, and how it is made.
struct SimulatorFamily {
    SimulatedFamily family;
    std::vector<kelReaderType> models;
    const char* line;
    SheetShape shape;
    std::unique_ptr<Simulator> (*make)(SimulatorOptions);
};

template <class Reader>
std::unique_ptr<Simulator> make(SimulatorOptions options)
{
    return std::make_unique<Reader>(std::move(options));
}

// The shape is what the model reads in page mode with its usual settings.
const std::vector<SimulatorFamily>& families()
{
    using enum SimulatedFamily;
    static const std::vector<SimulatorFamily> table = {
        {Apperson,
         {kelReaderTypeAppersonAdvantageLink},
         "19200,N,8,1",
         {.side1Rows = 40, .side1Columns = 12, .highestMark = 199},
         make<RawMarkReader>},
        {Apperson,
         {kelReaderTypeAppersonGradeMaster},
         "19200,N,8,1",
         {.side1Rows = 100, .side1Columns = 5, .barcodes = 1, .barcodeLength = 10},
         make<RawMarkReader>},
        {Apperson,
         {kelReaderTypeAppersonBenchMark3000},
         "38400,N,8,1",
         {.side1Rows = 50,
          .side1Columns = 5,
          .digitFields = {{"Student ID", 12}, {"Page 1 ID", 4}, {"Test ID", 12}, {"School ID", 12}, {"Class ID", 12}}},
         make<DataLineReader>},
        {Apperson,
         {kelReaderTypeAppersonAdvantage1200},
         "38400,N,8,1",
         {.side1Rows = 50,
          .side1Columns = 5,
          .digitFields =
              {{"Student ID", 10}, {"Test Version", 1}, {"Essay Score", 4}, {"Page 1 ID", 4}, {"Page 2 ID", 4}}},
         make<DataLineReader>},
        {EZData,
         {kelReaderTypeNCSEZData, kelReaderTypeChatsworthACF100},
         "9600,E,7,1",
         {.side1Rows = 40, .side1Columns = 12},
         make<class EZData>},
        {Chatsworth,
         {kelReaderTypeChatsworthOMR1100, kelReaderTypeChatsworthOMR2000, kelReaderTypeChatsworthALSAccelScanOMR,
          kelReaderTypeChatsworthACF200, kelReaderTypeChatsworthACP200},
         "9600,E,7,1",
         {.side1Rows = 40, .side1Columns = 12},
         make<class Chatsworth>},
        {SekonicSerial,
         {kelReaderTypeScanningSystemsSR601, kelReaderTypeScanningSystemsSR700351},
         "9600,N,7,2",
         {.side1Rows = 40, .side1Columns = 48, .highestMark = 15, .barcodes = 1},
         make<class SekonicSerial>},
        {SekonicSerial,
         {kelReaderTypeScanningSystemsSR607, kelReaderTypeScanningSystemsSR700352},
         "9600,N,7,2",
         {.side1Rows = 40, .side1Columns = 48, .side2Rows = 40, .side2Columns = 48, .highestMark = 15, .barcodes = 1},
         make<class SekonicSerial>},
        {SekonicSerial,
         {kelReaderTypeScanningSystemsSR410},
         "9600,N,7,2",
         {.side1Rows = 40, .side1Columns = 12, .highestMark = 15},
         make<class SekonicSerial>},
        {SekonicSerial,
         {kelReaderTypeSekonicSR430},
         "38400,N,7,2",
         {.side1Rows = 40, .side1Columns = 12, .highestMark = 15},
         make<class SekonicSerial>},
        {OpScan,
         {kelReaderTypeNCSOpScan2, kelReaderTypeNCSOpScan3, kelReaderTypeNCSOpScan4, kelReaderTypeNCSOpScan5,
          kelReaderTypeNCSOpScan6, kelReaderTypeNCSOpScan7, kelReaderTypeNCSOpScan8, kelReaderTypeNCSOpScaniNSIGHT2,
          kelReaderTypeNCSOpScaniNSIGHT4},
         "38400,O,7,2",
         {.side1Rows = 63, .side1Columns = 48, .highestMark = 15},
         make<class OpScan>},
        {Scanmark,
         {kelReaderTypeScantronScanMark2000, kelReaderTypeScantronScanMark2250, kelReaderTypeScantronScanMark2500,
          kelReaderTypeScantronScanMark4000, kelReaderTypeScantronScanMark5500, kelReaderTypeScantronScanMarkES2010,
          kelReaderTypeScantronScanMarkES2260},
         "19200,N,8,2",
         {.side1Rows = 63, .side1Columns = 48, .highestMark = 9},
         make<class Scanmark>},
        {Scanmark,
         {kelReaderTypeScantronScanMarkES2800},
         "9600,N,8,2",
         {.side1Rows = 63, .side1Columns = 48, .highestMark = 9},
         make<class Scanmark>},
        // A raw value of 13 would end the reply.
        {Scanmark,
         {kelReaderTypeScantron8000, kelReaderTypeScantron8400},
         "9600,N,8,2",
         {.side1Rows = 63, .side1Columns = 48, .highestMark = 12},
         make<class Scanmark>},
        {PeripheralDynamics,
         {kelReaderTypePDIVMR138},
         "9600,N,8,1",
         {.side1Rows = 40, .side1Columns = 12},
         make<VMR138>},
    };
    return table;
}

const SimulatorFamily* familyOf(kelReaderType model)
{
    for (const SimulatorFamily& family : families())
        if (std::ranges::find(family.models, model) != family.models.end())
            return &family;
    return nullptr;
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

/// The model that is there in the place of one of a family.
std::optional<kelReaderType> otherModel(const std::vector<SiteFault>& faults, SimulatedFamily family)
{
    const bool speaksAsEZData = family == SimulatedFamily::EZData || family == SimulatedFamily::Chatsworth;
    const std::optional<Int32> model = SiteFaults(faults).value(
        SiteFault::Kind::OtherModel, speaksAsEZData ? kelReaderTypePDIVMR138 : kelReaderTypeNCSEZData);
    if (!model)
        return std::nullopt;
    const auto other = static_cast<kelReaderType>(*model);
    if (!familyOf(other))
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
    const SimulatorFamily* family = familyOf(model);
    if (!family)
        throw std::invalid_argument("there is no simulated reader of model " + std::to_string(model));
    demandThatApply(options.siteFaults, family->family);
    if (const std::optional<kelReaderType> other = otherModel(options.siteFaults, family->family)) {
        model = *other;
        family = familyOf(model);
        std::erase_if(options.settings, [](const auto& setting) { return setting.first != "line"; });
    }
    options.model = model;
    options.usualLine = family->line;
    if (options.seeded)
        options.sheets.put(sheetShape(model, options.form), *options.seeded);
    std::unique_ptr<Simulator> reader = family->make(std::move(options));
    if (const std::vector<std::string> unknown = reader->unknownSettings(); !unknown.empty())
        throw std::invalid_argument("unknown setting " + joined(unknown) + "; this model knows " +
                                    joined(reader->knownSettings()));
    return reader;
}

bool hasSimulator(kelReaderType model)
{
    return familyOf(model) != nullptr;
}

SimulatedFamily simulatedFamily(kelReaderType model)
{
    const SimulatorFamily* family = familyOf(model);
    return family ? family->family : SimulatedFamily::SekonicUsb;
}

std::string usualLine(kelReaderType model)
{
    const SimulatorFamily* family = familyOf(model);
    return family ? family->line : "";
}

SheetShape sheetShape(kelReaderType model, const FormDescription& form)
{
    const SimulatorFamily* family = familyOf(model);
    SheetShape shape = family ? family->shape : SheetShape{};
    takeFirst(shape.side1Rows, form.side1Rows);
    takeFirst(shape.side1Columns, form.side1Cols);
    takeFirst(shape.side2Rows, form.side2Rows);
    takeFirst(shape.side2Columns, form.side2Cols);
    return shape;
}

} // namespace kel
