// SPDX-License-Identifier: MIT
#pragma once

#include "platform/MessagePump.h"
#include "recording/Transcript.h"

#include <vector>

namespace kel {

/// A line of a dialogue that is no pause, with the pauses in front of it as one.
struct TranscriptStep {
    TranscriptLine line;
    Moment pause{};
    Moment least{}; ///< of the pause, what a look without the line has passed of it
};

/// What happens on the line of a transcript, in order; calls of the USB readers' library are left out.
struct TranscriptSteps {
    explicit TranscriptSteps(const Transcript& transcript);

    /// Whether it was recorded, so that its pauses are those of a real host.
    bool recorded = false;
    std::vector<TranscriptStep> steps;
    Moment lastPause{}; ///< after the last step
};

} // namespace kel
