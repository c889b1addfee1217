// SPDX-License-Identifier: MIT
#pragma once

#include "options/Controls.h"
#include "types/Text.h"

namespace kel {

/// Selects the row with a text in a column. If there is none, no row is selected, and the list is scrolled to its first
/// row.
inline void selectText(PowerCombo& cboCombo, std::string_view text, Int32 column)
{
    cboCombo.CurrentRow(cboCombo.FindRow(text, 0, column));
    if (cboCombo.RowCount() > 0 && cboCombo.CurrentRow() == -1)
        cboCombo.ScrollToRow(0);
}

/// The whole number in a cell; failure 13 "Type mismatch" if the cell is not a number.
[[nodiscard]] inline Int32 integerOf(const std::string& text, SourceLocation where = SourceLocation::current())
{
    if (!IsNumeric(text))
        throw RuntimeFailure(FailureCode::TypeMismatch, where);
    return CLng(Val(text), where);
}

/// Column 1 of the selected row, empty without one.
[[nodiscard]] inline std::string selectedValue(const PowerCombo& cboCombo)
{
    return cboCombo.CellText(1, cboCombo.CurrentRow());
}

} // namespace kel
