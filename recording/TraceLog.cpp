// SPDX-License-Identifier: MIT
#include "recording/TraceLog.h"

#include <algorithm>
#include <chrono>

namespace kel {

namespace {

// Places what came just after a look after it in the trace.
constexpr Moment kJustAfter = std::chrono::microseconds(1);

double milliseconds(Moment time)
{
    return static_cast<double>(std::chrono::duration_cast<std::chrono::microseconds>(time).count()) / 1000;
}

std::string onOneLine(std::string text)
{
    std::replace_if(
        text.begin(), text.end(), [](char character) { return character == '\n' || character == '\r'; }, ' ');
    return text;
}

} // namespace

void TraceLog::head(const std::string& key, const std::string& value)
{
    if (!begun_)
        write_("# " + key + ": " + onOneLine(value) + "\n");
}

void TraceLog::opened(Moment now)
{
    notBefore_ = now;
    lastLine_ = now;
    known_ = 0;
}

void TraceLog::add(Moment at, Moment known, TranscriptLine line, std::size_t missing)
{
    begun_ = true;
    entries_.push_back({at, known, std::move(line), missing});
    writeComplete();
}

void TraceLog::sent(Moment now, std::string_view bytes)
{
    notBefore_ = now;
    if (!bytes.empty())
        add(now, now, {.kind = TranscriptLine::Kind::ToReader, .bytes = std::string(bytes)});
}

void TraceLog::looked(Moment now, std::size_t waiting)
{
    if (waiting > known_)
        add(notBefore_, now, {.kind = TranscriptLine::Kind::FromReader}, waiting - known_);
    known_ = waiting;
    notBefore_ = now + kJustAfter;
}

void TraceLog::took(Moment now, std::string_view bytes)
{
    looked(now, std::max(known_, bytes.size()));
    known_ -= bytes.size();
    for (Entry& entry : entries_) {
        const std::size_t count = std::min(entry.missing, bytes.size());
        entry.line.bytes += bytes.substr(0, count);
        entry.missing -= count;
        bytes.remove_prefix(count);
    }
    writeComplete();
}

void TraceLog::hungUp(const std::string& text)
{
    giveUpMissing();
    add(notBefore_, notBefore_, {.kind = TranscriptLine::Kind::Unplug, .note = onOneLine(text)});
}

void TraceLog::closed(Moment now)
{
    giveUpMissing();
    writePause(now, now);
}

void TraceLog::giveUpMissing()
{
    for (Entry& entry : entries_)
        entry.missing = 0;
    known_ = 0;
    writeComplete();
}

void TraceLog::writeComplete()
{
    for (; !entries_.empty() && entries_.front().missing == 0; entries_.pop_front()) {
        const Entry& entry = entries_.front();
        if (entry.line.kind == TranscriptLine::Kind::FromReader && entry.line.bytes.empty())
            continue;
        writePause(entry.at, std::max(entry.at, entry.known));
        write_(writeTranscriptLine(entry.line) + "\n");
    }
}

void TraceLog::writePause(Moment notBefore, Moment until)
{
    const Moment pause = std::chrono::duration_cast<std::chrono::microseconds>(until - lastLine_);
    if (pause <= Moment::zero())
        return;
    const Moment least = std::chrono::duration_cast<std::chrono::microseconds>(notBefore - lastLine_);
    TranscriptLine line{.kind = TranscriptLine::Kind::Pause, .milliseconds = milliseconds(pause)};
    if (least < pause)
        line.note = kNotBefore + writeTranscriptLine({.kind = TranscriptLine::Kind::Pause,
                                                      .milliseconds = std::max(milliseconds(least), 0.0)})
                                     .substr(2);
    write_(writeTranscriptLine(line) + "\n");
    lastLine_ += pause;
}

} // namespace kel
