// SPDX-License-Identifier: MIT
#pragma once

#include "platform/LineDevice.h"
#include "types/SourceLocation.h"

#include <string>
#include <string_view>

namespace kel {

/// Line settings from their text: speed, parity letter (N E O M S, in either case), data bits 4 to 8, and stop bits
/// 1, 1.5 or 2, parted by commas. Any other text is 380 "Invalid property value". Handshaking is not part of it.
[[nodiscard]] LineParameters parseLineSettings(std::string_view text, SourceLocation where = SourceLocation::current());

/// The text of line settings: "9600,N,8,1".
[[nodiscard]] std::string lineSettingsText(const LineParameters& line);

} // namespace kel
