// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <chrono>
#include <thread>

namespace kel::test {

/// What has not happened after so long does not happen any more: far more than the busiest machine needs.
inline constexpr std::chrono::minutes kPatience{10};

/// Waits until something is so; whether it came to that. To look may cost a program's start: a fifth of the time goes
/// into that at most.
template <class Condition>
[[nodiscard]] bool waitUntil(Condition&& condition)
{
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + kPatience;
    for (auto looked = Clock::now(); !condition(); looked = Clock::now()) {
        const auto now = Clock::now();
        if (now > end)
            return false;
        std::this_thread::sleep_for(std::max<Clock::duration>(std::chrono::milliseconds(1), 4 * (now - looked)));
    }
    return true;
}

} // namespace kel::test
