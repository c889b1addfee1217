// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <thread>

namespace kel::test {

/// What has not happened after so long does not happen any more: far more than the busiest machine needs.
inline constexpr std::chrono::minutes kPatience{10};

/// Waits until something is so; whether it came to that.
template <class Condition>
[[nodiscard]] bool waitUntil(Condition&& condition)
{
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

} // namespace kel::test
