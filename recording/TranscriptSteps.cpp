// SPDX-License-Identifier: MIT
#include "recording/TranscriptSteps.h"

#include "recording/TraceLog.h"
#include "types/Text.h"

#include <cmath>

namespace kel {

namespace {

Moment duration(double milliseconds)
{
    return Moment(static_cast<Moment::rep>(std::llround(milliseconds * 1e6)));
}

} // namespace

TranscriptSteps::TranscriptSteps(const Transcript& transcript) : recorded(transcript.value("times") == "recorded")
{
    Moment least{};
    for (const TranscriptLine& line : transcript.lines) {
        if (line.kind == TranscriptLine::Kind::Pause) {
            const bool early = recorded && line.note.starts_with(kNotBefore);
            least = lastPause + duration(early ? Val(line.note.substr(kNotBefore.size())) : line.milliseconds);
            lastPause += duration(line.milliseconds);
        } else if (line.kind != TranscriptLine::Kind::Call) {
            steps.push_back({line, lastPause, least});
            lastPause = least = {};
        }
    }
}

} // namespace kel
