// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <deque>

namespace kel {

/// How fast sheets come: of the last ones, none of them older than a minute.
class Speed {
public:
    using Time = std::chrono::steady_clock::time_point;

    void count(Time now)
    {
        sheets_.push_back(now);
        if (sheets_.size() > kMost)
            sheets_.pop_front();
    }

    /// Sheets a minute; 0 while there are not two of them.
    [[nodiscard]] double perMinute(Time now) const
    {
        constexpr std::chrono::minutes kOldest{1};
        std::size_t first = 0;
        while (first < sheets_.size() && now - sheets_[first] > kOldest)
            ++first;
        const std::size_t count = sheets_.size() - first;
        if (count < 2)
            return 0;
        const std::chrono::duration<double, std::ratio<60>> minutes = sheets_.back() - sheets_[first];
        return minutes.count() > 0 ? static_cast<double>(count - 1) / minutes.count() : 0;
    }

private:
    static constexpr std::size_t kMost = 16;

    std::deque<Time> sheets_;
};

} // namespace kel
