// SPDX-License-Identifier: MIT
#pragma once

#include "contract/clsKELReaderWindow.h"

#include <string>

namespace kel {

/// The text of the command that sets the recognition threshold of a model with emulation modes. The modes 0 and 1
/// know three and four steps; all others take the number itself.
[[nodiscard]] std::string thresholdTextSS(Int16 iEmulationMode, Int16 iThreshold);

/// Turns a window with negative gaps, which runs towards lower rows or columns, into the same window seen from its
/// other end. Failure 6 when a number does not fit 16 bits.
void makeGapsPositiveSS(clsKELReaderWindow& cWindow);

/// The command that loads one read window into the reader. A field above 99 is not cut and moves what follows.
///
///   DLE "W" CR STX StartRow NumRows RowGap StartCol NumCols ColGap "1" "12" CR      two digits a field
///
/// with "/" in front unless the window lies on page 1.
[[nodiscard]] std::string windowCommandSS(const clsKELReaderWindow& cWindow);

} // namespace kel
