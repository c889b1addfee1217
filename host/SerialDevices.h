// SPDX-License-Identifier: MIT
#pragma once

#include "types/Numbers.h"

#include <string>
#include <vector>

namespace kel::host {

/// A serial device of this machine.
struct SerialDevice {
    std::string name;        ///< the stable name of "/dev/serial/by-id" where it has one, "/dev/ttyS0" if not
    std::string description; ///< what the device says of itself; may be empty
};

/// The serial devices that are there, in the order in which the system lists them.
[[nodiscard]] std::vector<SerialDevice> serialDevices();

/// The name of a device that stays the same wherever it is plugged in, and the name itself where there is none.
[[nodiscard]] std::string stableName(const std::string& device, const std::string& folder = "/dev/serial/by-id");

/// Whether two names stand for the same device file.
[[nodiscard]] bool sameDevice(const std::string& a, const std::string& b);

} // namespace kel::host
