#pragma once

#include <filesystem>
#include <string>

namespace kel {

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
};

} // namespace kel
