// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <chrono>

namespace kel {

/// How long to wait before the next attempt: each pause is twice the one before, up to the longest.
class Pauses {
public:
    using Time = std::chrono::milliseconds;

    constexpr Pauses(Time first, Time longest) : first_(first), longest_(longest), next_(first) {}

    /// The pause after one more failure.
    [[nodiscard]] Time next()
    {
        const Time pause = std::min(next_, longest_);
        next_ = std::min(2 * pause, longest_);
        return pause;
    }

    /// An attempt has succeeded.
    void reset() { next_ = first_; }

private:
    Time first_;
    Time longest_;
    Time next_;
};

} // namespace kel
