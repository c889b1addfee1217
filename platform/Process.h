// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

namespace kel {

/// The signs within a number as the user writes it.
struct NumberSigns {
    std::string decimal = "."; ///< before the fraction
    std::string thousands;     ///< between groups of digits; empty if there is none
};

/// What the component knows of the process that it runs in.
class Process {
public:
    virtual ~Process() = default;

    /// The command line of the process: program and arguments as one text.
    [[nodiscard]] virtual std::string CommandLine() const = 0;

    /// The folder that holds the component, where the language file lies too.
    [[nodiscard]] virtual std::filesystem::path ComponentFolder() const = 0;

    /// The file of the component itself.
    [[nodiscard]] virtual std::filesystem::path ComponentFile() const = 0;

    /// How the user writes numbers, by the locale.
    [[nodiscard]] virtual NumberSigns numberSigns() const { return {}; }

    /// A key of a section of a profile file as the system itself reads it, or `otherwise` if the key is not there, cut
    /// to a buffer of `bufferSize` bytes with its terminator. Nothing on a system that has no such files, and for a
    /// file whose name the system's function does not take.
    [[nodiscard]] virtual std::optional<std::string>
    ProfileString(const std::string& /*section*/, const std::string& /*key*/, const std::string& /*otherwise*/,
                  std::size_t /*bufferSize*/, const std::string& /*fileName*/) const
    {
        return std::nullopt;
    }
};

} // namespace kel
