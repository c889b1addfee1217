// SPDX-License-Identifier: MIT
#include "cli/InterruptWatch.h"

#include <utility>

namespace kel {

namespace {

// How often the action runs after an interrupt.
constexpr std::chrono::milliseconds kAgain{20};

} // namespace

InterruptWatch::InterruptWatch(std::function<void()> action)
    : action_(std::move(action)), thread_([this] { run(); }),
      note_([](void* woken) { static_cast<WaitableCall*>(woken)->call(); }, &woken_)
{
}

InterruptWatch::~InterruptWatch()
{
    ended_ = true;
    woken_.call();
    thread_.join();
}

void InterruptWatch::run()
{
    for (;;) {
        woken_.wait(InterruptNote::came() ? std::optional(kAgain) : std::nullopt);
        if (ended_)
            return;
        if (InterruptNote::came())
            action_();
    }
}

} // namespace kel
