// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Process.h"

namespace kel {

/// A process with a given command line and component folder. The folder is at first that of the running program, beside
/// which the build puts the language file.
class SimulatedProcess final : public Process {
public:
    SimulatedProcess();

    [[nodiscard]] std::string CommandLine() const override { return commandLine_; }
    [[nodiscard]] std::filesystem::path ComponentFolder() const override { return componentFolder_; }
    [[nodiscard]] std::filesystem::path ComponentFile() const override { return componentFolder_ / componentName_; }

    [[nodiscard]] NumberSigns numberSigns() const override { return numberSigns_; }

    void commandLine(std::string text) { commandLine_ = std::move(text); }
    void componentFolder(std::filesystem::path folder) { componentFolder_ = std::move(folder); }
    void componentName(std::string name) { componentName_ = std::move(name); }
    void numberSigns(NumberSigns signs) { numberSigns_ = std::move(signs); }

private:
    std::string commandLine_;
    std::filesystem::path componentFolder_;
    std::string componentName_ = "KELReader81U.dll";
    NumberSigns numberSigns_;
};

} // namespace kel
