// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace kel {

/// The system's settings for the streams and the terminal of a command, as long as it runs.
class Console {
public:
    Console();
    ~Console(); // NOLINT(performance-trivially-destructible): not on every system
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;
};

/// The arguments after the program's name, in UTF-8.
[[nodiscard]] std::vector<std::string> programArguments(int argc, const char* const* argv);

/// How many characters a line of the terminal has; 100 where standard output is none.
[[nodiscard]] std::size_t terminalWidth();

/// Whether somebody sees what goes to standard error.
[[nodiscard]] bool errorsAreSeen();

/// Takes away what stands in the line of the terminal to which standard error goes.
void clearErrorLine();

/// What has come from standard input: nothing if none did for so long, an empty text at its end.
[[nodiscard]] std::optional<std::string> typedText(std::chrono::milliseconds atMost);

} // namespace kel
