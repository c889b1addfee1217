// SPDX-License-Identifier: MIT
#include "recording/ReplayLibrary.h"

#include "recording/TranscriptPlace.h"
#include "types/RuntimeFailure.h"

#include <algorithm>

namespace kel {

namespace {

constexpr const char* kFeed = "OMR_FeedSheet";
constexpr const char* kEnd = "OMR_CloseDevice";

} // namespace

ReplayLibrary::ReplayLibrary(const Transcript& transcript)
{
    std::ranges::copy_if(transcript.lines, std::back_inserter(calls_),
                         [](const TranscriptLine& line) { return line.kind == TranscriptLine::Kind::Call; });
}

bool ReplayLibrary::feedsNoMore() const
{
    const std::span<const TranscriptLine> left = std::span(calls_).subspan(next_);
    return next_ > 0 && std::ranges::find(left, kEnd, &TranscriptLine::call) != left.end() &&
           std::ranges::find(left, kFeed, &TranscriptLine::call) == left.end();
}

std::string ReplayLibrary::unsent() const
{
    if (!differences_.empty() || next_ == calls_.size())
        return {};
    return placeOf(calls_[next_]) + ": " + calls_[next_].call + " was not called.";
}

Int32 ReplayLibrary::called(const Call& call)
{
    if (differences_.empty() && (next_ == calls_.size() || calls_[next_].call != call.words)) {
        differences_.push_back(next_ == calls_.size()
                                   ? "The host called " + call.words + " after the end of the transcript."
                                   : placeOf(calls_[next_]) + ": the host called " + call.words +
                                         " where the transcript has " + calls_[next_].call + ".");
    }
    if (!differences_.empty())
        return 0;
    const TranscriptLine& line = calls_[next_++];
    if (line.failed)
        throw RuntimeFailure(line.results.front(), line.bytes);
    for (std::size_t at = 0; at < call.numbers.size() && at + 1 < line.results.size(); ++at)
        *call.numbers[at] = line.results[at + 1];
    const std::size_t recorded = std::min(line.bytes.size(), call.bytes.size());
    std::copy_n(line.bytes.begin(), recorded, call.bytes.begin());
    std::ranges::fill(call.bytes.subspan(recorded), Byte{0});
    return line.results.front();
}

} // namespace kel
