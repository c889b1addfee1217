// SPDX-License-Identifier: MIT
#pragma once

#include "host/Failure.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kel {

/// What a reader of a station is doing.
enum class Activity {
    Starting, ///< it is being started for the first time
    Reading,  ///< it reads sheets, or waits for one
    Idle,     ///< it has ended without a failure, as when the feeder is empty; it is tried again
    Failed,   ///< it does not read; it is tried again
    Storing,  ///< the store accepts nothing; no sheet is fed
    Stopped,  ///< for good
};

/// Its name as the state has it: "reading".
[[nodiscard]] std::string_view nameOf(Activity activity);

/// A reader of a station at a moment. Times are those of the system's clock.
struct ReaderState {
    using Time = std::chrono::system_clock::time_point;

    std::string name{};
    std::string model{};
    Activity activity = Activity::Starting;
    Time since{};
    std::string batch{};
    std::int64_t sheets = 0; ///< since the station began
    std::int64_t rejected = 0;
    std::int64_t failures = 0;
    std::optional<Time> lastSheet{};
    double sheetsPerMinute = 0; ///< of the last sheets; 0 if none has come for a minute
    std::string storeProblem{}; ///< why the store takes nothing from it now, a sentence; empty while it does
    std::string problem{};      ///< the last failure, a sentence; stays when it is over
    std::string advice{};       ///< what to do about it, may be empty
};

} // namespace kel
