// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <windows.h>

namespace kel {

/// A word of each thread's, in a slot of the system: a handler of faults may read it on any thread at any time, which
/// the compiler's own thread variables, made at their first use, would not allow.
class ThreadSlot {
public:
    ThreadSlot() : number_(::TlsAlloc()) {}
    ~ThreadSlot() { ::TlsFree(number_); }
    ThreadSlot(const ThreadSlot&) = delete;
    ThreadSlot& operator=(const ThreadSlot&) = delete;

    [[nodiscard]] std::uintptr_t read() const noexcept
    {
        const SameLastError same;
        return reinterpret_cast<std::uintptr_t>(::TlsGetValue(number_));
    }
    void write(std::uintptr_t word) const noexcept
    {
        const SameLastError same;
        ::TlsSetValue(number_, reinterpret_cast<void*>(word));
    }

private:
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

    DWORD number_;
};

} // namespace kel
