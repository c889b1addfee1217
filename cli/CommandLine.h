// SPDX-License-Identifier: MIT
#pragma once

namespace kel {

/// The command: parses its arguments, does what they say, and returns the exit status. 0: nothing failed; 1: a failure
/// was reported, the reader did not start, or the command could not do its work; 2: wrong usage; 130: interrupted.
[[nodiscard]] int runCommandLine(int argc, const char* const* argv);

} // namespace kel
