// SPDX-License-Identifier: MIT
#pragma once

#include "types/Numbers.h"
#include "types/RuntimeFailure.h"

#include <cstddef>
#include <string>

namespace kel {

/// What the run time calls a device that could not be opened, by the cause that the system gives.
[[nodiscard]] FailureCode lineOpenFailureCode(int error);

/// "Port 3 (/dev/ttyUSB0)".
[[nodiscard]] std::string lineName(Int16 port, const std::string& device);

/// The failure of opening a device: 8002, 8005, 8010 or 8012, with a text that names port, device and cause, and what
/// to try. `error` is the system's, as in `errno`.
[[nodiscard]] RuntimeFailure lineOpenFailure(Int16 port, const std::string& device, int error);

/// The failure of a port number that no device is mapped to.
[[nodiscard]] RuntimeFailure unmappedPortFailure(Int16 port);

/// The failure of a device whose name is longer than one can be; its text leaves the name out.
[[nodiscard]] RuntimeFailure overlongDeviceFailure(Int16 port, std::size_t length);

} // namespace kel
