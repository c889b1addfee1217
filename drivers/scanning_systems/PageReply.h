// SPDX-License-Identifier: MIT
#pragma once

#include "failure/TellsVariables.h"
#include "types/Arrays.h"

namespace kel {

/// How the columns of a page reply are named.
enum class ColumnLettersSS {
    Upwards, ///< "0" is column 1, and on in the order of the codes
    SR430,   ///< "9" down to "0" are the columns 1 to 10, then "X", "Y", "A", "B", "C"
};

/// What a column character says.
struct ColumnSS {
    Int16 column = 0;
    bool exists = true; ///< false for a character that can name no column
};

/// The column of a character. Where the character names none, it is the column of the mark before.
[[nodiscard]] ColumnSS columnSS(ColumnLettersSS letters, Byte character, Int16 columnBefore);

/// What one byte of a page reply has brought.
enum class PageStepSS {
    ElementDone, ///< a row has ended, or a mark is stored
    ElementOpen, ///< a blank or a column: the rest of the element must follow
    WrongColumn, ///< a column that does not exist, and the value must follow
};

/// The page reply, byte by byte: the marks of one row as pairs, then CR; a row without a mark is the CR alone.
///
///   column value column value ... CR
///
/// One blank may come before a column or a CR: the byte after it, whatever it is, is used instead.
class PageReplySS {
public:
    /// The next byte, a column being named by `letters`; the marks go into `marks` from row 1 on. A mark outside the
    /// array is failure 9, a row that can no longer be counted failure 6.
    PageStepSS take(MarkArray& marks, Byte byte, ColumnLettersSS letters);

    /// The row under way, from 1.
    [[nodiscard]] Int16 row() const noexcept { return iRowIndex_; }

    KEL_TELLS(iRowIndex_, iColIndex_)

private:
    enum class Awaits { Element, ElementBehindBlank, Value };

    PageStepSS takeElement(Byte byte, ColumnLettersSS letters);

    Awaits awaits_ = Awaits::Element;
    Int16 iRowIndex_ = 1;
    Int16 iColIndex_ = 1;
};

} // namespace kel
