// SPDX-License-Identifier: MIT
#pragma once

#include "simulators/framework/SimulatedSheet.h"

#include <string>
#include <vector>

namespace kel {

/// How a reader writes the column of a mark.
enum class ColumnLetters {
    Counted, ///< "0" is column 1, and on in the order of the codes
    Reversed ///< "9876543210XYABC" are columns 1 to 15
};

/// How freely a reader uses what its replies allow. Each comes at places that change from row to row.
struct ReplyStyle {
    bool blanks = true;        ///< a blank before a mark or a row's end
    bool separators = true;    ///< more than one CR and comma between windows
    bool explicitZeros = true; ///< a pair of the value 0 for a column without a mark
};

/// A loaded window: what follows STX, field by field.
struct LoadedWindow {
    Int32 startRow = 0;
    Int32 rows = 0;
    Int32 rowGap = 0;
    Int32 startColumn = 0;
    Int32 columns = 0;
    Int32 columnGap = 0;
};

/// The marks of a side from row 1 to `rows`: a pair of column and value for each mark, and a CR after each row.
[[nodiscard]] std::string pageReply(const MarkRows& marks, Int32 rows, ColumnLetters letters, const ReplyStyle& style);

/// The marks of a side within its windows: for each row of each window the pairs, counted from "1" within the window,
/// or a blank and a further character; a comma after each row.
[[nodiscard]] std::string windowReply(const MarkRows& marks, const std::vector<LoadedWindow>& windows,
                                      const ReplyStyle& style);

} // namespace kel
