#pragma once

#include "cli/Commands.h"
#include "cli/FormFile.h"
#include "simulators/framework/Simulator.h"
#include "simulators/sekonic_usb/OmrSimulationState.h"

#include <memory>

namespace kel {

/// What a person can say about a simulated reader, shared by the commands that make one.
class SimulatorArguments {
public:
    /// Adds the options to a command.
    void addTo(CLI::App& command);

    /// Whether any of them was given.
    [[nodiscard]] bool given() const;

    /// The form of the sheets in the feeder, one page of as many rows and columns as the largest sheet has.
    [[nodiscard]] ScanForm formOfSheets(kelReaderType model) const;

    /// The simulated reader of a model with a line. UsageError for options that are wrong.
    [[nodiscard]] std::unique_ptr<Simulator> make(kelReaderType model, const ScanForm& form) const;

    /// What the simulated library of the USB models is to be set up with. UsageError for options that are wrong.
    [[nodiscard]] OmrSimulationState omrState(const ScanForm& form) const;

private:
    [[nodiscard]] SimulatorOptions options(const ScanForm& form) const;

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
