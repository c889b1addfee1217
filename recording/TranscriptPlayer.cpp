// SPDX-License-Identifier: MIT
#include "recording/TranscriptPlayer.h"

#include "recording/TranscriptPlace.h"

#include <algorithm>

namespace kel {

namespace {

/// Bytes for a sentence, which names the first of them only.
std::string shown(std::string_view bytes)
{
    constexpr std::size_t kMost = 200;
    return transcriptBytes(bytes.substr(0, kMost)) + (bytes.size() > kMost ? " ..." : "");
}

std::string shown(const TranscriptLine& line)
{
    const char direction = line.kind == TranscriptLine::Kind::ToReader ? '>' : '<';
    return line.bytes.empty() ? writeTranscriptLine(line) : direction + (" " + shown(line.bytes));
}

} // namespace

TranscriptPlayer::TranscriptPlayer(Transcript transcript) : transcript_(std::move(transcript)), script_(transcript_) {}

void TranscriptPlayer::opened()
{
    open_ = true;
    received_.clear();
    taken_ = 0;
    if (sent_ == 0)
        beginStep(now_);
}

void TranscriptPlayer::beginStep(Moment when)
{
    sent_ = 0;
    due_ = when + (position_ < script_.steps.size() ? script_.steps[position_].pause : script_.lastPause);
    earliest_ = when + (position_ < script_.steps.size() ? script_.steps[position_].least : script_.lastPause);
}

bool TranscriptPlayer::atHost() const
{
    return position_ == script_.steps.size() || script_.steps[position_].line.kind == TranscriptLine::Kind::ToReader;
}

std::optional<Moment> TranscriptPlayer::nextOfReader() const
{
    if (!plays() || unseen_ || atHost())
        return std::nullopt;
    return due_;
}

std::optional<Moment> TranscriptPlayer::nextOfHost() const
{
    if (!script_.recorded || !plays() || unseen_ || !atHost())
        return std::nullopt;
    return due_;
}

/// The reader's line that is next happens, due or not.
void TranscriptPlayer::playStep()
{
    const TranscriptLine& line = script_.steps[position_].line;
    if (line.kind == TranscriptLine::Kind::Unplug) {
        hungUp_ = true;
        hangUpText_ = line.note;
    } else {
        received_ += line.bytes;
        arrivals_ += line.bytes.size();
        unseen_ = script_.recorded;
    }
    ++position_;
    beginStep(std::min(due_, now_));
}

void TranscriptPlayer::seen()
{
    if (unseen_)
        beginStep(now_);
    unseen_ = false;
}

void TranscriptPlayer::settle()
{
    while (nextOfReader() && earliest_ <= now_)
        playStep();
}

bool TranscriptPlayer::send(std::string_view bytes)
{
    settle();
    while (plays() && !atHost())
        playStep();
    unseen_ = false;
    if (hungUp_)
        return false;
    for (std::size_t i = 0; i < bytes.size() && differences_.empty(); ++i) {
        if (position_ == script_.steps.size()) {
            differ("The host sent " + shown(bytes.substr(i)) + " after the end of the transcript.");
        } else if (const TranscriptLine& line = script_.steps[position_].line;
                   line.kind != TranscriptLine::Kind::ToReader) {
            differ(placeOf(line) + ": the host sent " + shown(bytes.substr(i)) + " where \"" + shown(line) +
                   "\" comes from the reader first.");
        } else if (line.bytes[sent_] != bytes[i]) {
            differ(placeOf(line) + ": the host sent " + shown(line.bytes.substr(0, sent_)) + (sent_ > 0 ? " " : "") +
                   shown(bytes.substr(i)) + " where the transcript has " + shown(line.bytes) + ".");
        } else if (++sent_ == line.bytes.size()) {
            ++position_;
            beginStep(now_);
        }
    }
    settle();
    return true;
}

std::size_t TranscriptPlayer::waiting()
{
    settle();
    return received_.size() - taken_;
}

std::uint64_t TranscriptPlayer::arrivals()
{
    settle();
    return arrivals_;
}

std::string TranscriptPlayer::take(std::size_t most)
{
    settle();
    std::string bytes = received_.substr(taken_, most);
    taken_ += bytes.size();
    takings_ += bytes.size();
    if (taken_ == received_.size()) {
        received_.clear();
        taken_ = 0;
    }
    return bytes;
}

bool TranscriptPlayer::hungUp()
{
    settle();
    return hungUp_;
}

void TranscriptPlayer::differ(const std::string& sentence)
{
    if (differences_.empty())
        differences_.push_back(sentence);
}

std::string TranscriptPlayer::unsent() const
{
    for (std::size_t i = position_; i < script_.steps.size(); ++i) {
        if (script_.steps[i].line.kind == TranscriptLine::Kind::ToReader)
            return placeOf(script_.steps[i].line) + ": " + shown(script_.steps[i].line);
    }
    return {};
}

} // namespace kel
