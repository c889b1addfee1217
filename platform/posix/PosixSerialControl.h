// SPDX-License-Identifier: MIT
#pragma once

#include "platform/LineControl.h"
#include "platform/PortMap.h"

#include <memory>

namespace kel {

class LineInput;
class PosixMessagePump;

/// A serial line of this machine, or one across the network (see RemoteLine).
///
/// Its buffer and its waiting are the component's own: a burst of bytes costs one poll and one read, where a library of
/// serial ports would make two calls for every byte.
class PosixSerialControl final : public LineControl {
public:
    /// Closed, set to 9600,N,8,1 without handshaking. The pump serves the line while it is open; the registry has the
    /// map of the port numbers.
    PosixSerialControl(std::shared_ptr<PosixMessagePump> pump, std::shared_ptr<Registry> registry);

    /// The input side of the open line, for tests; 8018 on a closed one.
    [[nodiscard]] LineInput& input();

private:
    [[nodiscard]] std::unique_ptr<OpenLine> open(Int16 port, const LineParameters& parameters) override;

    std::shared_ptr<PosixMessagePump> pump_;
    std::shared_ptr<Registry> registry_;
};

} // namespace kel
