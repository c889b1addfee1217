// SPDX-License-Identifier: MIT
#pragma once

#include "failure/TellsVariables.h"
#include "types/Arrays.h"

namespace kel {

/// The largest sheet: 200 rows of 48 columns, one byte a cell.
inline constexpr Int32 kMostRowsSR = 200;
inline constexpr Int32 kColumnsSR = 48;
inline constexpr Int32 kMostBytesSR = kMostRowsSR * kColumnsSR;

/// How far a copy has come.
struct MarkCopySR {
    Int32 lNumBytes = 0;
    Int32 lRow = 1;
    Int32 lCol = 1;
    Int32 lIndex = 0;

    KEL_TELLS(lNumBytes, lRow, lCol, lIndex)
};

/// Puts the bytes of one side, row after row of `lCols` each, into the cells of `marks`; the mark value is the byte.
/// Gives the number of rows filled. The first cell outside the array, or byte after the last one, is failure 9; a
/// count of bytes beyond 32 bits is failure 6.
[[nodiscard]] Int16 copyMarksSR(const Array1<Byte>& bytes, Int32 lRows, Int32 lCols, MarkArray& marks,
                                MarkCopySR& copy);

} // namespace kel
