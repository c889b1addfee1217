// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace kel {

/// What to try where memory is not enough, to follow "There is not enough memory; ".
extern const std::string_view kMemoryAdvice;

/// What to try where the system gives no further thread.
extern const std::string_view kThreadAdvice;

/// The name of the system, its release and its processor, for reports.
[[nodiscard]] std::string systemText();

} // namespace kel
