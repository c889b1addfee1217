#include "drivers/sekonic_usb/MarkBytes.h"

namespace kel {

Int16 copyMarksSR(const Array1<Byte>& bytes, Int32 lRows, Int32 lCols, MarkArray& marks)
{
    const Int32 lNumBytes = checkedMultiply(lRows, lCols);
    Int32 lRow = 1;
    Int32 lCol = 1;
    for (Int32 lIndex = 1; lIndex <= lNumBytes; ++lIndex) {
        marks(lRow, lCol) = bytes(lIndex);
        if (lCol == lCols) {
            lCol = 1;
            ++lRow;
        } else {
            ++lCol;
        }
    }
    return CInt(lRow - 1);
}

} // namespace kel
