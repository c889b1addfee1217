// SPDX-License-Identifier: MIT
#include "platform/WayBack.h"

#include "platform/WayBackPlace.h"

#include <atomic>
#include <cstdlib>
#include <cxxabi.h>
#include <exception>

namespace kel::detail {

namespace {

#if defined(__clang__)
// Clang's code cannot be left at any statement: no fault is taken.
constexpr bool kIsLeft = false;
#else
constexpr bool kIsLeft = true;
#endif

/// The list of the thread's ways back, as long as one of them is open.
class Linked {
public:
    explicit Linked(WayBack& place) noexcept : place_(place)
    {
        place_.outer = readWaysBack();
        writeWaysBack(&place_);
    }
    ~Linked()
    {
        // A fault that is still under way may need the next.
        if (place_.outer)
            place_.outer->fault = place_.fault;
        writeWaysBack(place_.outer);
    }
    Linked(const Linked&) = delete;
    Linked& operator=(const Linked&) = delete;

private:
    WayBack& place_;
};

/// False if a fault has come back. Nothing here may need taking down.
[[gnu::noinline]] bool cameToItsEnd(WayBack& place, void (*run)(void*), void* what)
{
#if !defined(__clang__)
    if (__builtin_setjmp(place.jump) != 0)
        return false;
#endif
    SystemsWay::call(run, what);
    // The jump needs this frame: no call instead of the return.
    asm volatile("" : : "r"(&place) : "memory");
    return true;
}

/// The exceptions that the thread is handling, the innermost first, and how many are on their way: so the C++ ABI lays
/// it out.
struct ThreadExceptions {
    void* handled;
    unsigned thrown;
};

ThreadExceptions& threadExceptions() noexcept
{
    return *reinterpret_cast<ThreadExceptions*>(abi::__cxa_get_globals());
}

/// Of the frames that were given up none is left to end its handling.
void endHandlingWithin(const ThreadExceptions& outside)
{
    ThreadExceptions& now = threadExceptions();
    while (now.handled != outside.handled)
        abi::__cxa_end_catch();
    now.thrown = outside.thrown;
}

std::atomic<std::terminate_handler> terminateBefore{nullptr};

[[noreturn]] void onTerminate()
{
    WayBack* const place = readWaysBack();
    if (readThreadRuns() == ThreadRuns::Unwinding && place && place->fault.filter)
        takeWayBack(*place);
    if (const std::terminate_handler before = terminateBefore)
        before();
    std::abort();
}

} // namespace

void runWithWayBack(void (*run)(void*), void* what, bool fromHost)
{
    if constexpr (!kIsLeft) {
        run(what);
        return;
    }
    WayBack place;
    place.fromHost = fromHost;
    const Linked linked(place);
    const SystemsWay way(place);
    const ThreadExceptions outside = threadExceptions();
    if (cameToItsEnd(place, run, what))
        return;
    endHandlingWithin(outside);
    // Ways back further in are gone.
    writeWaysBack(&place);
    const FaultRecord record{place.fault.code, nullptr};
    place.fault.filter(record);
}

WayBack* innermostWayBack() noexcept
{
    return readWaysBack();
}

void expectFault(const TakenFault& fault) noexcept
{
    if (WayBack* const place = readWaysBack())
        place->fault = fault;
}

void takeWayBack(WayBack& place) noexcept
{
#if defined(__clang__)
    static_cast<void>(place);
    std::abort();
#else
    SystemsWay::leave(place);
    __builtin_longjmp(place.jump, 1);
#endif
}

void goBackInsteadOfTerminating()
{
    const std::terminate_handler before = std::set_terminate(&onTerminate);
    if (before != &onTerminate)
        terminateBefore = before;
}

} // namespace kel::detail
