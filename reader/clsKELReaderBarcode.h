#pragma once

#include "types/Enumerations.h"
#include "types/Export.h"
#include "types/Numbers.h"

namespace kel {

/// A barcode zone: where on the sheet a reader with a barcode unit is to look. Nothing is checked.
class KEL_PUBLIC clsKELReaderBarcode {
public:
    [[nodiscard]] Int16 Page() const { return iPage_; }
    void Page(Int16 value) { iPage_ = value; }
    /// Where the zone begins along the sheet, and how long it is, in the model's own steps.
    [[nodiscard]] Int16 Distance() const { return iDistance_; }
    void Distance(Int16 value) { iDistance_ = value; }
    [[nodiscard]] Int16 Length() const { return iLength_; }
    void Length(Int16 value) { iLength_ = value; }
    [[nodiscard]] kelBarcodeType Symbology() const { return eSymbology_; }
    void Symbology(kelBarcodeType value) { eSymbology_ = value; }
    [[nodiscard]] kelBarcodeOrientation Orientation() const { return eOrientation_; }
    void Orientation(kelBarcodeOrientation value) { eOrientation_ = value; }

private:
    Int16 iPage_ = 0;
    Int16 iDistance_ = 0;
    Int16 iLength_ = 0;
    kelBarcodeType eSymbology_ = kelBarcodeTypeUnknown;
    kelBarcodeOrientation eOrientation_ = kelBarcodeOrientationUnknown;
};

} // namespace kel
