// SPDX-License-Identifier: MIT
#pragma once

#include "types/Numbers.h"

#include <map>
#include <string>
#include <vector>

namespace kel {

/// The marks of one side: rows from the sheet's first, each with its columns from the first. 0 is no mark; what the
/// other values mean (a darkness, just "marked") is the model's. Rows may have different lengths.
using MarkRows = std::vector<std::vector<Int16>>;

/// A sheet of paper for a simulated reader.
struct SimulatedSheet {
    MarkRows side1 = {};
    MarkRows side2 = {};
    std::vector<std::string> barcodes = {};

    /// What readers that grade report beside marks: identifiers, scores, answers, by name.
    std::map<std::string, std::string> fields = {};

    friend bool operator==(const SimulatedSheet&, const SimulatedSheet&) = default;
};

/// The mark at a place counted from 1; 0 outside the rows and columns that the sheet has.
[[nodiscard]] inline Int16 markAt(const MarkRows& rows, Int32 row, Int32 column)
{
    if (row < 1 || column < 1 || static_cast<std::size_t>(row) > rows.size())
        return 0;
    const std::vector<Int16>& cells = rows[static_cast<std::size_t>(row - 1)];
    return static_cast<std::size_t>(column) > cells.size() ? Int16{0} : cells[static_cast<std::size_t>(column - 1)];
}

/// A field of a sheet, or a fallback where the sheet has none of that name.
[[nodiscard]] inline std::string fieldOf(const SimulatedSheet& sheet, const std::string& name,
                                         const std::string& fallback = {})
{
    const auto found = sheet.fields.find(name);
    return found == sheet.fields.end() ? fallback : found->second;
}

} // namespace kel
