#pragma once

#include "platform/PortMap.h"

#include <optional>
#include <string>
#include <vector>

namespace kel {

/// A port number, a serial device, or both, and whether it can be opened.
struct PortState {
    std::optional<Int16> port;
    std::optional<std::string> device;
    std::string description; ///< what the device says of itself
    bool opens = false;
    std::string reason; ///< why it does not open and what to do; empty when it does
};

/// All sixteen port numbers, then the serial devices that have none. Each device is opened and closed again.
[[nodiscard]] std::vector<PortState> portStates(const PortMap& map);

[[nodiscard]] std::string portsAsTable(const std::vector<PortState>& ports);
[[nodiscard]] std::string portsAsJson(const std::vector<PortState>& ports);

} // namespace kel
