// SPDX-License-Identifier: MIT
#pragma once

#include "store/Pauses.h"

#include <chrono>
#include <functional>
#include <string>

namespace kel {

class SheetStore;

/// What to do about a store that accepts nothing.
struct StoreTrouble {
    std::function<void(const std::string& problem)> tell;  ///< what is wrong, once
    std::function<void(const std::string& sentence)> over; ///< and that it is over
    /// Waits before the next attempt; false to give up.
    std::function<bool(std::chrono::milliseconds pause)> pause;
};

/// Does something with the store until it succeeds; false if somebody gave up.
[[nodiscard]] bool untilDone(const SheetStore& store, const StoreTrouble& trouble, Pauses pauses,
                             const std::function<void()>& work);

} // namespace kel
