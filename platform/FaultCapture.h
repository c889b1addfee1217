// SPDX-License-Identifier: MIT
#pragma once

#include "types/Export.h"

#include <atomic>
#include <cstdint>

namespace kel {

/// A fault of the processor: its code, as Windows numbers exceptions (0xC0000005 is an access violation), and the
/// fault out of which it came, if there is one.
struct FaultRecord {
    std::uint32_t code = 0;
    const FaultRecord* nested = nullptr;
};

/// What a fault becomes: it throws, and so it never comes back.
using FaultFilter = void (*)(const FaultRecord& record);

/// Hands the faults of this process's processor to a filter. One a process, made by the platform.
///
/// A fault goes to the filter only while `componentRuns()` is true on its thread; any other one is the host's, and
/// reaches whatever would have got it without the component. The filter is called as if the failing statement had
/// called it: what it throws is caught by the procedure that was running.
///
/// An implementation informs the thread with `faultTaken` before it calls the filter, so that a fault of the unwinding
/// itself does not come here again and again; the trap that catches the exception goes on from there.
///
/// Only code compiled with `-fnon-call-exceptions` can be left in this way at any statement. Where an exception cannot
/// go, a fault takes the way back (`platform/WayBack.h`). A fault that leaves the heap locked holds up the process.
class FaultCapture {
public:
    virtual ~FaultCapture() = default;

    /// Puts the filter before the handlers that the process has now. Calling it again does no harm.
    virtual void install(FaultFilter filter) = 0;
};

/// The fault capture of this process, nothing where there is none. Set at start-up; it must live as long as the
/// process.
void setFaultCapture(FaultCapture* capture);
[[nodiscard]] FaultCapture* faultCapture();

namespace detail {

/// Whose code a thread runs.
enum class ThreadRuns : std::uint8_t {
    Host,
    Component,
    Unwinding, // a fault of the component's has been taken, and no trap has caught it yet
};

#if defined(_WIN32)
[[nodiscard]] ThreadRuns readThreadRuns() noexcept;
void writeThreadRuns(ThreadRuns runs) noexcept;

/// Hosts have the processor find faults in numbers that the component computes without: Delphi and Borland's C++ do.
/// These stand between the host's code and the component's, and keep for each what it had.
void leaveHost() noexcept;
void returnToHost() noexcept;
void maskNumericFaults() noexcept;
#else
// A signal handler reads it and every procedure of an object writes it: no function may stand between.
[[gnu::tls_model("initial-exec")]] KEL_INTERNAL extern constinit thread_local ThreadRuns whatThreadRuns;

[[nodiscard]] inline ThreadRuns readThreadRuns() noexcept
{
    return whatThreadRuns;
}
[[gnu::always_inline]] inline void writeThreadRuns(ThreadRuns runs) noexcept
{
    whatThreadRuns = runs;
}
[[gnu::always_inline]] inline void leaveHost() noexcept {}
[[gnu::always_inline]] inline void returnToHost() noexcept {}
#endif

/// It is read in the midst of any statement: nothing may be moved across a write of it.
[[gnu::always_inline]] inline void setThreadRuns(ThreadRuns runs) noexcept
{
    std::atomic_signal_fence(std::memory_order_seq_cst);
    writeThreadRuns(runs);
    std::atomic_signal_fence(std::memory_order_seq_cst);
}

} // namespace detail

/// Whether a procedure of the component runs on the calling thread, and no code of the host that it has called.
[[nodiscard]] inline bool componentRuns() noexcept
{
    return detail::readThreadRuns() == detail::ThreadRuns::Component;
}

/// To be called by what takes a fault while `componentRuns()`, before the filter.
inline void faultTaken() noexcept
{
    detail::setThreadRuns(detail::ThreadRuns::Unwinding);
}

/// To be called by a handler that has caught an exception and goes on: it may have been a fault.
inline void faultCaught() noexcept
{
    if (detail::readThreadRuns() == detail::ThreadRuns::Unwinding)
        detail::setThreadRuns(detail::ThreadRuns::Component);
}

/// A procedure of the component runs for as long as this lives: faults are the component's. It stands where the host
/// can come in, in the procedures of objects; what they call has nothing to do.
class ComponentCode {
public:
    ComponentCode() noexcept : before_(detail::readThreadRuns())
    {
        if (isFromHost())
            detail::leaveHost();
        if (before_ != detail::ThreadRuns::Component)
            detail::setThreadRuns(detail::ThreadRuns::Component);
    }
    ~ComponentCode()
    {
        if (before_ != detail::ThreadRuns::Component)
            detail::setThreadRuns(before_);
        if (isFromHost())
            detail::returnToHost();
    }
    ComponentCode(const ComponentCode&) = delete;
    ComponentCode& operator=(const ComponentCode&) = delete;

    /// Whether it was the host that called.
    [[nodiscard]] bool isFromHost() const noexcept { return before_ == detail::ThreadRuns::Host; }

private:
    detail::ThreadRuns before_;
};

/// The component calls out into the host for as long as this lives: faults are the host's. It stands around events,
/// the host's error object, its pump, its answer key and its carrier.
class HostCode {
public:
    HostCode() noexcept : before_(detail::readThreadRuns())
    {
        detail::setThreadRuns(detail::ThreadRuns::Host);
        if (isFromComponent())
            detail::returnToHost();
    }
    ~HostCode()
    {
        if (isFromComponent())
            detail::leaveHost();
        detail::setThreadRuns(before_);
    }
    HostCode(const HostCode&) = delete;
    HostCode& operator=(const HostCode&) = delete;

private:
    [[nodiscard]] bool isFromComponent() const noexcept { return before_ != detail::ThreadRuns::Host; }

    detail::ThreadRuns before_;
};

} // namespace kel
