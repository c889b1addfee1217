#include "reader/clsKELReaderPrinter.h"

#include "failure/guarded.h"

#include <algorithm>
#include <initializer_list>

namespace kel {

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
    guarded("KELReader81 - clsKELReaderPrinter.SetType", [&] {
        uReaderType_ = Value;
        if (BufferCount() == 3)
            iDistance_ = kThreeLineDistance;
    });
}

Boolean clsKELReaderPrinter::Enabled() const
{
    return bEnabled_;
}

void clsKELReaderPrinter::Enabled(Boolean value)
{
    guarded("KELReader81 - clsKELReaderPrinter.Enabled", [&] {
        switch (imprintModel(uReaderType_).imprinter) {
        case None: bEnabled_ = False; break;
        case Optional: bEnabled_ = value; break;
        case NotConcerned: break;
        }
    });
}

Boolean clsKELReaderPrinter::Initialized() const
{
    return bInitialized_;
}

void clsKELReaderPrinter::Initialized(Boolean value)
{
    bInitialized_ = value;
}

Boolean clsKELReaderPrinter::Active() const
{
    return bActive_ & Enabled();
}

void clsKELReaderPrinter::Active(Boolean value)
{
    bActive_ = value & Enabled();
}

std::string clsKELReaderPrinter::Buffer1() const
{
    return sBuffer1_;
}

void clsKELReaderPrinter::Buffer1(const std::string& text)
{
    sBuffer1_ = text;
}

std::string clsKELReaderPrinter::Buffer2() const
{
    return sBuffer2_;
}

void clsKELReaderPrinter::Buffer2(const std::string& text)
{
    sBuffer2_ = text;
}

std::string clsKELReaderPrinter::Buffer3() const
{
    return sBuffer3_;
}

void clsKELReaderPrinter::Buffer3(const std::string& text)
{
    sBuffer3_ = text;
}

Int16 clsKELReaderPrinter::FilledBufferCount() const
{
    const Int16 lines = BufferCount();
    Int16 filled = 0;
    if (lines >= 1 && !sBuffer1_.empty())
        ++filled;
    if (lines >= 2 && !sBuffer2_.empty())
        ++filled;
    if (lines >= 3 && !sBuffer3_.empty())
        ++filled;
    return filled;
}

Int16 clsKELReaderPrinter::BufferCount() const
{
    return imprintModel(uReaderType_).lines;
}

Int16 clsKELReaderPrinter::Distance() const
{
    return iDistance_;
}

void clsKELReaderPrinter::Distance(Int16 value)
{
    iDistance_ = value;
}

Int32 clsKELReaderPrinter::MinPosition() const
{
    return Enabled() ? imprintModel(uReaderType_).minPosition : -1;
}

Int32 clsKELReaderPrinter::MaxPosition() const
{
    return Enabled() ? imprintModel(uReaderType_).maxPosition : -1;
}

Int32 clsKELReaderPrinter::MaxCharacters() const
{
    return Enabled() ? imprintModel(uReaderType_).maxCharacters : -1;
}

} // namespace kel
