// SPDX-License-Identifier: MIT
#include "drivers/peripheral_dynamics/HalfRow.h"

namespace kel {

void setHalfRowPD(MarkArray& marks, Int32 row, Int32 firstColumn, Byte halfRow, Int16 markValue)
{
    if (halfRow == kEmptyHalfRowPD)
        return;
    for (Int32 bit = 0; bit < 6; ++bit) {
        if (halfRow & (1 << bit))
            marks(row, firstColumn + bit) = markValue;
    }
}

Int16 thresholdHighDigitPD(std::string_view digit)
{
    if (digit.size() != 1 || digit[0] < 'C' || digit[0] > 'F')
        return -1;
    return static_cast<Int16>((digit[0] - 'A' + 10) * 16);
}

Int16 thresholdLowDigitPD(std::string_view digit)
{
    if (digit.size() != 1)
        return -1;
    if (digit[0] >= '0' && digit[0] <= '9')
        return static_cast<Int16>(digit[0] - '0');
    return digit[0] >= 'A' && digit[0] <= 'F' ? static_cast<Int16>(digit[0] - 'A' + 10) : Int16{-1};
}

} // namespace kel
