// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

namespace kel {

/// Calls a thread out of its wait for a reader. A call that comes while the thread does not wait ends its next wait.
class WakeCall {
public:
    virtual ~WakeCall() = default;

    /// From any thread, and from a signal handler.
    virtual void call() noexcept = 0;

    /// The thread has heard the calls up to now: they end no wait any more.
    virtual void answer() noexcept = 0;
};

/// That of the calling thread's platform; null where nobody ever waits, as under a virtual clock.
[[nodiscard]] std::shared_ptr<WakeCall> wakeCallOfThisThread();

} // namespace kel
