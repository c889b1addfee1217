// SPDX-License-Identifier: MIT
#pragma once

#include "types/Enumerations.h"
#include "types/Export.h"

#include <string>
#include <string_view>

namespace kel::host {

/// The model that a person means: its number, its display name or its enumerator's name, in any case of letters and
/// with or without the signs between the words. A beginning or a part of a name will do where only one model has it.
/// UsageError for none, with the nearest names if there are any, and for several, with all of them.
[[nodiscard]] KEL_PUBLIC kelReaderType modelNamed(std::string_view text);

/// Whether a model is a USB reader, which has no line: it is reached through the library of its maker.
[[nodiscard]] KEL_PUBLIC bool isUsbModel(kelReaderType eReaderType);

/// The maker that a person means: "apperson", "chatsworth", "pdi" or "Peripheral Dynamics", "scantron", "sekonic".
/// UsageError for any other, with the names that are known.
[[nodiscard]] KEL_PUBLIC kelProfileType makerNamed(std::string_view text);

} // namespace kel::host
