// SPDX-License-Identifier: MIT
#pragma once

#include "simulators/framework/Simulator.h"

#include <memory>

namespace kel {

/// A simulated reader of a model, with what the options say. Throws std::invalid_argument for a model that has none
/// (the USB models, which have no line) and for a setting that the model does not know.
[[nodiscard]] std::unique_ptr<Simulator> makeSimulator(kelReaderType model, SimulatorOptions options);

/// Whether there is a simulated reader of a model.
[[nodiscard]] bool hasSimulator(kelReaderType model);

/// The family of a model; without a simulated reader on a line it is that of the USB readers.
[[nodiscard]] SimulatedFamily simulatedFamily(kelReaderType model);

/// How the line of a model is set where nobody has changed it: "9600,N,8,1"; empty without a line.
[[nodiscard]] std::string usualLine(kelReaderType model);

/// What random sheets of a model look like: the model's usual shape, with rows and columns of the form's first page
/// where the form says them.
[[nodiscard]] SheetShape sheetShape(kelReaderType model, const FormDescription& form = {});

} // namespace kel
