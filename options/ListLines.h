// SPDX-License-Identifier: MIT
#pragma once

#include "options/Controls.h"

#include <string>

namespace kel {

/// What a list shows for a row: its text and, after it, the remark.
inline std::string lineOf(const PowerCombo& list, Int32 row)
{
    const std::string remark = list.Remark(row);
    return list.CellText(0, row) + (remark.empty() ? "" : " – " + remark);
}

/// The heading above a row of an open list: its group, where that begins; empty for any other row.
inline std::string headingOf(const PowerCombo& list, Int32 row)
{
    return list.Group(row) == list.Group(row - 1) ? std::string() : list.Group(row);
}

} // namespace kel
