// SPDX-License-Identifier: MIT
#pragma once

#include "formats/JsonValue.h"
#include "reader/clsKELReader.h"

#include <span>
#include <string>
#include <string_view>

namespace kel::host {

/// A setting of the reader object that has a name and can be written as a text: its own properties, and those of the
/// printer as "Printer.Enabled".
struct PropertyRow {
    std::string_view name;
    /// The value as JSON.
    Json (*get)(const clsKELReader& reader);
    /// Sets it from a text: truth values as true and false, enumerations by number or name. UsageError for a text
    /// that does not fit, which says what would.
    void (*set)(clsKELReader& reader, std::string_view text);
};

[[nodiscard]] std::span<const PropertyRow> readerProperties();

/// The row of a name in any case of letters; UsageError, with the nearest names, for a name that does not exist.
[[nodiscard]] const PropertyRow& propertyNamed(std::string_view name);

/// Carries out "Property=Value" on a reader.
void applyAssignment(clsKELReader& reader, std::string_view assignment);

} // namespace kel::host
