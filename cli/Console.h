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

/// How many characters a line of the terminal has; 100 if standard output is not a terminal.
[[nodiscard]] std::size_t terminalWidth();

/// Whether standard error is a terminal.
[[nodiscard]] bool errorsAreSeen();

/// Clears the line of the terminal to which standard error goes.
void clearErrorLine();

/// The next input from standard input: nullopt if none came for this long, an empty text at its end.
[[nodiscard]] std::optional<std::string> typedText(std::chrono::milliseconds atMost);

} // namespace kel
