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
/// The device is opened and set through libserialport, and by ourselves where it has no modem lines (see LocalLine).
/// The library hands out the descriptor, and the buffer and the waiting are ours: a burst of bytes so costs one poll
/// and one read, where the library's own calls would cost two for every byte.
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
