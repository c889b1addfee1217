// SPDX-License-Identifier: MIT
#pragma once

#include "types/Export.h"

#include <functional>

namespace kel {

/// What the host runs at each turn of a wait of the calling thread's readers: its message loop, a check of its Cancel
/// button. An empty function removes it. A wait ends when it sets `CancelScan`; it must not begin another read of the
/// reader that waits. On Windows a wait dispatches the thread's messages in any case.
///
/// A turn comes at least every 20 milliseconds, but not during a fixed pause of a dialogue, nor while the library of a
/// USB reader is at work. What it throws ends the procedure that was waiting, and is reported as its failure.
KEL_PUBLIC void setHostPump(std::function<void()> pump);

} // namespace kel
