// SPDX-License-Identifier: MIT
#pragma once

#include "TextNames.h" // generated from the list of names

#include "strings/TextNumber.h"
#include "types/Numbers.h"

#include <string>

namespace kel {

/// The text of a number in the language database, in the language chosen for the process.
/// The first call loads "LKELReader81.txt"; -1 loads it and gives an empty text. Never fails: where the file is
/// missing or damaged or the index is outside its table, the answer itself says so.
/// Safe from several threads; after the load a look-up is one array access.
[[nodiscard]] std::string VBLM_RTString(Int32 Index);

/// The same for a number that is known when the component is built.
[[nodiscard]] inline std::string VBLM_RTString(TextNumber number)
{
    return VBLM_RTString(number.value());
}

} // namespace kel
