// SPDX-License-Identifier: MIT
#pragma once

#include "recording/SpelledLibrary.h"
#include "recording/Transcript.h"

namespace kel {

/// The USB readers' library as a transcript has it: each call is answered as it was when it was recorded, at once.
/// A call that the transcript has not fails, and so do all after it.
class ReplayLibrary final : public SpelledLibrary {
public:
    /// Takes the calls of a transcript.
    explicit ReplayLibrary(const Transcript& transcript);

    /// Whether the recorded host fed no further sheet: if this one would, its user had stopped that one.
    [[nodiscard]] bool feedsNoMore() const;

    /// What the host called that the transcript has not: one sentence at most.
    [[nodiscard]] const std::vector<std::string>& differences() const noexcept { return differences_; }

    /// The first call that the host has not made, as a sentence; empty if there is none.
    [[nodiscard]] std::string unsent() const;

private:
    Int32 called(const Call& call) override;

    std::vector<TranscriptLine> calls_;
    std::size_t next_ = 0;
    std::vector<std::string> differences_;
};

} // namespace kel
