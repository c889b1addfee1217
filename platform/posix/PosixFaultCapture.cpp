// SPDX-License-Identifier: MIT
#include "platform/posix/PosixFaultCapture.h"

#include "platform/WayBack.h"
#include "platform/posix/FaultContext.h"

#include <array>
#include <atomic>
#include <pthread.h>

namespace kel {

namespace {

constexpr std::array<int, 5> kSignals = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP};

/// A signal's handler from before. Two places, so that the handler can read one while the other is written.
struct Previous {
    std::array<struct sigaction, 2> actions{};
    std::atomic<int> inUse{0};
    std::atomic<bool> isSpent{false}; // it was to be called once
};

std::array<Previous, kSignals.size()> previous;
std::atomic<FaultFilter> filterInUse{nullptr};

Previous* previousOf(int signalNumber)
{
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
        if (kSignals[i] == signalNumber)
            return &previous[i];
    }
    return nullptr;
}

/// Whether the processor has raised a signal, and not somebody who sent it.
bool isOfTheProcessor(const siginfo_t& info)
{
    return info.si_code > 0;
}

void takeDefaultAction(int signalNumber, const siginfo_t& info)
{
    struct sigaction action {};
    action.sa_handler = SIG_DFL;
    ::sigaction(signalNumber, &action, nullptr);
    // The failing statement runs again and meets the default action by itself. A statement that traps has already run,
    // and a signal that was sent does not come again.
    if (!isOfTheProcessor(info) || signalNumber == SIGTRAP)
        ::raise(signalNumber);
}

/// Does with a signal what would be done without this component.
void passOn(int signalNumber, siginfo_t* info, void* context)
{
    Previous* const before = previousOf(signalNumber);
    if (!before)
        return;
    const struct sigaction action = before->actions[static_cast<std::size_t>(before->inUse.load())];
    const bool takesDetails = (action.sa_flags & SA_SIGINFO) != 0;
    const bool once = (action.sa_flags & static_cast<int>(SA_RESETHAND)) != 0;
    if (!takesDetails && action.sa_handler == SIG_IGN) {
        // The system does not let a fault be ignored.
        if (isOfTheProcessor(*info))
            takeDefaultAction(signalNumber, *info);
        return;
    }
    if ((!takesDetails && action.sa_handler == SIG_DFL) || (once && before->isSpent.exchange(true))) {
        takeDefaultAction(signalNumber, *info);
        return;
    }
    sigset_t blocked = action.sa_mask;
    if ((action.sa_flags & static_cast<int>(SA_NODEFER)) == 0)
        ::sigaddset(&blocked, signalNumber);
    // The end of this handler brings the thread's own mask back.
    ::pthread_sigmask(SIG_BLOCK, &blocked, nullptr);
    if (takesDetails)
        action.sa_sigaction(signalNumber, info, context);
    else
        action.sa_handler(signalNumber);
}

extern "C" void kelOnFault(int signalNumber, siginfo_t* info, void* context)
{
    const FaultFilter filter = filterInUse;
    if (componentRuns() && filter && isOfTheProcessor(*info)) {
        const std::uint32_t code = faultCode(signalNumber, info->si_code);
        detail::expectFault({code, filter});
        faultTaken();
        if (signalNumber == SIGSEGV || signalNumber == SIGBUS)
            moveToCaller(context, info->si_addr);
        filter({code});
    }
    passOn(signalNumber, info, context);
}

} // namespace

PosixFaultCapture& PosixFaultCapture::instance()
{
    static auto* const capture = new PosixFaultCapture;
    return *capture;
}

void PosixFaultCapture::install(FaultFilter filter)
{
    const std::lock_guard lock(mutex_);
    filterInUse = filter;
    for (const int signalNumber : kSignals) {
        Previous& before = *previousOf(signalNumber);
        const int free = 1 - before.inUse.load();
        struct sigaction& place = before.actions[static_cast<std::size_t>(free)];
        if (::sigaction(signalNumber, nullptr, &place) != 0)
            continue;
        if ((place.sa_flags & SA_SIGINFO) != 0 && place.sa_sigaction == &kelOnFault)
            continue;
        before.inUse = free;
        before.isSpent = false;
        struct sigaction action {};
        action.sa_sigaction = &kelOnFault;
        // The exception leaves the handler without an end of it, and so nothing may be blocked meanwhile.
        action.sa_flags = SA_SIGINFO | static_cast<int>(SA_NODEFER) | SA_ONSTACK;
        ::sigemptyset(&action.sa_mask);
        ::sigaction(signalNumber, &action, nullptr);
    }
    detail::goBackInsteadOfTerminating();
}

std::uint32_t faultCode(int signalNumber, int signalCode)
{
    switch (signalNumber) {
    case SIGBUS: return signalCode == BUS_ADRALN ? 0x80000002 : 0xC0000006;
    case SIGILL: return signalCode == ILL_PRVOPC || signalCode == ILL_PRVREG ? 0xC0000096 : 0xC000001D;
    case SIGTRAP: return signalCode == TRAP_TRACE ? 0x80000004 : 0x80000003;
    case SIGFPE:
        switch (signalCode) {
        case FPE_INTDIV: return 0xC0000094;
        case FPE_INTOVF: return 0xC0000095;
        case FPE_FLTDIV: return 0xC000008E;
        case FPE_FLTOVF: return 0xC0000091;
        case FPE_FLTUND: return 0xC0000093;
        case FPE_FLTRES: return 0xC000008F;
        case FPE_FLTSUB: return 0xC000008C;
        default: return 0xC0000090;
        }
    default: return 0xC0000005;
    }
}

} // namespace kel
