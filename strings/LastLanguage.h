// SPDX-License-Identifier: MIT
#pragma once

#include "types/Boolean.h"
#include "types/Numbers.h"

#include <string>

namespace kel {

inline constexpr Int32 kRegistryActionRead = 0x20019;
inline constexpr Int32 kRegistryActionWrite = 0x20006;

/// Reads or writes the name of the language that was used last; True if a name was there, or if it could be written.
/// The component itself only reads it. A name of more than 64 characters does not count as there.
Boolean ReadWriteLanguageToRegistry(Int32 Action, std::string& Language);

} // namespace kel
