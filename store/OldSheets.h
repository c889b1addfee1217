// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>

namespace kel {

/// Which old entries to remove.
enum class Forget {
    SentAlone, ///< those that a stream is to have, and does not have yet, stay
    All,
};

/// Which old entries were removed, and which stayed.
struct Forgotten {
    std::int64_t sheets = 0; ///< that were removed
    std::int64_t kept = 0;   ///< sheets and reports that are old too, and that the stream does not have yet
};

/// Lets others write for as long as they had to wait.
using ForgetPause = std::function<void(std::chrono::nanoseconds waited)>;

/// Removes from a store what is older than a time, as the store writes times, and makes the file smaller. That is done
/// a little at a time: between two portions others write. On a full disk the store's reserve is the room for it.
/// StoreProblem if it fails; what was removed by then is gone.
Forgotten forgetOldSheets(
    const std::filesystem::path& file, const std::string& before, Forget which,
    const ForgetPause& pause = [](std::chrono::nanoseconds time) { std::this_thread::sleep_for(time); });

} // namespace kel
