// SPDX-License-Identifier: MIT
#include "cli/Interrupt.h"

#include <atomic>
#include <mutex>
#include <windows.h>

namespace kel {

namespace {

std::atomic<bool> interrupted = false;

// The handler runs in a thread that the system makes for it, and must not use what a note has removed.
std::mutex noteMutex;
bool noted = false;
InterruptNote::Action interruptAction = nullptr;
void* interruptContext = nullptr;

/// Whether the process ends as soon as the handler has: the console is being closed, the user signs out, the system is
/// shut down.
bool endsProcess(DWORD event)
{
    return event == CTRL_CLOSE_EVENT || event == CTRL_LOGOFF_EVENT || event == CTRL_SHUTDOWN_EVENT;
}

/// Whether there is a note, which has it now.
bool leaveNote(DWORD event)
{
    const std::lock_guard lock(noteMutex);
    if (!noted)
        return false;
    if (interrupted.exchange(true) && !endsProcess(event))
        ::ExitProcess(kInterruptedStatus);
    if (interruptAction)
        interruptAction(interruptContext);
    return true;
}

BOOL WINAPI noteInterrupt(DWORD event)
{
    if (!leaveNote(event))
        return FALSE;
    // The session ends in order meanwhile, and the process with it; the system waits a few seconds for that.
    if (endsProcess(event))
        ::Sleep(INFINITE);
    return TRUE;
}

void set(bool noting, InterruptNote::Action action, void* context)
{
    const std::lock_guard lock(noteMutex);
    noted = noting;
    interruptAction = action;
    interruptContext = context;
}

} // namespace

InterruptNote::InterruptNote(Action action, void* context)
{
    interrupted = false;
    set(true, action, context);
    // It is never taken off again: the system keeps the list of handlers locked while one runs, and this one may not
    // come back.
    [[maybe_unused]] static const BOOL handled = ::SetConsoleCtrlHandler(&noteInterrupt, TRUE);
}

InterruptNote::~InterruptNote()
{
    set(false, nullptr, nullptr);
}

bool InterruptNote::came()
{
    return interrupted;
}

} // namespace kel
