// SPDX-License-Identifier: MIT
#include "contract/clsKELReaderPrinter.h"

#include "failure/ObjectLife.h"
#include "failure/guarded.h"
#include "types/ModelTable.h"

namespace kel {

struct clsKELReaderPrinter::Fields {
    [[nodiscard]] std::string dumpMembers() const
    {
        VariableLines lines;
        lines.add("bEnabled, bActive, sBuffer1, sBuffer2, sBuffer3, iDistance", bEnabled, bActive, sBuffer1, sBuffer2,
                  sBuffer3, iDistance);
        lines.add("uReaderType, bInitialized", static_cast<Int32>(uReaderType), bInitialized);
        return lines.text();
    }

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

clsKELReaderPrinter::clsKELReaderPrinter() = default;
clsKELReaderPrinter::clsKELReaderPrinter(const clsKELReaderPrinter& other) = default;
clsKELReaderPrinter& clsKELReaderPrinter::operator=(const clsKELReaderPrinter& other) = default;
clsKELReaderPrinter::~clsKELReaderPrinter() = default;

namespace {

constexpr Int16 kThreeLineDistance = 245;

constexpr ModelPrinter kOfNoModel = {.imprinter = Imprinter::NotConcerned};

const ModelPrinter& modelPrinter(kelReaderType type)
{
    const ModelRow* row = modelRow(type);
    return row ? row->printer : kOfNoModel;
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
        switch (modelPrinter(fields_->uReaderType).imprinter) {
        case Imprinter::None: fields_->bEnabled = False; break;
        case Imprinter::Optional: fields_->bEnabled = value; break;
        case Imprinter::NotConcerned: break;
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
    return modelPrinter(fields_->uReaderType).lines;
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
    return Enabled() ? modelPrinter(fields_->uReaderType).minPosition : -1;
}

Int32 clsKELReaderPrinter::MaxPosition() const
{
    return Enabled() ? modelPrinter(fields_->uReaderType).maxPosition : -1;
}

Int32 clsKELReaderPrinter::MaxCharacters() const
{
    return Enabled() ? modelPrinter(fields_->uReaderType).maxCharacters : -1;
}

} // namespace kel
