// SPDX-License-Identifier: MIT
#pragma once

#include "platform/LineDevice.h"
#include "recording/TranscriptSteps.h"

#include <string>
#include <vector>

namespace kel::test {

/// Plays the reader's end of a transcript. The host must send exactly the bytes that stand in it, in their order;
/// the reader's bytes come at the times told, counted from when the line above was done. The first difference is an
/// error with both sides, and nothing more comes after it.
class TranscriptDevice final : public LineDevice {
public:
    explicit TranscriptDevice(const Transcript& transcript);

    void lineOpened(Moment now, const LineParameters& line) override;
    void lineClosed(Moment now) override;
    void byteFromHost(Moment now, Byte byte) override;
    [[nodiscard]] std::optional<Moment> nextEvent() const override;
    [[nodiscard]] std::optional<Byte> takeByte(Moment now) override;
    [[nodiscard]] bool hungUp() const override { return hungUp_; }

    /// What the host did differently.
    [[nodiscard]] const std::vector<std::string>& errors() const noexcept { return errors_; }

    /// Whether all lines have been played; if not, what comes next, as text with its line number.
    [[nodiscard]] bool finished() const noexcept { return position_ == steps_.size(); }
    [[nodiscard]] std::string next() const;

private:
    void beginStep(Moment when);
    void differ(Byte byte);

    std::vector<TranscriptStep> steps_;
    std::string demandedLine_;
    std::size_t position_ = 0; // the step under way
    std::size_t done_ = 0;     // bytes of it that are through
    Moment dueAt_{};           // when its first byte comes, if it is the reader's
    bool open_ = false;
    bool differs_ = false;
    bool hungUp_ = false;
    std::vector<std::string> errors_;
};

} // namespace kel::test
