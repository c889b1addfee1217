#pragma once

#include "cli/Commands.h"
#include "cli/FormFile.h"
#include "simulators/framework/Simulator.h"

#include <memory>

namespace kel {

/// What a person can say about a simulated reader, shared by the commands that make one.
class SimulatorArguments {
public:
    /// Adds the options to a command.
    void addTo(CLI::App& command);

    /// Whether any of them was given.
    [[nodiscard]] bool given() const;

    /// The simulated reader. UsageError for a model that has none and for options that are wrong.
    [[nodiscard]] std::unique_ptr<Simulator> make(kelReaderType model, const ScanForm& form) const;

private:
    std::vector<CLI::Option*> options_;
    CLI::Option* sheetsOption_ = nullptr;
    std::string sheetsFile_;
    std::uint64_t seed_ = 1;
    std::uint64_t count_ = 10;
    std::vector<std::string> faults_;
    std::string rate_;
    std::vector<std::string> settings_;
};

} // namespace kel
