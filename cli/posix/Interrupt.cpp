// SPDX-License-Identifier: MIT
#include "cli/Interrupt.h"

#include <atomic>
#include <csignal>
#include <iterator>
#include <unistd.h>

namespace kel {

namespace {

constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};

// The handler may run in any thread.
std::atomic<int> interrupts = 0;
static_assert(std::atomic<int>::is_always_lock_free);
InterruptNote::Action interruptAction = nullptr;
void* interruptContext = nullptr;
struct sigaction previousActions[std::size(kSignals)];

void noteInterrupt(int)
{
    if (interrupts != 0)
        ::_exit(kInterruptedStatus);
    interrupts = 1;
    if (interruptAction)
        interruptAction(interruptContext);
}

} // namespace

InterruptNote::InterruptNote(Action action, void* context)
{
    interrupts = 0;
    interruptAction = action;
    interruptContext = context;
    struct sigaction noting {};
    noting.sa_handler = noteInterrupt;
    sigemptyset(&noting.sa_mask);
    for (std::size_t i = 0; i < std::size(kSignals); ++i) {
        sigaction(kSignals[i], &noting, &previousActions[i]);
        // Who started it with `nohup` wants it to go on when the terminal is gone.
        if (kSignals[i] == SIGHUP && previousActions[i].sa_handler == SIG_IGN)
            sigaction(SIGHUP, &previousActions[i], nullptr);
    }
}

InterruptNote::~InterruptNote()
{
    for (std::size_t i = 0; i < std::size(kSignals); ++i)
        sigaction(kSignals[i], &previousActions[i], nullptr);
}

bool InterruptNote::came()
{
    return interrupts != 0;
}

} // namespace kel
