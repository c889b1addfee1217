#pragma once

#include "cli/SimulatorArguments.h"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace kel {

/// The simulated reader of a scan, at work for as long as the object lives.
class SimulatedReader {
public:
    virtual ~SimulatedReader() = default;

    /// The device at the end of its line; empty for a reader without one.
    [[nodiscard]] virtual std::string deviceFile() const = 0;

    /// Ends it, and gives what was done wrongly to it.
    [[nodiscard]] virtual std::vector<std::string> end() = 0;
};

/// Starts the simulated reader of a model: behind a pseudo-terminal in a thread of its own; or, for a USB model, as
/// the library of the readers' maker, which the platform's loader loads from now on. UsageError for options that are
/// wrong.
[[nodiscard]] std::unique_ptr<SimulatedReader> startSimulatedReader(const SimulatorArguments& arguments,
                                                                    kelReaderType model, const ScanForm& form);

/// The simulated library of the USB readers' maker, which lies beside the command. CommandFailure if it is not there.
[[nodiscard]] std::filesystem::path simulatedOmrApiFile();

} // namespace kel
