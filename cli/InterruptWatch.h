// SPDX-License-Identifier: MIT
#pragma once

#include "cli/Interrupt.h"
#include "cli/WaitableCall.h"

#include <atomic>
#include <functional>
#include <thread>

namespace kel {

/// While one exists, an interrupt has an action run in a thread of its own, again and again until the watch ends: what
/// the action stops may just be about to begin. One at a time, as `InterruptNote`.
class InterruptWatch {
public:
    explicit InterruptWatch(std::function<void()> action);
    ~InterruptWatch();
    InterruptWatch(const InterruptWatch&) = delete;
    InterruptWatch& operator=(const InterruptWatch&) = delete;

private:
    void run();

    std::function<void()> action_;
    WaitableCall woken_;
    std::atomic<bool> ended_ = false;
    std::thread thread_;
    InterruptNote note_; // the last, so that its handler finds the others
};

} // namespace kel
