// SPDX-License-Identifier: MIT
#pragma once

#include "types/Export.h"
#include "types/Numbers.h"
#include "types/RuntimeFailure.h"

#include <optional>
#include <string>

namespace kel {

/// Whether a port can be opened.
struct PortLook {
    bool opens = false;
    Int32 failure = 0;    ///< the number of the failure if it does not open
    std::string reason{}; ///< the failure's text: why it does not open and what to do
    FailedPort port{};    ///< the parts of that text, where they are known
};

/// The device that a port number, 1 to 16, stands for: the mapped one or else, on Windows, the one that is called so,
/// if it is there.
[[nodiscard]] KEL_INTERNAL std::optional<std::string> deviceOfPort(Int16 port);

/// Opens a port of the calling thread's platform and closes it again. Never fails.
[[nodiscard]] KEL_INTERNAL PortLook lookAtPort(Int16 port);

/// The same for a device under a number that need not be its own.
[[nodiscard]] KEL_INTERNAL PortLook lookAtDevice(const std::string& device, Int16 port);

} // namespace kel
