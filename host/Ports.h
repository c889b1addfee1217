// SPDX-License-Identifier: MIT
#pragma once

#include "types/Export.h"
#include "types/Numbers.h"

#include <optional>
#include <string>
#include <vector>

namespace kel::host {

/// Port numbers run from the first to the last.
inline constexpr Int16 kFirstPort = 1;
inline constexpr Int16 kLastPort = 16;

/// A port number, a serial device, or both, and whether it can be opened.
struct PortState {
    std::optional<Int16> port{};         ///< 1 to 16
    std::optional<std::string> device{}; ///< a device file or a remote line; the beginning of a name that is too long
    std::string description{};           ///< the device's description of itself
    bool opens = false;
    std::string reason{}; ///< why it does not open and what to do; empty when it does
};

/// All sixteen port numbers, then the serial devices that have none. Each device is opened and closed again.
[[nodiscard]] KEL_PUBLIC std::vector<PortState> portStates();

/// The device or remote line that a port number, 1 to 16, stands for; nullopt if there is none.
[[nodiscard]] KEL_PUBLIC std::optional<std::string> deviceOf(Int16 port);

/// Assigns a port number to a device or a remote line, or removes its device. False for a number outside 1 to 16, for a
/// device whose name is empty or longer than 4,096 bytes, for a port that has none to remove, and if the settings
/// cannot be written.
KEL_PUBLIC bool mapPort(Int16 port, const std::string& device);
KEL_PUBLIC bool unmapPort(Int16 port);

} // namespace kel::host
