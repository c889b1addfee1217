// SPDX-License-Identifier: MIT
#pragma once

#include "platform/ScanTimer.h"
#include "platform/SerialControl.h"

namespace kel {

/// The object that carries a reader's serial control and timer. A host may replace it with one of its own; drivers
/// fetch both members again for every access.
class Carrier {
public:
    virtual ~Carrier() = default;
    /// The line.
    [[nodiscard]] virtual SerialControl& mscComm() = 0;
    /// The timer of the waits.
    [[nodiscard]] virtual ScanTimer& tmrScan() = 0;
};

} // namespace kel
