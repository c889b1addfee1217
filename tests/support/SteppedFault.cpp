// SPDX-License-Identifier: MIT
#include "tests/support/SteppedFault.h"

#include "platform/FaultCapture.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <ucontext.h>
#include <unistd.h>

namespace kel::test {

#if defined(__x86_64__) && !defined(__clang__) && !defined(__SANITIZE_THREAD__)

// This program's code, as the linker places it.
extern "C" const char __executable_start;
extern "C" const char etext;

namespace {

constexpr int kStride = 16;
constexpr greg_t kTrapFlag = 0x100; // the processor traps after each instruction

int instructionsLeft = 0;
bool counting = false;
struct sigaction capture {};

bool isOfThisProgram(greg_t instruction)
{
    const auto* const at = reinterpret_cast<const char*>(instruction);
    return at >= &__executable_start && at < &etext;
}

extern "C" void kelOnStep(int signalNumber, siginfo_t* info, void* context)
{
    greg_t& flags = static_cast<ucontext_t*>(context)->uc_mcontext.gregs[REG_EFL];
    if (!counting) {
        flags &= ~kTrapFlag;
        return;
    }
    flags |= kTrapFlag;
    const greg_t instruction = static_cast<ucontext_t*>(context)->uc_mcontext.gregs[REG_RIP];
    // What the processor does in front of the procedure is none of its statements, and libraries (the heap, a
    // sanitizer) must not be left in the midst of one.
    if (info->si_code <= 0 || !componentRuns() || !isOfThisProgram(instruction) || --instructionsLeft > 0)
        return;
    counting = false;
    flags &= ~kTrapFlag;
    capture.sa_sigaction(signalNumber, info, context);
}

void beQuiet()
{
    const rlimit none{0, 0};
    ::setrlimit(RLIMIT_CORE, &none);
    const int nowhere = ::open("/dev/null", O_WRONLY);
    ::dup2(nowhere, STDOUT_FILENO);
    ::dup2(nowhere, STDERR_FILENO);
}

[[noreturn]] void attemptAt(int instruction, const std::function<bool()>& attempt)
{
    beQuiet();
    instructionsLeft = instruction;
    // What ends up in the wild is ended: by the work it does, however busy the machine is, or because it sleeps on.
    const itimerval work{{}, {5, 0}};
    ::setitimer(ITIMER_PROF, &work, nullptr);
    ::alarm(300);
    // A fault after the procedure's own statements leaves the attempt.
    bool succeeded = false;
    try {
        succeeded = attempt();
    } catch (...) {
        succeeded = false;
    }
    ::_exit(succeeded ? 0 : 1);
}

bool succeedsAt(int instruction, const std::function<bool()>& attempt)
{
    // Not `fork`: that would write down first what the tests have reached so far, if that is measured.
    const pid_t child = ::_Fork();
    if (child == 0)
        attemptAt(instruction, attempt);
    int status = -1;
    while (child > 0 && ::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return status == 0;
}

} // namespace

const bool SteppedFault::kPossible = true;

bool SteppedFault::sweep(int instructions, const std::function<bool()>& attempt)
{
    // The way to the code that can be left may be long: in strides it is found sooner.
    for (int first = 1; first <= kStride; ++first) {
        for (int instruction = first; instruction <= instructions; instruction += kStride) {
            if (succeedsAt(instruction, attempt))
                return true;
        }
    }
    return false;
}

void SteppedFault::arm()
{
    struct sigaction step {};
    step.sa_sigaction = &kelOnStep;
    step.sa_flags = SA_SIGINFO | static_cast<int>(SA_NODEFER);
    ::sigaction(SIGTRAP, &step, &capture);
    counting = true;
    ::raise(SIGTRAP);
}

void SteppedFault::disarm()
{
    counting = false;
}

#else

const bool SteppedFault::kPossible = false;

bool SteppedFault::sweep(int, const std::function<bool()>&)
{
    return false;
}

void SteppedFault::arm() {}

void SteppedFault::disarm() {}

#endif

} // namespace kel::test
