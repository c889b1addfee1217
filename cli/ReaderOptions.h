// SPDX-License-Identifier: MIT
#pragma once

#include "cli/Commands.h"
#include "types/Numbers.h"

#include <optional>
#include <string>
#include <vector>

namespace kel {

/// Two options of which only one is given.
struct PortOptions {
    CLI::Option* port;
    CLI::Option* device;
};

/// Adds `--port` and `--device`, the two ways to say where a reader is.
PortOptions addPort(CLI::App& command, std::optional<Int16>& port, std::string& device);

/// Adds `--omrapi`, the library through which the USB readers are used.
CLI::Option* addUsbLibrary(CLI::App& command, std::string& file);

/// Adds `--set`, which may be given several times.
void addAssignments(CLI::App& command, std::vector<std::string>& assignments, const std::string& description);

} // namespace kel
