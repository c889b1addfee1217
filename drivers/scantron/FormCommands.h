// SPDX-License-Identifier: MIT
#pragma once

#include "failure/TellsVariables.h"
#include "types/Arrays.h"

#include <string>

namespace kel {

class clsKELReaderWindow;

// The commands of the Scanmark family as texts. Numbers go out as plain decimal text.
//
//   ESC text CR

/// A command's text between ESC and CR.
[[nodiscard]] std::string frameST(const std::string& text);

[[nodiscard]] std::string thresholdCommandST(Int16 threshold);

/// The start of a form; `rows2` is 0 for a form of one side.
[[nodiscard]] std::string formStartST(Int16 rows1, Int16 rows2, Int16 columns1);

/// One rectangle for a whole side, read row by row: of the models that take a mark definition ("DK"), and of those
/// that take a column definition with one "1" a column ("MC").
[[nodiscard]] std::string pageDefinitionST(int side, Int16 rows, Int16 columns);
[[nodiscard]] std::string columnDefinitionST(int side, Int16 rows, Int16 columns);

/// The fields of a window's definition.
struct WindowFieldsST {
    std::string sStartRow;
    std::string sStartCol;
    std::string sEndRow;
    std::string sEndCol;
    std::string sOrient;
    std::string sNumElements;
    std::string sNumChoices;

    KEL_TELLS(sStartRow, sStartCol, sEndRow, sEndCol, sOrient, sNumElements, sNumChoices)
};

/// One rectangle for a read window, always from the lower to the higher number; which way the window runs is
/// restored on reading. Orientation 1 is defined as lines, any other as columns.
[[nodiscard]] std::string windowDefinitionST(int side, const clsKELReaderWindow& window, WindowFieldsST& fields);

[[nodiscard]] std::string formEndST();

} // namespace kel
