// SPDX-License-Identifier: MIT
#include "recording/TracingLibrary.h"

#include "types/RuntimeFailure.h"

#include <cmath>

namespace kel {

namespace {

std::string withoutZerosAtTheEnd(std::span<const Byte> bytes)
{
    std::string text(bytes.begin(), bytes.end());
    text.erase(text.find_last_not_of('\0') + 1);
    return text;
}

} // namespace

Int32 TracingLibrary::Library::called(const Call& call)
{
    if (!begun_)
        lastLine_ = machine_.pump().now();
    begun_ = true;
    TranscriptLine line{.kind = TranscriptLine::Kind::Call, .call = call.words};
    try {
        const Int32 result = call.make(machine_.omrApiLoader().omrApi());
        line.results = {result};
        for (const Int32* const number : call.numbers)
            line.results.push_back(*number);
        line.bytes = withoutZerosAtTheEnd(call.bytes);
        note(std::move(line));
        return result;
    } catch (const RuntimeFailure& failure) {
        line.failed = true;
        line.results = {failure.number()};
        line.bytes = failure.text();
        note(std::move(line));
        throw;
    }
}

void TracingLibrary::Library::note(TranscriptLine line)
{
    const Moment now = machine_.pump().now();
    const double tenths = std::round(std::chrono::duration<double, std::milli>(now - lastLine_).count() * 10);
    if (tenths > 0)
        write_(writeTranscriptLine({.kind = TranscriptLine::Kind::Pause, .milliseconds = tenths / 10}) + "\n");
    lastLine_ = now;
    write_(writeTranscriptLine(line) + "\n");
}

} // namespace kel
