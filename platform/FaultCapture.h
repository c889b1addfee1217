#pragma once

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
/// An implementation sets `componentRuns(false)` before it calls the filter, so that a fault of the unwinding itself
/// does not come here again and again; the trap that catches the exception sets it back.
///
/// Limits: a stack overflow, a fault within a function that is `noexcept` (destructors are), and a fault that leaves
/// the heap locked still end or hold up the process. Only code compiled with `-fnon-call-exceptions` can be left in
/// this way at any statement.
class FaultCapture {
public:
    virtual ~FaultCapture() = default;

    /// Puts the filter in front of the handlers that the process has now. Calling it again does no harm.
    virtual void install(FaultFilter filter) = 0;
};

/// The fault capture of this process, nothing where there is none. Set at start-up; it must live as long as the
/// process.
void setFaultCapture(FaultCapture* capture);
[[nodiscard]] FaultCapture* faultCapture();

namespace detail {

#if defined(_WIN32)
[[nodiscard]] bool readComponentRuns() noexcept;
void writeComponentRuns(bool runs) noexcept;
#else
// A signal handler reads it and every procedure writes it: no function may stand between.
[[gnu::tls_model("initial-exec")]] extern constinit thread_local bool componentRunsOnThread;

[[nodiscard]] inline bool readComponentRuns() noexcept
{
    return componentRunsOnThread;
}
[[gnu::always_inline]] inline void writeComponentRuns(bool runs) noexcept
{
    componentRunsOnThread = runs;
}
#endif

/// The flag is read in the midst of any statement: nothing may be moved across a write of it.
[[gnu::always_inline]] inline void setComponentRuns(bool runs) noexcept
{
    std::atomic_signal_fence(std::memory_order_seq_cst);
    writeComponentRuns(runs);
    std::atomic_signal_fence(std::memory_order_seq_cst);
}

} // namespace detail

/// Whether a procedure of the component runs on the calling thread, and no code of the host that it has called.
[[nodiscard]] inline bool componentRuns() noexcept
{
    return detail::readComponentRuns();
}
inline void componentRuns(bool runs) noexcept
{
    detail::setComponentRuns(runs);
}

/// A procedure of the component runs for as long as this lives: faults are the component's. A procedure that another
/// one calls has nothing to do: it costs a look at the flag.
class ComponentCode {
public:
    ComponentCode() noexcept : isOutermost_(!componentRuns())
    {
        if (isOutermost_)
            componentRuns(true);
    }
    ~ComponentCode()
    {
        if (isOutermost_)
            componentRuns(false);
    }
    ComponentCode(const ComponentCode&) = delete;
    ComponentCode& operator=(const ComponentCode&) = delete;

    /// To be called by a handler that has caught an exception and goes on: it may have been a fault.
    static void goesOn() noexcept { componentRuns(true); }

private:
    bool isOutermost_;
};

/// The component calls out into the host for as long as this lives: faults are the host's. It stands around events,
/// the host's error object, its pump, its answer key and its carrier.
class HostCode {
public:
    HostCode() noexcept : before_(componentRuns()) { componentRuns(false); }
    ~HostCode() { componentRuns(before_); }
    HostCode(const HostCode&) = delete;
    HostCode& operator=(const HostCode&) = delete;

private:
    bool before_;
};

} // namespace kel
