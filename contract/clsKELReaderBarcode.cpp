// SPDX-License-Identifier: MIT
#include "contract/clsKELReaderBarcode.h"

#include "failure/ObjectLife.h"
#include "failure/ProcedureVariables.h"

namespace kel {

struct clsKELReaderBarcode::Fields {
    ObjectLife life{"clsKELReaderBarcode,1"};
    Int16 iPage = 0;
    Int16 iDistance = 0;
    Int16 iLength = 0;
    kelBarcodeType eSymbology = kelBarcodeTypeUnknown;
    kelBarcodeOrientation eOrientation = kelBarcodeOrientationUnknown;
};

clsKELReaderBarcode::clsKELReaderBarcode() = default;
clsKELReaderBarcode::clsKELReaderBarcode(const clsKELReaderBarcode& other) = default;
clsKELReaderBarcode& clsKELReaderBarcode::operator=(const clsKELReaderBarcode& other) = default;
clsKELReaderBarcode::~clsKELReaderBarcode() = default;

std::string clsKELReaderBarcode::dumpMembers() const
{
    const Fields& own = *fields_;
    VariableLines lines;
    lines.add("iPage, iDistance, iLength, eSymbology, eOrientation", own.iPage, own.iDistance, own.iLength,
              static_cast<Int32>(own.eSymbology), static_cast<Int32>(own.eOrientation));
    return lines.text();
}

Int16 clsKELReaderBarcode::Page() const
{
    return fields_->iPage;
}

void clsKELReaderBarcode::Page(Int16 value)
{
    fields_->iPage = value;
}

Int16 clsKELReaderBarcode::Distance() const
{
    return fields_->iDistance;
}

void clsKELReaderBarcode::Distance(Int16 value)
{
    fields_->iDistance = value;
}

Int16 clsKELReaderBarcode::Length() const
{
    return fields_->iLength;
}

void clsKELReaderBarcode::Length(Int16 value)
{
    fields_->iLength = value;
}

kelBarcodeType clsKELReaderBarcode::Symbology() const
{
    return fields_->eSymbology;
}

void clsKELReaderBarcode::Symbology(kelBarcodeType value)
{
    fields_->eSymbology = value;
}

kelBarcodeOrientation clsKELReaderBarcode::Orientation() const
{
    return fields_->eOrientation;
}

void clsKELReaderBarcode::Orientation(kelBarcodeOrientation value)
{
    fields_->eOrientation = value;
}

} // namespace kel
