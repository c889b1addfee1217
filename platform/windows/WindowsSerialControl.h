// SPDX-License-Identifier: MIT
#pragma once

#include "platform/LineControl.h"

#include <memory>

namespace kel {

class WatchedInput;
class WindowsMessagePump;

/// A serial port of this machine: port 1 is COM1, and so on to COM16, unless a port is mapped to another device, such
/// as COM23.
class WindowsSerialControl final : public LineControl {
public:
    /// Closed, set to 9600,N,8,1 without handshaking. The pump serves the line while it is open.
    explicit WindowsSerialControl(std::shared_ptr<WindowsMessagePump> pump);

    /// The input side of the open line, for tests; 8018 on a closed one.
    [[nodiscard]] WatchedInput& input();

private:
    [[nodiscard]] std::unique_ptr<OpenLine> open(Int16 port, const LineParameters& parameters) override;

    std::shared_ptr<WindowsMessagePump> pump_;
};

} // namespace kel
