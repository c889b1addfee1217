// SPDX-License-Identifier: MIT
#pragma once

#include "host/Form.h"
#include "host/Simulation.h"
#include "types/Enumerations.h"

#include <string>

namespace kel {

/// A simulated reader that other programs are to find.
struct PlayedModel {
    kelReaderType model;
    host::Form form;
    host::Simulation simulation;
};

/// Plays a reader with a line until Ctrl-C, after a device whose name the first line of output has; `link` is another
/// name for it, or empty. The answer is the exit status. UsageError where the system has no such devices.
[[nodiscard]] int playReader(const PlayedModel& played, const std::string& link);

/// The same for a USB model: the first line names the library to load, and the following lines report what happens in
/// it.
[[nodiscard]] int playLibrary(const PlayedModel& played, const std::string& link);

} // namespace kel
