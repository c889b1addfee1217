#include "platform/FaultCapture.h"

#include <windows.h>

namespace kel::detail {

namespace {

/// What each thread runs, in a slot of the system: a handler of faults may read it on any thread at any time, which
/// the compiler's own thread variables, made at their first use, would not allow.
class Slot {
public:
    Slot() : number_(::TlsAlloc()) {}
    ~Slot() { ::TlsFree(number_); }
    Slot(const Slot&) = delete;
    Slot& operator=(const Slot&) = delete;

    [[nodiscard]] DWORD number() const noexcept { return number_; }

private:
    DWORD number_;
};

DWORD slot() noexcept
{
    static const Slot one;
    return one.number();
}

/// Looking into the slot is no call whose failure anybody asks for.
class SameLastError {
public:
    SameLastError() : error_(::GetLastError()) {}
    ~SameLastError() { ::SetLastError(error_); }
    SameLastError(const SameLastError&) = delete;
    SameLastError& operator=(const SameLastError&) = delete;

private:
    DWORD error_;
};

} // namespace

void writeThreadRuns(ThreadRuns runs) noexcept
{
    const SameLastError same;
    ::TlsSetValue(slot(), reinterpret_cast<void*>(static_cast<std::uintptr_t>(runs)));
}

ThreadRuns readThreadRuns() noexcept
{
    const SameLastError same;
    return static_cast<ThreadRuns>(reinterpret_cast<std::uintptr_t>(::TlsGetValue(slot())));
}

} // namespace kel::detail
