// SPDX-License-Identifier: MIT
#pragma once

#include "pictures/Sheet.h"
#include "profiles/clsKELReaderProfile.h"

namespace kel {

/// The values that a model gives to marks while its recognition threshold is at `threshold`.
[[nodiscard]] MarkScale markScale(kelReaderType model, Int16 threshold);

} // namespace kel
