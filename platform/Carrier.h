// SPDX-License-Identifier: MIT
#pragma once

#include "platform/ScanTimer.h"
#include "platform/SerialControl.h"

namespace kel {

/// The object that carries a reader's serial control and timer. A host may put one of its own instead of the
/// reader's; drivers fetch both members anew for every access.
class Carrier {
public:
    virtual ~Carrier() = default;
    /// The line.
    [[nodiscard]] virtual SerialControl& mscComm() = 0;
    /// The timer of the waits.
    [[nodiscard]] virtual ScanTimer& tmrScan() = 0;
};

} // namespace kel
