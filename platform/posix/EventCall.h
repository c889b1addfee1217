// SPDX-License-Identifier: MIT
#pragma once

#include "platform/FileDescriptor.h"
#include "platform/WakeCall.h"

#include <cstdint>
#include <sys/eventfd.h>

namespace kel {

/// Calls through an event descriptor, which becomes readable.
class EventCall final : public WakeCall {
public:
    EventCall() : event_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

    void call() noexcept override
    {
        const int before = errno; // a signal handler leaves it as it was
        const std::uint64_t one = 1;
        [[maybe_unused]] const ssize_t written = ::write(event_.number(), &one, sizeof one);
        errno = before;
    }

    void answer() noexcept override
    {
        std::uint64_t calls = 0;
        [[maybe_unused]] const ssize_t count = ::read(event_.number(), &calls, sizeof calls);
    }

    /// What to wait on; -1 where the system had none to give.
    [[nodiscard]] int handle() const noexcept { return event_.number(); }

private:
    FileDescriptor event_;
};

} // namespace kel
