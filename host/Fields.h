// SPDX-License-Identifier: MIT
#pragma once

#include "host/Events.h"
#include "types/Export.h"
#include "types/Numbers.h"

#include <string>
#include <variant>
#include <vector>

namespace kel::host {

/// A cell on a side of a sheet: its row and column, both from 1.
struct FieldCell {
    Int32 row = 0;    ///< from 1
    Int32 column = 0; ///< from 1

    friend bool operator==(const FieldCell&, const FieldCell&) = default;
};

/// The value of a field if more than one of its cells is marked.
enum class DoubleMarks {
    AsOne, ///< `kDoubleMark`, whichever cells they are
    All,   ///< the labels of all marked cells, one after the other
};

/// The value of a field with more than one mark.
inline constexpr const char* kDoubleMark = "*";

/// A name for cells of a form, one of which is marked: a question with its choices, a digit of a number. It names
/// the answer and does not grade it.
struct Field {
    std::string name;                  ///< of the column; no two of a form are the same
    Int32 side = 1;                    ///< 1 or 2
    std::vector<FieldCell> cells{};    ///< at least one
    std::vector<std::string> labels{}; ///< one for each cell; none: the value is that of the only cell's mark
    DoubleMarks doubleMarks = DoubleMarks::AsOne;
    std::string blank = "-"; ///< the value where no cell is marked
};

/// The value in a column: empty if a side or a cell was not read, a truth value, a number, or a text (UTF-8).
using FieldValue = std::variant<std::monostate, bool, Int32, std::string>;

/// The value of a field on a sheet.
[[nodiscard]] KEL_PUBLIC FieldValue valueOf(const Field& field, const Sheet& sheet);

/// The columns of a table with a row for each sheet: "sheet", "barcodes", "rejected", "printed", then the fields.
[[nodiscard]] KEL_PUBLIC std::vector<std::string> columnsOf(const std::vector<Field>& fields);

/// A sheet's row of that table. Several barcodes are separated by blanks.
[[nodiscard]] KEL_PUBLIC std::vector<FieldValue> rowOf(const std::vector<Field>& fields, const Sheet& sheet);

} // namespace kel::host
