// SPDX-License-Identifier: MIT
#include "tests/support/TranscriptDevice.h"

#include "platform/LineSettings.h"

namespace kel::test {

namespace {

std::string whichLine(const TranscriptLine& line)
{
    return "line " + std::to_string(line.number);
}

} // namespace

TranscriptDevice::TranscriptDevice(const Transcript& transcript) : steps_(TranscriptSteps(transcript).steps)
{
    if (const std::optional<std::string> line = transcript.value("line"))
        demandedLine_ = lineSettingsText(parseLineSettings(*line));
}

void TranscriptDevice::lineOpened(Moment now, const LineParameters& line)
{
    if (!demandedLine_.empty() && lineSettingsText(line) != demandedLine_)
        errors_.push_back("the line is set to " + lineSettingsText(line) + ", and the transcript to " + demandedLine_);
    open_ = true;
    if (done_ == 0)
        beginStep(now);
}

void TranscriptDevice::lineClosed(Moment now)
{
    static_cast<void>(now);
    open_ = false;
}

void TranscriptDevice::byteFromHost(Moment now, Byte byte)
{
    if (differs_)
        return;
    if (finished() || steps_[position_].line.kind != TranscriptLine::Kind::ToReader ||
        static_cast<Byte>(steps_[position_].line.bytes[done_]) != byte) {
        differ(byte);
        return;
    }
    if (++done_ == steps_[position_].line.bytes.size()) {
        ++position_;
        beginStep(now);
    }
}

std::optional<Moment> TranscriptDevice::nextEvent() const
{
    if (!open_ || differs_ || hungUp_ || finished() || steps_[position_].line.kind == TranscriptLine::Kind::ToReader)
        return std::nullopt;
    return dueAt_;
}

std::optional<Byte> TranscriptDevice::takeByte(Moment now)
{
    const std::optional<Moment> due = nextEvent();
    if (!due || *due > now)
        return std::nullopt;
    if (steps_[position_].line.kind == TranscriptLine::Kind::Unplug) {
        hungUp_ = true;
        ++position_;
        return std::nullopt;
    }
    const Byte byte = static_cast<Byte>(steps_[position_].line.bytes[done_]);
    if (++done_ == steps_[position_].line.bytes.size()) {
        ++position_;
        beginStep(*due);
    }
    return byte;
}

void TranscriptDevice::beginStep(Moment when)
{
    done_ = 0;
    if (!finished())
        dueAt_ = when + steps_[position_].pause;
}

void TranscriptDevice::differ(Byte byte)
{
    differs_ = true;
    const std::string sent(1, static_cast<char>(byte));
    if (finished()) {
        errors_.push_back("the host sent " + transcriptBytes(sent) + " after the end of the transcript");
        return;
    }
    const TranscriptLine& line = steps_[position_].line;
    if (line.kind == TranscriptLine::Kind::ToReader)
        errors_.push_back(whichLine(line) + ": the host sent " + transcriptBytes(line.bytes.substr(0, done_) + sent) +
                          " where the transcript has " + transcriptBytes(line.bytes));
    else
        errors_.push_back(whichLine(line) + ": the host sent " + transcriptBytes(sent) +
                          " where the transcript has \"" + writeTranscriptLine(line) + "\" from the reader first");
}

std::string TranscriptDevice::next() const
{
    if (finished())
        return {};
    return whichLine(steps_[position_].line) + ": " + writeTranscriptLine(steps_[position_].line);
}

} // namespace kel::test
