// SPDX-License-Identifier: MIT
#pragma once

#include "types/Arrays.h"

#include <string_view>

namespace kel {

/// A half row without marks.
inline constexpr Byte kEmptyHalfRowPD = 0x40;

/// Sets the marked positions of a half row: bit 0x01 is the first column, bit 0x20 the sixth; the two high bits mean
/// nothing. An empty half row touches no cell, so that its row may lie outside the array.
void setHalfRowPD(MarkArray& marks, Int32 row, Int32 firstColumn, Byte halfRow, Int16 markValue);

/// The value of one digit of the threshold reply, -1 for what cannot stand there, such as no character at all. The
/// first of the two digits is "C" to "F", so that the threshold lies from 192 to 255.
[[nodiscard]] Int16 thresholdHighDigitPD(std::string_view digit);
[[nodiscard]] Int16 thresholdLowDigitPD(std::string_view digit);

} // namespace kel
