// SPDX-License-Identifier: MIT
#pragma once

#include "recording/Transcript.h"

#include <string>

namespace kel {

/// Where a line stands in its transcript, for the beginning of a sentence about it: "Line 12".
[[nodiscard]] inline std::string placeOf(const TranscriptLine& line)
{
    return "Line " + std::to_string(line.number);
}

} // namespace kel
