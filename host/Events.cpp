// SPDX-License-Identifier: MIT
#include "host/Events.h"

namespace kel::host {

std::vector<Mark> Sheet::marks(int side) const
{
    const MarkArray& cells = side == 2 ? side2 : side1;
    std::vector<Mark> found;
    for (Int32 row = 1; row <= cells.rows(); ++row)
        for (Int32 column = 1; column <= cells.columns(); ++column)
            if (const Int16 value = cells(row, column); value != 0)
                found.push_back({row, column, value});
    return found;
}

} // namespace kel::host
