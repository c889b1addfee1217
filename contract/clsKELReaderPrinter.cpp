// SPDX-License-Identifier: MIT
#include "contract/clsKELReaderPrinter.h"

#include "failure/ObjectLife.h"
#include "failure/guarded.h"
#include "types/ModelRows.h"

#include <algorithm>
#include <initializer_list>

namespace kel {

struct clsKELReaderPrinter::Fields {
    [[nodiscard]] std::string dumpMembers() const;

    ObjectLife life{"clsKELReaderPrinter,1"};
    Boolean bEnabled;
    Boolean bActive;
    std::string sBuffer1;
    std::string sBuffer2;
    std::string sBuffer3;
    Int16 iDistance = 0;
    kelReaderType uReaderType = kelReaderTypeNone;
    Boolean bInitialized;
};

std::string clsKELReaderPrinter::Fields::dumpMembers() const
{
    VariableLines lines;
    lines.add("bEnabled, bActive, sBuffer1, sBuffer2, sBuffer3, iDistance", bEnabled, bActive, sBuffer1, sBuffer2,
              sBuffer3, iDistance);
    lines.add("uReaderType, bInitialized", static_cast<Int32>(uReaderType), bInitialized);
    return lines.text();
}

clsKELReaderPrinter::clsKELReaderPrinter() = default;
clsKELReaderPrinter::clsKELReaderPrinter(const clsKELReaderPrinter& other) = default;
clsKELReaderPrinter& clsKELReaderPrinter::operator=(const clsKELReaderPrinter& other) = default;
clsKELReaderPrinter::~clsKELReaderPrinter() = default;

namespace {

enum class Imprinter {
    None,         ///< the model has none: it cannot be enabled
    Optional,     ///< the model may have one
    NotConcerned, ///< the setting is not this model's
};

struct ImprintModel {
    kelReaderType type;
    Imprinter imprinter;
    Int16 lines;
    Int32 minPosition, maxPosition, maxCharacters; // -1: not told
};

using enum Imprinter;

// One row a model, in the order of the model numbers.
constexpr ImprintModel kImprintModels[] = {
    {kelReaderTypeNone, NotConcerned, 0, -1, -1, -1},
    {kelReaderTypeAppersonAdvantageLink, None, 0, -1, -1, -1},
    {kelReaderTypeNCSOpScan2, Optional, 1, 0, 24, 24},
    {kelReaderTypeNCSOpScan3, Optional, 1, 0, 24, 24},
    {kelReaderTypeNCSOpScan4, Optional, 1, 0, 24, 24},
    {kelReaderTypeNCSOpScan5, Optional, 1, 0, 40, 40},
    {kelReaderTypeNCSOpScan7, Optional, 1, 10, 25, 25},
    {kelReaderTypeScanningSystemsSR601, Optional, 3, 10, 245, 41},
    {kelReaderTypeScanningSystemsSR607, Optional, 3, 10, 245, 41},
    {kelReaderTypeScanningSystemsSR700351, Optional, 3, 10, 245, 41},
    {kelReaderTypeScanningSystemsSR700352, Optional, 3, 10, 245, 41},
    {kelReaderTypeScantronScanMark2000, Optional, 1, 0, 135, 135},
    {kelReaderTypeScantronScanMark2250, Optional, 1, 0, 135, 135},
    {kelReaderTypeScantronScanMark2500, Optional, 1, 0, 135, 135},
    {kelReaderTypeScantronScanMark4000, Optional, 1, 0, 135, 135},
    {kelReaderTypeScantronScanMark5500, Optional, 1, 0, 135, 135},
    {kelReaderTypeScantron8000, Optional, 1, 0, 135, 135},
    {kelReaderTypeScantron8400, Optional, 1, 0, 135, 135},
    {kelReaderTypeAppersonGradeMaster, None, 0, -1, -1, -1},
    {kelReaderTypeScanningSystemsSR410, NotConcerned, 0, -1, -1, -1},
    {kelReaderTypeChatsworthOMR1100, None, 0, -1, -1, -1},
    {kelReaderTypeChatsworthOMR2000, None, 0, -1, -1, -1},
    {kelReaderTypeChatsworthALSAccelScanOMR, None, 0, -1, -1, -1},
    {kelReaderTypeNCSEZData, None, 0, -1, -1, -1},
    {kelReaderTypePDIVMR138, NotConcerned, 0, -1, -1, -1},
    {kelReaderTypeNCSOpScan6, Optional, 1, 0, 25, 25},
    {kelReaderTypeNCSOpScan8, Optional, 1, 10, 54, 54},
    {kelReaderTypeScantronScanMarkES2010, Optional, 1, 0, 135, 135},
    {kelReaderTypeScantronScanMarkES2260, Optional, 1, 0, 135, 135},
    {kelReaderTypeScantronScanMarkES2800, Optional, 1, 0, 135, 135},
    {kelReaderTypeSekonicSR2300, Optional, 3, 10, 245, 41},
    {kelReaderTypeNCSOpScaniNSIGHT4, Optional, 1, 0, 24, 24},
    {kelReaderTypeNCSOpScaniNSIGHT2, Optional, 1, 0, 24, 24},
    {kelReaderTypeSekonicSR3500, Optional, 3, 10, 245, 41},
    {kelReaderTypeSekonicSR6500, Optional, 3, 10, 245, 41},
    {kelReaderTypeChatsworthACF200, None, 0, -1, -1, -1},
    {kelReaderTypeSekonicSR1800, Optional, 3, 10, 245, 41},
    {kelReaderTypeChatsworthACF100, None, 0, -1, -1, -1},
    {kelReaderTypeSekonicSR430, NotConcerned, 0, -1, -1, -1},
    {kelReaderTypeAppersonBenchMark3000, NotConcerned, 0, -1, -1, -1},
    {kelReaderTypeAppersonAdvantage1200, NotConcerned, 0, -1, -1, -1},
    {kelReaderTypeChatsworthACP200, None, 0, -1, -1, -1},
};
static_assert(modelWithoutRow(kImprintModels, &ImprintModel::type) == 0,
              "nobody knows the imprinter of the model of this number: it needs one row in kImprintModels");

constexpr Int16 kThreeLineDistance = 245;

const ImprintModel& imprintModel(kelReaderType type)
{
    const auto* row = std::find_if(std::begin(kImprintModels), std::end(kImprintModels),
                                   [&](const ImprintModel& model) { return model.type == type; });
    return row == std::end(kImprintModels) ? kImprintModels[0] : *row;
}

} // namespace

void clsKELReaderPrinter::SetType(kelReaderType Value)
{
    guarded("KELReader81 - clsKELReaderPrinter.SetType", KEL_PARAMETERS(Value) + moduleOf(*fields_), [&] {
        fields_->uReaderType = Value;
        if (BufferCount() == 3)
            fields_->iDistance = kThreeLineDistance;
    });
}

Boolean clsKELReaderPrinter::Enabled() const
{
    return fields_->bEnabled;
}

void clsKELReaderPrinter::Enabled(Boolean value)
{
    guarded("KELReader81 - clsKELReaderPrinter.Enabled", KEL_PARAMETERS(value) + moduleOf(*fields_), [&] {
        switch (imprintModel(fields_->uReaderType).imprinter) {
        case None: fields_->bEnabled = False; break;
        case Optional: fields_->bEnabled = value; break;
        case NotConcerned: break;
        }
    });
}

Boolean clsKELReaderPrinter::Initialized() const
{
    return fields_->bInitialized;
}

void clsKELReaderPrinter::Initialized(Boolean value)
{
    fields_->bInitialized = value;
}

Boolean clsKELReaderPrinter::Active() const
{
    return fields_->bActive & Enabled();
}

void clsKELReaderPrinter::Active(Boolean value)
{
    fields_->bActive = value & Enabled();
}

std::string clsKELReaderPrinter::Buffer1() const
{
    return fields_->sBuffer1;
}

void clsKELReaderPrinter::Buffer1(const std::string& text)
{
    fields_->sBuffer1 = text;
}

std::string clsKELReaderPrinter::Buffer2() const
{
    return fields_->sBuffer2;
}

void clsKELReaderPrinter::Buffer2(const std::string& text)
{
    fields_->sBuffer2 = text;
}

std::string clsKELReaderPrinter::Buffer3() const
{
    return fields_->sBuffer3;
}

void clsKELReaderPrinter::Buffer3(const std::string& text)
{
    fields_->sBuffer3 = text;
}

Int16 clsKELReaderPrinter::FilledBufferCount() const
{
    const Int16 lines = BufferCount();
    Int16 filled = 0;
    if (lines >= 1 && !fields_->sBuffer1.empty())
        ++filled;
    if (lines >= 2 && !fields_->sBuffer2.empty())
        ++filled;
    if (lines >= 3 && !fields_->sBuffer3.empty())
        ++filled;
    return filled;
}

Int16 clsKELReaderPrinter::BufferCount() const
{
    return imprintModel(fields_->uReaderType).lines;
}

Int16 clsKELReaderPrinter::Distance() const
{
    return fields_->iDistance;
}

void clsKELReaderPrinter::Distance(Int16 value)
{
    fields_->iDistance = value;
}

Int32 clsKELReaderPrinter::MinPosition() const
{
    return Enabled() ? imprintModel(fields_->uReaderType).minPosition : -1;
}

Int32 clsKELReaderPrinter::MaxPosition() const
{
    return Enabled() ? imprintModel(fields_->uReaderType).maxPosition : -1;
}

Int32 clsKELReaderPrinter::MaxCharacters() const
{
    return Enabled() ? imprintModel(fields_->uReaderType).maxCharacters : -1;
}

} // namespace kel
