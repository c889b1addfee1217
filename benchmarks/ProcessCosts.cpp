// SPDX-License-Identifier: MIT
#include "benchmarks/ProcessCosts.h"

#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <string>

namespace kel {

double cpuSeconds()
{
    rusage usage{};
    getrusage(RUSAGE_THREAD, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

int countSystemCalls(void (*session)())
{
    const pid_t child = fork();
    if (child == 0) {
        ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        raise(SIGSTOP);
        session();
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD);
    int calls = 0;
    bool counting = false;
    bool entering = true;
    while (true) {
        ptrace(PTRACE_SYSCALL, child, nullptr, nullptr);
        if (waitpid(child, &status, 0) < 0 || WIFEXITED(status))
            return calls;
        if (!WIFSTOPPED(status) || WSTOPSIG(status) != (SIGTRAP | 0x80))
            continue;
        if (entering) {
            constexpr long kOriginalRax = 8 * 15;
            if (ptrace(PTRACE_PEEKUSER, child, kOriginalRax, nullptr) == SYS_getppid)
                counting = !counting;
            else if (counting)
                ++calls;
        }
        entering = !entering;
    }
}

double peakMegabytesAtEnd(pid_t child)
{
    int status = 0;
    waitpid(child, &status, 0); // stopped by exec
    ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACEEXIT);
    ptrace(PTRACE_CONT, child, nullptr, nullptr);
    waitpid(child, &status, 0); // stopped at its end
    std::ifstream facts("/proc/" + std::to_string(child) + "/status");
    double kilobytes = 0;
    for (std::string word; facts >> word;) {
        if (word == "VmHWM:")
            facts >> kilobytes;
    }
    ptrace(PTRACE_CONT, child, nullptr, nullptr);
    waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0 ? kilobytes / 1024 : -1;
}

} // namespace kel
