// SPDX-License-Identifier: MIT
#pragma once

#include "cli/Commands.h"
#include "host/Simulation.h"

#include <string>
#include <vector>

namespace kel {

/// What a person can say about a simulated reader, shared by the commands that make one.
class SimulatorArguments {
public:
    /// Adds the options to a command.
    void addTo(CLI::App& command);

    /// Whether any of them was given.
    [[nodiscard]] bool given() const;

    /// What they say.
    [[nodiscard]] host::Simulation simulation() const;

private:
    std::vector<CLI::Option*> options_;
    std::string sheetsFile_;
    host::Simulation simulation_;
    std::string rate_;
};

} // namespace kel
