// SPDX-License-Identifier: MIT
#pragma once

#include "platform/WakeCall.h"
#include "types/Boolean.h"

#include <atomic>
#include <memory>
#include <vector>

namespace kel {

/// The stop flag of a session as others than its own thread see it: it may be set from any thread and from a signal
/// handler, and the thread that waits for the reader is called.
class StopRequest {
public:
    /// The flag must outlive this.
    explicit StopRequest(Boolean& flag) : flag_(flag) {}

    [[nodiscard]] Boolean value() const noexcept { return flag_.load(); }
    void value(Boolean stop) noexcept { flag_.store(stop); }

    /// The same, and calls the thread that waits, if it is to stop.
    void demand(Boolean stop) noexcept
    {
        value(stop);
        if (WakeCall* const waiting = waiting_; stop && waiting)
            waiting->call();
    }

    /// A session begins in the calling thread: nobody has stopped it yet.
    void begin()
    {
        waitHere();
        if (WakeCall* const waiting = waiting_)
            waiting->answer();
        value(False);
    }

    /// The calling thread is the one that waits from now on.
    void waitHere()
    {
        std::shared_ptr<WakeCall> here = wakeCallOfThisThread();
        if (here.get() == waiting_)
            return;
        waiting_ = here.get();
        called_.push_back(std::move(here));
    }

private:
    std::atomic_ref<Boolean> flag_;
    std::atomic<WakeCall*> waiting_ = nullptr;
    std::vector<std::shared_ptr<WakeCall>> called_; // somebody may be calling an earlier one just now
};

} // namespace kel
