// SPDX-License-Identifier: MIT
#pragma once

#include "types/Enumerations.h"
#include "types/Export.h"
#include "types/Hidden.h"
#include "types/Numbers.h"

#include <string>

namespace kel {

template <class Object>
class StatedModule;

/// A barcode zone: where on the sheet a reader with a barcode unit looks for a barcode. Nothing is checked.
class KEL_PUBLIC clsKELReaderBarcode {
public:
    /// The class's name, as dumps of variables show it.
    static constexpr const char* kClassName = "clsKELReaderBarcode";

    clsKELReaderBarcode();
    clsKELReaderBarcode(const clsKELReaderBarcode& other);
    clsKELReaderBarcode& operator=(const clsKELReaderBarcode& other);
    ~clsKELReaderBarcode();

    /// The page of the form, from 1.
    [[nodiscard]] Int16 Page() const;
    void Page(Int16 value);
    /// Where the zone begins along the sheet, and how long it is, in the model's own steps.
    [[nodiscard]] Int16 Distance() const;
    void Distance(Int16 value);
    [[nodiscard]] Int16 Length() const;
    void Length(Int16 value);
    [[nodiscard]] kelBarcodeType Symbology() const;
    void Symbology(kelBarcodeType value);
    [[nodiscard]] kelBarcodeOrientation Orientation() const;
    void Orientation(kelBarcodeOrientation value);

private:
    template <class Object>
    friend class StatedModule;

    [[nodiscard]] std::string dumpMembers() const;

    struct Fields;
    Hidden<Fields> fields_;
};

} // namespace kel
