// SPDX-License-Identifier: MIT
#include "drivers/sekonic_usb/MarkBytes.h"

namespace kel {

Int16 copyMarksSR(const Array1<Byte>& bytes, Int32 lRows, Int32 lCols, MarkArray& marks, MarkCopySR& copy)
{
    copy = {.lNumBytes = checkedMultiply(lRows, lCols)};
    for (copy.lIndex = 1; copy.lIndex <= copy.lNumBytes; ++copy.lIndex) {
        marks(copy.lRow, copy.lCol) = bytes(copy.lIndex);
        if (copy.lCol == lCols) {
            copy.lCol = 1;
            ++copy.lRow;
        } else {
            ++copy.lCol;
        }
    }
    return CInt(copy.lRow - 1);
}

} // namespace kel
