// SPDX-License-Identifier: MIT
// Runs a program, and closes its console when a line comes from standard input. Wine has no such event of its own; this
// does what the system does: the handlers are called in a thread of the program, and when they have come back it ends.
// Usage: close_console "PROGRAM ARGUMENTS". The exit status is the program's.

#include <windows.h>

#include <array>
#include <cstdio>
#include <thread>

namespace {

constexpr int kWrongUsage = 2;
/// What the system's thread for the handlers ends with when it comes back from them.
constexpr DWORD kHandled = 1;
/// What the system ends a program with then.
constexpr UINT kEndedByTheSystem = 0xC000013A;

template <class Function>
Function systemFunction(const char* name)
{
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("kernel32.dll"), name)));
}

void closeConsoleOf(HANDLE program)
{
    auto* const handlers = systemFunction<LPTHREAD_START_ROUTINE>("CtrlRoutine");
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the routine takes the event in place of a pointer
    auto* const event = reinterpret_cast<void*>(static_cast<ULONG_PTR>(CTRL_CLOSE_EVENT));
    const HANDLE thread = CreateRemoteThread(program, nullptr, 0, handlers, event, 0, nullptr);
    WaitForSingleObject(thread, INFINITE);
    DWORD end = 0;
    GetExitCodeThread(thread, &end);
    if (end == kHandled)
        TerminateProcess(program, kEndedByTheSystem);
}

} // namespace

int main(int argc, char** argv)
{
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION program{};
    if (argc != 2 || !CreateProcessA(nullptr, argv[1], nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &program))
        return kWrongUsage;
    const HANDLE asked = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    std::thread([asked] {
        std::getchar();
        SetEvent(asked);
    }).detach();
    const std::array news{asked, program.hProcess};
    if (WaitForMultipleObjects(static_cast<DWORD>(news.size()), news.data(), FALSE, INFINITE) == WAIT_OBJECT_0)
        closeConsoleOf(program.hProcess);
    WaitForSingleObject(program.hProcess, INFINITE);
    DWORD status = 0;
    GetExitCodeProcess(program.hProcess, &status);
    return static_cast<int>(status);
}
