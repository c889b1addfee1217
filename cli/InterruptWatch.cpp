// SPDX-License-Identifier: MIT
#include "cli/InterruptWatch.h"

#include <poll.h>
#include <utility>

namespace kel {

namespace {

// How often the action runs after an interrupt, in milliseconds.
constexpr int kAgain = 20;

} // namespace

InterruptWatch::InterruptWatch(std::function<void()> action)
    : action_(std::move(action)), thread_([this] { run(); }),
      note_([](void* woken) { static_cast<EventCall*>(woken)->call(); }, &woken_)
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
        pollfd handle{woken_.handle(), POLLIN, 0};
        ::poll(&handle, 1, InterruptNote::came() ? kAgain : -1);
        if (ended_)
            return;
        woken_.answer();
        if (InterruptNote::came())
            action_();
    }
}

} // namespace kel
