// SPDX-License-Identifier: MIT
#pragma once

#include "types/Export.h"
#include "types/Numbers.h"

#include <optional>
#include <string>
#include <vector>

namespace kel {

/// A serial device of this machine.
struct SerialDevice {
    std::string name;        ///< the stable one of "/dev/serial/by-id", "/dev/ttyS0" if it has none; "COM3" on Windows
    std::string description; ///< what the device says of itself; may be empty
};

/// The serial devices that are there, in the order in which the system lists them.
[[nodiscard]] KEL_INTERNAL std::vector<SerialDevice> serialDevices();

/// The name of a device that stays the same wherever it is plugged in, and the name itself where there is none.
[[nodiscard]] KEL_INTERNAL std::string stableName(const std::string& device,
                                                  const std::string& folder = "/dev/serial/by-id");

/// The device of a port number that is not mapped to any: nothing, or on Windows COM1 for 1, if it is there.
[[nodiscard]] std::optional<std::string> usualDevice(Int16 port);

/// A name under which a device is found from other places too: a path that is given from the present folder becomes a
/// whole one.
[[nodiscard]] KEL_INTERNAL std::string wholeName(const std::string& device);

/// Whether two names stand for the same device file.
[[nodiscard]] KEL_INTERNAL bool sameDevice(const std::string& a, const std::string& b);

/// The milliseconds for which an adapter keeps a byte in the hope of more; nothing for a device that does not say.
[[nodiscard]] KEL_INTERNAL std::optional<std::string> latencyTimer(const std::string& device);

/// What a person does to make that shorter.
[[nodiscard]] KEL_INTERNAL std::string latencyAdvice(const std::string& device);

} // namespace kel
