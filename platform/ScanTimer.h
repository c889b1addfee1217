// SPDX-License-Identifier: MIT
#pragma once

#include "types/Boolean.h"
#include "types/Numbers.h"

namespace kel {

/// The one-shot timer of a reader's waits: what the drivers call `tmrScan`.
/// Its event runs only while the thread yields in `DoEvents`; it turns `Enabled` off, and that is the signal.
class ScanTimer {
public:
    virtual ~ScanTimer() = default;

    /// Milliseconds from enabling to the event; 0 never fires.
    [[nodiscard]] virtual Int32 Interval() const = 0;
    virtual void Interval(Int32 milliseconds) = 0;

    /// True starts the countdown from `Interval`, also if it was running.
    [[nodiscard]] virtual Boolean Enabled() const = 0;
    virtual void Enabled(Boolean value) = 0;
};

} // namespace kel
