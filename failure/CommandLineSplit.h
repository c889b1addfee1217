// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace kel {

/// A command line in its two parts.
struct CommandLineParts {
    std::string program;
    std::string arguments;
};

/// Splits the first 512 characters of a command line. A program in double quotes ends at the next one, and blanks in
/// front of the arguments are dropped; any other program ends at the first blank.
[[nodiscard]] CommandLineParts splitCommandLine(std::string_view sCommandLine);

} // namespace kel
