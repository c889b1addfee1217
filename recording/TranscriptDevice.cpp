// SPDX-License-Identifier: MIT
#include "recording/TranscriptDevice.h"

#include "platform/LineSettings.h"
#include "recording/TranscriptPlace.h"
#include "types/RuntimeFailure.h"

#include <algorithm>
#include <span>

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

/// The settings as lines are compared; as they stand if they are none.
std::string comparable(const std::string& settings)
{
    try {
        return lineSettingsText(parseLineSettings(settings));
    } catch (const RuntimeFailure&) {
        return settings;
    }
}

} // namespace

TranscriptDevice::TranscriptDevice(const Transcript& transcript)
    : script_(transcript), demandedLine_(comparable(transcript.value("line").value_or("")))
{
}

void TranscriptDevice::lineOpened(Moment now, const LineParameters& line)
{
    const std::string set = lineSettingsText(line);
    if (!demandedLine_.empty() && set != demandedLine_ && differences_.empty())
        differences_.push_back("The line is set to " + set + "; in the transcript it was " + demandedLine_ + ".");
    open_ = true;
    if (done_ == 0)
        beginStep(now);
}

void TranscriptDevice::lineClosed(Moment now)
{
    static_cast<void>(now);
    open_ = false;
}

bool TranscriptDevice::atHost() const
{
    return finished() || line().kind == TranscriptLine::Kind::ToReader;
}

void TranscriptDevice::beginStep(Moment when)
{
    done_ = 0;
    due_ = when + (finished() ? script_.lastPause : script_.steps[position_].pause);
    earliest_ = when + (finished() ? script_.lastPause : script_.steps[position_].least);
    if (atHost())
        hurriedTo_ = Moment::max();
}

void TranscriptDevice::endStep(Moment when)
{
    ++position_;
    beginStep(when);
}

// --- The host's bytes

void TranscriptDevice::byteFromHost(Moment now, Byte byte)
{
    if (!differences_.empty())
        return;
    if (finished() || line().kind != TranscriptLine::Kind::ToReader || static_cast<Byte>(line().bytes[done_]) != byte)
        differ(byte);
    else if (++done_ == line().bytes.size())
        endStep(now);
    sentOf_ = std::min(sentOf_ + 1, sending_.size());
}

void TranscriptDevice::differ(Byte byte)
{
    const std::string sent = sending_.empty() ? std::string(1, static_cast<char>(byte)) : sending_.substr(sentOf_);
    if (finished())
        differences_.push_back("The host sent " + shown(sent) + " after the end of the transcript.");
    else if (line().kind == TranscriptLine::Kind::ToReader)
        differences_.push_back(placeOf(line()) + ": the host sent " + shown(line().bytes.substr(0, done_) + sent) +
                               " where the transcript has " + shown(line().bytes) + ".");
    else
        differences_.push_back(placeOf(line()) + ": the host sent " + shown(sent) + " where \"" + shown(line()) +
                               "\" comes from the reader first.");
}

// --- The reader's

std::optional<Moment> TranscriptDevice::nextEvent() const
{
    const bool hostIsSending = sentOf_ < sending_.size() && !isHurried();
    if (!plays() || atHost() || unseen_ || hostIsSending)
        return std::nullopt;
    return std::min(due_, hurriedTo_);
}

std::optional<Byte> TranscriptDevice::takeByte(Moment now)
{
    const std::optional<Moment> due = nextEvent();
    if (!due || *due > now)
        return std::nullopt;
    if (line().kind == TranscriptLine::Kind::Unplug) {
        hungUp_ = true;
        hangUpText_ = line().note;
        endStep(*due);
        return std::nullopt;
    }
    const Byte byte = static_cast<Byte>(line().bytes[done_]);
    if (++done_ == line().bytes.size()) {
        unseen_ = script_.recorded && !isHurried();
        endStep(*due);
    }
    return byte;
}

// --- The times of the host

void TranscriptDevice::hostLooks(Moment now)
{
    if (plays() && !atHost() && earliest_ <= now)
        due_ = std::min(due_, now);
}

void TranscriptDevice::hostKnows(Moment now)
{
    if (unseen_)
        beginStep(now);
    unseen_ = false;
}

void TranscriptDevice::hostSends(Moment now, std::string_view bytes)
{
    unseen_ = false;
    if (!atHost())
        hurriedTo_ = now;
    sending_ = bytes;
    sentOf_ = 0;
}

std::optional<Moment> TranscriptDevice::nextOfHost() const
{
    if (!script_.recorded || !plays() || unseen_ || !atHost())
        return std::nullopt;
    return due_;
}

// --- What is left

std::string TranscriptDevice::next() const
{
    return finished() ? std::string() : placeOf(line()) + ": " + shown(line());
}

std::string TranscriptDevice::unsent() const
{
    const auto left = std::span(script_.steps).subspan(position_);
    const auto host = std::ranges::find_if(
        left, [](const TranscriptStep& step) { return step.line.kind == TranscriptLine::Kind::ToReader; });
    return host == left.end() ? std::string() : placeOf(host->line) + ": " + shown(host->line);
}

} // namespace kel
