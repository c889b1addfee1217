// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace kel {

/// The name of a fault of the processor by its code: 0xC0000005 gives "Access Violation". A code without a name gives
/// "Unknown (&H", its eight hexadecimal digits and ")".
[[nodiscard]] std::string exceptionName(std::uint32_t code);

} // namespace kel
