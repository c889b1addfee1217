// SPDX-License-Identifier: MIT
#pragma once

#include "types/Numbers.h"

#include <chrono>
#include <functional>

namespace kel {

/// A point of time of the platform's steady clock, counted from its own beginning.
using Moment = std::chrono::nanoseconds;

/// Yielding, blocking and the clock of one thread.
class MessagePump {
public:
    virtual ~MessagePump() = default;

    /// Lets the host and the due timers run. Returns at once while input waits that the caller has not yet seen or
    /// taken; otherwise it blocks until a byte arrives, a timer is due or some milliseconds have passed.
    virtual void DoEvents() = 0;

    /// Blocks the thread; no event runs meanwhile. Zero or less returns at once.
    virtual void Sleep(Int32 milliseconds) = 0;

    [[nodiscard]] virtual Moment now() const = 0;

    /// What the host wants to run at each `DoEvents`: its message loop, a look at its Cancel button. An empty function
    /// removes it.
    virtual void hostPump(std::function<void()> pump) = 0;
};

} // namespace kel
