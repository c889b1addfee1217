// SPDX-License-Identifier: MIT
#pragma once

#include "host/Simulation.h"
#include "simulators/framework/Simulator.h"
#include "simulators/sekonic_usb/OmrSimulationState.h"

#include <filesystem>
#include <memory>

namespace kel::host {

/// The simulated reader of a model with a line. UsageError for options that are wrong.
[[nodiscard]] std::unique_ptr<Simulator> makeSimulator(const Simulation& simulation, kelReaderType model,
                                                       const Form& form);

/// The state with which to set up the simulated library of the USB models. UsageError for options that are wrong.
[[nodiscard]] OmrSimulationState omrState(const Simulation& simulation, const Form& form);

/// The simulated library of the USB readers' maker, which is beside the component. OperationError if it does not exist.
[[nodiscard]] std::filesystem::path simulatedOmrApiFile();

} // namespace kel::host
