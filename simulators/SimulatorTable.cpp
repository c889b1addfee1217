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

/// The models of one simulated reader, what their sheets look like, and how it is made.
struct SimulatorFamily {
    std::vector<kelReaderType> models;
    SheetShape shape;
    std::unique_ptr<Simulator> (*make)(SimulatorOptions);
};

template <class Reader>
std::unique_ptr<Simulator> make(SimulatorOptions options)
{
    return std::make_unique<Reader>(std::move(options));
}

// One row a family. The shape is what the model reads in page mode with its usual settings.
const std::vector<SimulatorFamily>& families()
{
    static const std::vector<SimulatorFamily> table = {
        {{kelReaderTypeAppersonAdvantageLink},
         {.side1Rows = 40, .side1Columns = 12, .highestMark = 199},
         make<RawMarkReader>},
        {{kelReaderTypeAppersonGradeMaster},
         {.side1Rows = 100, .side1Columns = 5, .barcodes = 1, .barcodeLength = 10},
         make<RawMarkReader>},
        {{kelReaderTypeAppersonBenchMark3000},
         {.side1Rows = 50,
          .side1Columns = 5,
          .digitFields = {{"Student ID", 12}, {"Page 1 ID", 4}, {"Test ID", 12}, {"School ID", 12}, {"Class ID", 12}}},
         make<DataLineReader>},
        {{kelReaderTypeAppersonAdvantage1200},
         {.side1Rows = 50,
          .side1Columns = 5,
          .digitFields =
              {{"Student ID", 10}, {"Test Version", 1}, {"Essay Score", 4}, {"Page 1 ID", 4}, {"Page 2 ID", 4}}},
         make<DataLineReader>},
        {{kelReaderTypeNCSEZData, kelReaderTypeChatsworthACF100}, {.side1Rows = 40, .side1Columns = 12}, make<EZData>},
        {{kelReaderTypeChatsworthOMR1100, kelReaderTypeChatsworthOMR2000, kelReaderTypeChatsworthALSAccelScanOMR,
          kelReaderTypeChatsworthACF200, kelReaderTypeChatsworthACP200},
         {.side1Rows = 40, .side1Columns = 12},
         make<Chatsworth>},
        {{kelReaderTypeScanningSystemsSR601, kelReaderTypeScanningSystemsSR700351},
         {.side1Rows = 40, .side1Columns = 48, .highestMark = 15, .barcodes = 1},
         make<SekonicSerial>},
        {{kelReaderTypeScanningSystemsSR607, kelReaderTypeScanningSystemsSR700352},
         {.side1Rows = 40, .side1Columns = 48, .side2Rows = 40, .side2Columns = 48, .highestMark = 15, .barcodes = 1},
         make<SekonicSerial>},
        {{kelReaderTypeScanningSystemsSR410, kelReaderTypeSekonicSR430},
         {.side1Rows = 40, .side1Columns = 12, .highestMark = 15},
         make<SekonicSerial>},
        {{kelReaderTypeNCSOpScan2, kelReaderTypeNCSOpScan3, kelReaderTypeNCSOpScan4, kelReaderTypeNCSOpScan5,
          kelReaderTypeNCSOpScan6, kelReaderTypeNCSOpScan7, kelReaderTypeNCSOpScan8, kelReaderTypeNCSOpScaniNSIGHT2,
          kelReaderTypeNCSOpScaniNSIGHT4},
         {.side1Rows = 63, .side1Columns = 48, .highestMark = 15},
         make<OpScan>},
        {{kelReaderTypeScantronScanMark2000, kelReaderTypeScantronScanMark2250, kelReaderTypeScantronScanMark2500,
          kelReaderTypeScantronScanMark4000, kelReaderTypeScantronScanMark5500, kelReaderTypeScantronScanMarkES2010,
          kelReaderTypeScantronScanMarkES2260, kelReaderTypeScantronScanMarkES2800},
         {.side1Rows = 63, .side1Columns = 48, .highestMark = 9},
         make<Scanmark>},
        // A raw value of 13 would end the reply.
        {{kelReaderTypeScantron8000, kelReaderTypeScantron8400},
         {.side1Rows = 63, .side1Columns = 48, .highestMark = 12},
         make<Scanmark>},
        {{kelReaderTypePDIVMR138}, {.side1Rows = 40, .side1Columns = 12}, make<VMR138>},
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
    options.model = model;
    if (options.seeded) {
        const SheetShape shape = sheetShape(model, options.form);
        for (std::uint64_t place = 0; place < options.seeded->count; ++place)
            options.sheets.put(randomSheet(shape, options.seeded->seed, place));
    }
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
