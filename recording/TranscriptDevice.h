// SPDX-License-Identifier: MIT
#pragma once

#include "platform/LineDevice.h"
#include "recording/TranscriptSteps.h"

#include <string>
#include <string_view>
#include <vector>

namespace kel {

/// Plays the reader's end of a transcript. The host must send exactly the bytes that stand in it, in their order;
/// the reader's bytes come after their pauses, counted from when the line above was done. The first difference is an
/// error with both sides, and nothing more comes after it.
///
/// The pauses of a recorded transcript are those of a host that needed time for itself. Whoever replays one reports
/// what the host does, so that the times fit one that is faster: `hostLooks`, `hostKnows` and `hostSends`. The pause
/// after bytes of the reader is counted from when the host knew of them.
class TranscriptDevice final : public LineDevice {
public:
    explicit TranscriptDevice(const Transcript& transcript);

    void lineOpened(Moment now, const LineParameters& line) override;
    void lineClosed(Moment now) override;
    void byteFromHost(Moment now, Byte byte) override;
    [[nodiscard]] std::optional<Moment> nextEvent() const override;
    [[nodiscard]] std::optional<Byte> takeByte(Moment now) override;
    [[nodiscard]] bool hungUp() const override { return hungUp_; }

    /// The host is about to look at the line: bytes come that a look at this moment may have shown to the recorded one.
    void hostLooks(Moment now);

    /// The host has looked, and knows of all that has come.
    void hostKnows(Moment now);

    /// The host is about to send all of these bytes. It does not wait for what the reader has to say before them, as
    /// the recorded one did, so that comes at once.
    void hostSends(Moment now, std::string_view bytes);

    /// When the recorded host did the next thing; nothing while it is the reader's turn, or none was recorded.
    [[nodiscard]] std::optional<Moment> nextOfHost() const;

    /// The line hangs up now. What the recorded host was told when its line did, if it did.
    void hangUp() noexcept { hungUp_ = true; }
    [[nodiscard]] const std::string& hangUpText() const noexcept { return hangUpText_; }

    /// What the host did differently: one sentence at most.
    [[nodiscard]] const std::vector<std::string>& differences() const noexcept { return differences_; }

    /// Whether all lines have been played; if not, what comes next, as text with its line number.
    [[nodiscard]] bool finished() const noexcept { return position_ == script_.steps.size(); }
    [[nodiscard]] std::string next() const;

    /// The first line that the host should have sent and has not, with its number; empty if there is none.
    [[nodiscard]] std::string unsent() const;

private:
    [[nodiscard]] bool plays() const { return open_ && !hungUp_ && differences_.empty(); }
    [[nodiscard]] bool atHost() const;
    [[nodiscard]] bool isHurried() const noexcept { return hurriedTo_ != Moment::max(); }
    [[nodiscard]] const TranscriptLine& line() const { return script_.steps[position_].line; }
    void beginStep(Moment when);
    void endStep(Moment when);
    void differ(Byte byte);

    TranscriptSteps script_;
    std::string demandedLine_;
    std::size_t position_ = 0; // the step under way
    std::size_t done_ = 0;     // bytes of it that are through
    Moment due_{};             // when it happens
    Moment earliest_{};        // when a look may show it
    Moment hurriedTo_ = Moment::max();
    std::string sending_; // what the host has announced
    std::size_t sentOf_ = 0;
    bool unseen_ = false; // the pause after the bytes that came last has not begun
    bool open_ = false;
    bool hungUp_ = false;
    std::string hangUpText_;
    std::vector<std::string> differences_;
};

} // namespace kel
