// SPDX-License-Identifier: MIT
#pragma once

#include "platform/MessagePump.h"
#include "platform/posix/LineInput.h"

#include <string_view>

namespace kel {

/// How long a line may take no byte at all before its output is given up.
inline constexpr Moment kOutputPatience = std::chrono::seconds(10);

/// Writes all bytes to an open line that does not block; the writer waits while the line takes none. Meanwhile what
/// arrives is fetched, lest both sides wait for each other. 8020 when the line has hung up, and when it has taken
/// nothing for as long as the patience lasts.
void writeAll(LineInput& line, std::string_view bytes, Moment patience = kOutputPatience);

} // namespace kel
