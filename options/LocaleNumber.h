// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Process.h"
#include "types/Numbers.h"

#include <string_view>

namespace kel {

/// The number that a text as a whole is, written with the signs of a locale: "1,000" or "12,5". Failure 13 "Type
/// mismatch" if it is not a number. Signs between the thousands are accepted only in their positions.
[[nodiscard]] double localeNumber(std::string_view text, const NumberSigns& signs);

} // namespace kel
