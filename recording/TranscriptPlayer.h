// SPDX-License-Identifier: MIT
#pragma once

#include "platform/MessagePump.h"
#include "recording/TranscriptSteps.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kel {

/// The reader's end of a transcript for one host, on a clock that only the host moves. What the reader sends comes at
/// the times told, counted from the line above; what the host sends has to be what stands in the transcript. In a
/// recorded transcript the pause after bytes of the reader is counted from when the host knew of them.
///
/// The host of a replay needs no time for itself. So it may be ahead of a recorded one by what that one needed, and is
/// never after it: where it sends before the bytes in front of that line are due, they come at once.
class TranscriptPlayer {
public:
    explicit TranscriptPlayer(Transcript transcript);

    [[nodiscard]] const Transcript& transcript() const noexcept { return transcript_; }

    [[nodiscard]] Moment now() const noexcept { return now_; }
    void moveTo(Moment moment) noexcept { now_ = std::max(now_, moment); }

    /// The line is opened: what the reader sends first is due from now on.
    void opened();
    void closed() noexcept { open_ = false; }

    /// The host sends; false when the line hangs up instead.
    [[nodiscard]] bool send(std::string_view bytes);

    /// Bytes that have arrived and wait, up to now; and takes some.
    [[nodiscard]] std::size_t waiting();
    [[nodiscard]] std::string take(std::size_t most);

    /// The host has looked, and knows of all that waits.
    void seen();

    /// Whether the line has hung up by now, and what the recorded host was told then.
    [[nodiscard]] bool hungUp();
    [[nodiscard]] const std::string& hangUpText() const noexcept { return hangUpText_; }
    void hangUp() noexcept { hungUp_ = true; }

    /// When the reader has its next bytes or hangs up, as the recorded host had it; nothing if it waits for the host.
    /// A look may show it earlier, if its note says so.
    [[nodiscard]] std::optional<Moment> nextOfReader() const;

    /// When the recorded host did the next thing, as far as the transcript tells.
    [[nodiscard]] std::optional<Moment> nextOfHost() const;

    /// Counts what has arrived, and what was taken.
    [[nodiscard]] std::uint64_t arrivals();
    [[nodiscard]] std::uint64_t takings() const noexcept { return takings_; }

    /// What the host did differently: one sentence at most, since nothing more comes after it.
    [[nodiscard]] const std::vector<std::string>& differences() const noexcept { return differences_; }
    void differ(const std::string& sentence);

    /// The first line that the host should have sent and has not, with its number; empty if there is none.
    [[nodiscard]] std::string unsent() const;

private:
    [[nodiscard]] bool plays() const { return open_ && !hungUp_ && differences_.empty(); }
    [[nodiscard]] bool atHost() const;
    void settle();
    void playStep();
    void beginStep(Moment when);

    Transcript transcript_;
    TranscriptSteps script_;
    Moment now_{};
    std::size_t position_ = 0;
    std::size_t sent_ = 0; // bytes of the host's line under way
    Moment due_{};
    Moment earliest_{};
    bool unseen_ = false; // the pause after the bytes that came last has not begun
    bool open_ = false;
    bool hungUp_ = false;
    std::string hangUpText_;
    std::string received_;
    std::size_t taken_ = 0; // of what was received, the part that the host has taken
    std::uint64_t arrivals_ = 0;
    std::uint64_t takings_ = 0;
    std::vector<std::string> differences_;
};

} // namespace kel
