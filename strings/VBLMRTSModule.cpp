// SPDX-License-Identifier: MIT
#include "strings/VBLMRTSModule.h"

#include "strings/LanguageDatabase.h"

namespace kel {

std::string VBLM_RTString(Int32 Index)
{
    return languageDatabase().RTString(Index);
}

} // namespace kel
