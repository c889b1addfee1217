// SPDX-License-Identifier: MIT
#include "options/basUtils.h"

#include "platform/Platform.h"

namespace kel {

namespace {

[[nodiscard]] bool isBetween(Int16 key, char first, char last)
{
    return key >= first && key <= last;
}

[[nodiscard]] bool isEditingKey(Int16 key)
{
    return key == 13 || key == 8 || key == 2;
}

[[nodiscard]] bool isNumberKey(Int16 key, Boolean bNegative, Boolean bDecimal)
{
    return isBetween(key, '0', '9') || (key == '-' && bNegative) || (key == '.' && bDecimal);
}

[[nodiscard]] bool isLetterKey(Int16 key)
{
    return isBetween(key, 'A', 'Z') || isBetween(key, 'a', 'z') || key == ' ';
}

} // namespace

Int16 ValidKeyPress(Int16 iKeyAscii, ValidKeys eValidKeys, Boolean bNegative, Boolean bDecimal, Boolean bQuiet)
{
    if (isEditingKey(iKeyAscii))
        return iKeyAscii;
    if (eValidKeys != kValidKeysLetters && isNumberKey(iKeyAscii, bNegative, bDecimal))
        return iKeyAscii;
    if (eValidKeys != kValidKeysNumbers && isLetterKey(iKeyAscii))
        return iKeyAscii;
    if (!bQuiet)
        platform().screen().Beep();
    return 0;
}

} // namespace kel
