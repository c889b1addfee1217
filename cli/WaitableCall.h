// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <memory>
#include <optional>

namespace kel {

/// Calls a thread that waits for nothing else.
class WaitableCall {
public:
    WaitableCall();
    ~WaitableCall();
    WaitableCall(const WaitableCall&) = delete;
    WaitableCall& operator=(const WaitableCall&) = delete;

    /// From any thread, and from a handler of interrupts.
    void call() noexcept;

    /// Waits for a call, so long at most; without a time until one comes.
    void wait(std::optional<std::chrono::milliseconds> atMost);

private:
    class Event;
    std::unique_ptr<Event> event_;
};

} // namespace kel
