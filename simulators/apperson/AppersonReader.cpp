// SPDX-License-Identifier: MIT
#include "simulators/apperson/AppersonReader.h"

#include "recording/Transcript.h"
#include "types/Text.h"

#include <algorithm>
#include <charconv>

namespace kel {

namespace {

std::set<std::string> commandsIn(const std::string& text)
{
    const std::vector<std::string> parts = split(text, ',');
    return {parts.begin(), parts.end()};
}

} // namespace

AppersonReader::AppersonReader(SimulatorOptions options)
    : Simulator(std::move(options)), feedTime_(settingTime("feed-ms", 300)), replyTime_(settingTime("reply-ms", 2)),
      replyLump_(settingNumber("reply-lump", 1)), endLump_(settingNumber("end-lump", 0)),
      okay_("OK" + parseTranscriptBytes(setting("reply-tail", "0D 0A"))), refused_(commandsIn(setting("refuse", ""))),
      unheard_(commandsIn(setting("silent", ""))), readerGrade_(settingFlag("reader-grade", false)),
      jamCode_(settingNumber("jam-code", 206))
{
}

bool AppersonReader::reply(const std::string& command, std::size_t longest)
{
    return reply(command, longest, replyLump_);
}

bool AppersonReader::replyAtEnd(const std::string& command)
{
    return reply(command, std::string::npos, endLump_);
}

bool AppersonReader::reply(const std::string& command, std::size_t longest, Int32 lump)
{
    if (unheard_.contains(command))
        return false;
    const bool accepted = !refused_.contains(command);
    const std::string text = asStatus((accepted ? okay_ : std::string("NO\r\n")).substr(0, longest));
    schedule(replyTime_, [this, text, lump] { sendInLumps(text, lump); });
    return accepted;
}

void AppersonReader::takeStep(const std::string& command)
{
    // "M3" is answered by the reader that has room for four bytes only.
    const bool accepted = reply(command, command == "M3" ? 4 : std::string::npos);
    stepTaken_ = true;
    const auto place = std::ranges::find(steps_, command);
    if (place != steps_.begin() || place == steps_.end())
        fault("command " + command + " where the start goes on with " + (steps_.empty() ? "reading" : steps_.front()));
    if (accepted && place != steps_.end())
        steps_.erase(steps_.begin(), std::next(place));
}

void AppersonReader::demandStepsDone(const std::string& command)
{
    if (!steps_.empty())
        fault("command " + command + " before " + steps_.front());
}

Int32 AppersonReader::fieldNumber(const std::string& name, Int32 fallback) const
{
    const std::string text = fieldOf(sheet(), name);
    Int32 value = fallback;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

std::string cutOrPadded(std::string text, std::size_t length)
{
    text.resize(length, ' ');
    return text;
}

} // namespace kel
