// SPDX-License-Identifier: MIT
#pragma once

#include "types/Boolean.h"
#include "types/Numbers.h"

namespace kel {

/// Which keys a field accepts.
enum ValidKeys : Int32 {
    kValidKeysNumbers = 1,
    kValidKeysLetters = 2,
    kValidKeysBoth = 3,
};

/// The key if the field accepts it, otherwise 0, with a beep unless `bQuiet`. Enter (13), backspace (8) and 2 are
/// always accepted. The minus sign and the decimal point belong to numbers, the blank to letters.
[[nodiscard]] Int16 ValidKeyPress(Int16 iKeyAscii, ValidKeys eValidKeys, Boolean bNegative, Boolean bDecimal,
                                  Boolean bQuiet);

} // namespace kel
