// SPDX-License-Identifier: MIT
#pragma once

#include "types/Enumerations.h"
#include "types/Export.h"

#include <string>

namespace kel {

/// A model's name as users see it: "Scantron Scanmark 2500". The name of `kelReaderTypeNone` comes from the language
/// database; a number that is no model has an empty name.
[[nodiscard]] KEL_INTERNAL std::string ReturnReaderName(kelReaderType eReaderType);

} // namespace kel
