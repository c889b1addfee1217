// SPDX-License-Identifier: MIT
#pragma once

#include "platform/MessagePump.h"

#include <string>

namespace kel {

/// What is thrown when a dialogue makes no progress for ever. Not a standard exception, so that no guard takes it for
/// a failure of the procedure that was running; the text goes to standard error as well.
struct StuckDialogue {
    std::string text;
};

/// The virtual clock of a simulated platform, with the watchdog over what is done with it.
class SimulatedClock {
public:
    [[nodiscard]] Moment now() const noexcept { return now_; }

    /// Moves on; never back. Throws StuckDialogue when no byte has been sent or taken for too long.
    void advanceTo(Moment moment);

    /// A byte was sent or taken: the dialogue goes on.
    void progress() noexcept
    {
        progressAt_ = now_;
        idleTurns_ = 0;
        idleLooks_ = 0;
    }

    /// The host has yielded, or looked at a line, without any progress.
    void idleTurn();
    void idleLook();

    /// The longest time without progress, how often the host may yield meanwhile, and how often it may look at a
    /// line without yielding.
    void limits(Moment time, std::uint64_t turns, std::uint64_t looks) noexcept
    {
        longest_ = time;
        mostTurns_ = turns;
        mostLooks_ = looks;
    }

private:
    [[noreturn]] void stuck(const std::string& how) const;

    Moment now_{};
    Moment progressAt_{};
    std::uint64_t idleTurns_ = 0;
    std::uint64_t idleLooks_ = 0;
    Moment longest_ = std::chrono::hours(24);
    std::uint64_t mostTurns_ = 5'000'000;
    std::uint64_t mostLooks_ = 50'000'000;
};

} // namespace kel
