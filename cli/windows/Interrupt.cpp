// SPDX-License-Identifier: MIT
#include "cli/Interrupt.h"

#include <atomic>
#include <cstdlib>
#include <windows.h>

namespace kel {

namespace {

std::atomic<int> interrupts = 0;
InterruptNote::Action interruptAction = nullptr;
void* interruptContext = nullptr;

/// Whether the process ends as soon as the handler has: the console is being closed, the user signs out, the system is
/// shut down.
bool endsProcess(DWORD event)
{
    return event == CTRL_CLOSE_EVENT || event == CTRL_LOGOFF_EVENT || event == CTRL_SHUTDOWN_EVENT;
}

/// Runs in a thread that the system makes for it.
BOOL WINAPI noteInterrupt(DWORD event)
{
    if (interrupts.exchange(1) != 0 && !endsProcess(event))
        ::ExitProcess(kInterruptedStatus);
    if (interruptAction)
        interruptAction(interruptContext);
    // The session ends in order meanwhile, and the process with it; the system waits a few seconds for that.
    if (endsProcess(event))
        ::Sleep(INFINITE);
    return TRUE;
}

} // namespace

InterruptNote::InterruptNote(Action action, void* context)
{
    interrupts = 0;
    interruptAction = action;
    interruptContext = context;
    ::SetConsoleCtrlHandler(&noteInterrupt, TRUE);
}

InterruptNote::~InterruptNote()
{
    ::SetConsoleCtrlHandler(&noteInterrupt, FALSE);
    interruptAction = nullptr;
}

bool InterruptNote::came()
{
    return interrupts != 0;
}

} // namespace kel
