// SPDX-License-Identifier: MIT
#pragma once

#include "platform/SteadyTime.h"

#include <cerrno>
#include <time.h>

namespace kel {

/// A moment or a span as the system calls want it; a negative one is none.
[[nodiscard]] inline timespec toTimespec(Moment time) noexcept
{
    if (time < Moment::zero())
        time = Moment::zero();
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time);
    timespec result{};
    result.tv_sec = static_cast<time_t>(seconds.count());
    result.tv_nsec = static_cast<long>((time - seconds).count());
    return result;
}

/// Blocks the thread up to a moment of the monotonic clock, whatever signals come.
inline void sleepUntil(Moment end) noexcept
{
    const timespec at = toTimespec(end);
    while (::clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &at, nullptr) == EINTR) {
    }
}

} // namespace kel
