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

/// What the simulated library of the USB models is to be set up with. UsageError for options that are wrong.
[[nodiscard]] OmrSimulationState omrState(const Simulation& simulation, const Form& form);

/// The simulated library of the USB readers' maker, which lies beside the component. OperationError if it is not
/// there.
[[nodiscard]] std::filesystem::path simulatedOmrApiFile();

} // namespace kel::host
