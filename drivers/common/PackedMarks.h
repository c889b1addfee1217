// SPDX-License-Identifier: MIT
#pragma once

#include "failure/TellsVariables.h"
#include "types/Arrays.h"

#include <string>

namespace kel {

// What the EZData and the Chatsworth readers share on the wire: framed commands, and sheets of twelve columns with
// six marks to a byte and two bytes to a row.

/// The byte that ends a sheet.
inline constexpr Byte kSheetEnd = 0x0D;

/// A framed command: 0x12 0x1B text 0x12 "E".
[[nodiscard]] std::string frameCommand(const std::string& text);

/// Decodes the rows of a sheet, byte by byte. Side 1 has as many rows as given, twelve columns.
///
///   bit     0x01 0x02 0x04 0x08 0x10 0x20 0x40 0x80
///   first     12   11   10    9    8    -    7    -
///   second     6    5    4    3    2    -    1    -
///
/// A blank (0x20) is a half row without marks: it touches no cell, so that its row may lie outside the array. A mark
/// in a row outside the array is failure 9.
class PackedRows {
public:
    /// Without rows; a mark is failure 9.
    PackedRows() = default;
    PackedRows(Int32 rows, Int16 iMarkValue);

    void take(Byte byte);

    /// Whether the next byte is the first of a row.
    [[nodiscard]] const bool& isAtRowStart() const { return bRightByte_; }

    [[nodiscard]] const MarkArray& marks() const { return iSide1Arr_; }
    /// Rows of which both bytes came.
    [[nodiscard]] Int16 completeRows() const;

    KEL_TELLS(iSide1Arr_, iMarkValue_, iRow_, lNumBytes_)

private:
    MarkArray iSide1Arr_;
    Int16 iMarkValue_ = 0;
    Int16 iRow_ = 1;
    Int32 lNumBytes_ = 1;
    bool bRightByte_ = true;
};

} // namespace kel
