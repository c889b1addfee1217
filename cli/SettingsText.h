// SPDX-License-Identifier: MIT
#pragma once

#include "reader/clsKELReader.h"

#include <string>

namespace kel {

/// The 19 settings of a reader, a line each, or as one JSON object.
[[nodiscard]] std::string settingsText(const clsKELReader& reader, bool asJson);

} // namespace kel
