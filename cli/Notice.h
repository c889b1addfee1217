// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace kel {

/// Writes a sentence, with the command's name before it, to standard error, where a person or the journal of the system
/// reads it; from any thread.
void notice(const std::string& sentence);

} // namespace kel
