// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace kel::host {

/// The time of this place, in a form of `strftime`.
[[nodiscard]] std::string localTime(const char* form);

/// How far the time of this place is from UTC, as +0100. Not every system's `strftime` knows.
[[nodiscard]] std::string utcOffset();

} // namespace kel::host
