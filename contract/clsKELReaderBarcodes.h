// SPDX-License-Identifier: MIT
#pragma once

#include "contract/clsKELReaderBarcode.h"
#include "types/Boolean.h"
#include "types/Export.h"
#include "types/Hidden.h"
#include "types/Reference.h"

#include <optional>

namespace kel {

/// The barcode zones of a form in their order, addressed by position from 1.
class KEL_PUBLIC clsKELReaderBarcodes {
public:
    /// The class's name, as dumps of variables show it.
    static constexpr const char* kClassName = "clsKELReaderBarcodes";

    clsKELReaderBarcodes();
    clsKELReaderBarcodes(const clsKELReaderBarcodes& other);
    clsKELReaderBarcodes& operator=(const clsKELReaderBarcodes& other);
    ~clsKELReaderBarcodes();

    /// Number of zones.
    [[nodiscard]] Int32 Count() const;

    /// Adds a zone before or after a position, or at the end. A position that does not exist is reported, and the
    /// collection does not change.
    void Add(Reference<clsKELReaderBarcode> Item, std::optional<Int32> Before = {}, std::optional<Int32> After = {});

    /// Removes the zone at a position; one that does not exist is reported.
    void Remove(Int32 Index);

    /// Removes all zones.
    void RemoveAll();

    /// The zone at a position; a null reference, without a report, if there is none.
    [[nodiscard]] Reference<clsKELReaderBarcode> Item(Int32 Index) const;

    /// Whether there is a zone at a position.
    [[nodiscard]] Boolean Exists(Int32 Index) const;

private:
    struct Fields;
    Hidden<Fields> fields_;
};

} // namespace kel
