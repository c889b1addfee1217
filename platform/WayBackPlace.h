// SPDX-License-Identifier: MIT
#pragma once

#include "platform/WayBack.h"

#if defined(_WIN32)
#include <windows.h>
#endif

namespace kel::detail {

struct WayBack {
#if defined(_WIN64)
    /// The thread's list of handlers, where the system has one: Wine keeps its own there.
    EXCEPTION_REGISTRATION_RECORD* handlers = nullptr;
#elif defined(_WIN32)
    /// In the thread's list of handlers; what a library's own do not take comes to ours.
    EXCEPTION_REGISTRATION_RECORD handler{};
#endif
    WayBack* outer = nullptr;
    bool fromHost = false;
    TakenFault fault;
    void* jump[5] = {}; // __builtin_setjmp's
};

/// The thread's list of ways back, where a handler of faults can read it at any time.
[[nodiscard]] WayBack* readWaysBack() noexcept;
void writeWaysBack(WayBack* innermost) noexcept;

/// What the system needs so that faults within `run` find the way.
class SystemsWay {
public:
    explicit SystemsWay(WayBack& place) noexcept;
    ~SystemsWay();
    SystemsWay(const SystemsWay&) = delete;
    SystemsWay& operator=(const SystemsWay&) = delete;

    static void call(void (*run)(void*), void* what);
    /// Before a thread leaves for `place`: lets the libraries that are left take down what they have built.
    static void leave(WayBack& place) noexcept;

private:
    [[maybe_unused]] WayBack& place_; // not every system needs it again
};

} // namespace kel::detail
