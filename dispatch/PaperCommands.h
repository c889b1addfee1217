// SPDX-License-Identifier: MIT
#pragma once

#include "types/Enumerations.h"
#include "types/Export.h"

#include <string_view>

namespace kel {

/// Whether a reader of a model takes these bytes without moving paper, printing, or storing anything beyond the
/// session. `before` is what it was sent last. What is not known to be harmless is not; nor is anything for a model
/// without a line.
[[nodiscard]] KEL_INTERNAL bool movesNoPaper(kelReaderType model, std::string_view bytes, std::string_view before);

} // namespace kel
