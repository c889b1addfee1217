#include "tests/support/SteppedFault.h"

#include "platform/FaultCapture.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <ucontext.h>
#include <unistd.h>

namespace kel::test {

// The sanitizers' own code must not be left in the midst of a statement.
#if defined(__x86_64__) && !defined(__clang__) && !defined(__SANITIZE_THREAD__) && !defined(__SANITIZE_ADDRESS__)

namespace {

constexpr greg_t kTrapFlag = 0x100; // the processor traps behind each instruction

int instructionsLeft = 0;
bool counting = false;
struct sigaction capture {};

extern "C" void kelOnStep(int signalNumber, siginfo_t* info, void* context)
{
    greg_t& flags = static_cast<ucontext_t*>(context)->uc_mcontext.gregs[REG_EFL];
    if (!counting) {
        flags &= ~kTrapFlag;
        return;
    }
    flags |= kTrapFlag;
    // What the processor does in front of the procedure is none of its statements.
    if (info->si_code <= 0 || !componentRuns() || --instructionsLeft > 0)
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
    // What ends up in the wild is ended.
    ::alarm(10);
    ::_exit(attempt() ? 0 : 1);
}

} // namespace

const bool SteppedFault::kPossible = true;

bool SteppedFault::sweep(int instructions, const std::function<bool()>& attempt)
{
    for (int instruction = 1; instruction <= instructions; ++instruction) {
        const pid_t child = ::fork();
        if (child == 0)
            attemptAt(instruction, attempt);
        int status = -1;
        while (child > 0 && ::waitpid(child, &status, 0) < 0 && errno == EINTR) {
        }
        if (status == 0)
            return true;
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
