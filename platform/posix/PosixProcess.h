// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Process.h"

#include <string_view>

namespace kel {

/// This process as the system describes it.
class PosixProcess final : public Process {
public:
    /// Program and arguments, joined by blanks; one that is empty or holds a blank stands in double quotes.
    [[nodiscard]] std::string CommandLine() const override;
    [[nodiscard]] std::filesystem::path ComponentFolder() const override;
    /// The shared library that this code is in, or the program where it is linked into one.
    [[nodiscard]] std::filesystem::path ComponentFile() const override;
    /// By the locale of the process; if that is nobody's, by the one that the environment names.
    [[nodiscard]] NumberSigns numberSigns() const override;
};

/// The words of a command line, each with a zero byte after it, as one text.
[[nodiscard]] std::string joinCommandLine(std::string_view words);

} // namespace kel
