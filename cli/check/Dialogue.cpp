// SPDX-License-Identifier: MIT
#include "cli/check/Dialogue.h"

#include "recording/TraceLog.h"
#include "types/Text.h"

#include <algorithm>
#include <cmath>

namespace kel {

namespace {

using Kind = TranscriptLine::Kind;

// A run of bytes without a pause shows a pace if it has at least this many.
constexpr int kLeastBytes = 24;
// And to distinguish lumps, this many looks.
constexpr std::size_t kLeastLooks = 3;

// A pause is longer than this: milliseconds, and bytes on the line.
constexpr double kPause = 2;
constexpr double kPauseBytes = 3;

// What a look may be late by, in milliseconds.
constexpr double kLate = 0.5;
constexpr std::size_t kLeastLump = 4;
constexpr double kMostlyLumps = 0.6;

using Stretch = std::vector<Arrival>;

int bytesOf(const Stretch& stretch)
{
    std::size_t count = 0;
    for (const Arrival& arrival : stretch)
        count += arrival.bytes.size();
    return static_cast<int>(count);
}

/// The stretches of a dialogue in which bytes followed each other without a pause.
std::vector<Stretch> stretchesOf(const Dialogue& dialogue, double character)
{
    std::vector<Stretch> stretches;
    const auto add = [&](const std::vector<Arrival>& arrivals) {
        stretches.emplace_back();
        double free = -1;
        for (const Arrival& arrival : arrivals) {
            const double needed = static_cast<double>(arrival.bytes.size()) * character;
            if (free >= 0 && arrival.at - needed - free > kPause + kPauseBytes * character)
                stretches.emplace_back();
            stretches.back().push_back(arrival);
            free = arrival.at;
        }
    };
    add(dialogue.unasked);
    for (const Exchange& exchange : dialogue.exchanges)
        add(exchange.arrivals);
    std::erase_if(stretches, [](const Stretch& stretch) { return bytesOf(stretch) < kLeastBytes; });
    return stretches;
}

/// Straight lines through all stretches, with one slope.
class Slope {
public:
    void add(const Stretch& stretch)
    {
        std::vector<std::pair<double, double>> points;
        double count = 0;
        for (const Arrival& arrival : stretch) {
            count += static_cast<double>(arrival.bytes.size());
            points.emplace_back(count, arrival.at);
        }
        double meanX = 0;
        double meanY = 0;
        for (const auto& [x, y] : points) {
            meanX += x / static_cast<double>(points.size());
            meanY += y / static_cast<double>(points.size());
        }
        for (const auto& [x, y] : points) {
            xx_ += (x - meanX) * (x - meanX);
            xy_ += (x - meanX) * (y - meanY);
            yy_ += (y - meanY) * (y - meanY);
        }
        points_ += static_cast<double>(points.size());
        lines_ += 1;
    }

    [[nodiscard]] double slope() const { return xx_ > 0 ? xy_ / xx_ : 0; }

    [[nodiscard]] double standardError() const
    {
        const double free = points_ - lines_ - 1;
        if (xx_ <= 0 || free <= 0)
            return 0;
        return std::sqrt(std::max(yy_ - slope() * xy_, 0.0) / free / xx_);
    }

private:
    double xx_ = 0;
    double xy_ = 0;
    double yy_ = 0;
    double points_ = 0;
    double lines_ = 0;
};

/// Bytes that came sooner than the line can bring them were kept somewhere. The first look of a stretch says nothing.
double lumpOf(const std::vector<Stretch>& stretches, double character)
{
    double all = 0;
    double lumped = 0;
    double lumps = 0;
    for (const Stretch& stretch : stretches) {
        if (stretch.size() < kLeastLooks)
            continue;
        for (std::size_t place = 1; place < stretch.size(); ++place) {
            const Arrival& arrival = stretch[place];
            const auto count = static_cast<double>(arrival.bytes.size());
            all += count;
            const bool atOnce = count * character > arrival.at - arrival.notBefore + character + kLate;
            if (arrival.bytes.size() >= kLeastLump && atOnce) {
                lumped += count;
                ++lumps;
            }
        }
    }
    return all > 0 && lumped / all >= kMostlyLumps ? lumped / lumps * character : 0;
}

} // namespace

std::string Exchange::reply() const
{
    std::string bytes;
    for (const Arrival& arrival : arrivals)
        bytes += arrival.bytes;
    return bytes;
}

std::optional<double> Exchange::replyTime() const
{
    return arrivals.empty() ? std::nullopt : std::optional(arrivals.front().at - sentAt);
}

bool Dialogue::anyReply() const
{
    return std::ranges::any_of(exchanges, [](const Exchange& exchange) { return !exchange.arrivals.empty(); });
}

const Exchange* Dialogue::last(std::string_view begin) const
{
    const auto found = std::find_if(exchanges.rbegin(), exchanges.rend(),
                                    [&](const Exchange& exchange) { return exchange.sent.starts_with(begin); });
    return found == exchanges.rend() ? nullptr : &*found;
}

Dialogue dialogueOf(const Transcript& trace)
{
    Dialogue dialogue;
    double now = 0;
    double notBefore = 0;
    for (const TranscriptLine& line : trace.lines) {
        switch (line.kind) {
        case Kind::Pause:
            notBefore = now + (line.note.starts_with(kNotBefore) ? Val(line.note.substr(kNotBefore.size()))
                                                                 : line.milliseconds);
            now += line.milliseconds;
            continue;
        case Kind::ToReader: dialogue.exchanges.push_back({.sentAt = now, .sent = line.bytes, .arrivals = {}}); break;
        case Kind::FromReader:
            (dialogue.exchanges.empty() ? dialogue.unasked : dialogue.exchanges.back().arrivals)
                .push_back({.notBefore = notBefore, .at = now, .bytes = line.bytes});
            break;
        case Kind::Unplug:
        case Kind::Call: break;
        }
        notBefore = now;
    }
    dialogue.milliseconds = now;
    return dialogue;
}

std::optional<Pace> paceOf(const Dialogue& dialogue, double character)
{
    const std::vector<Stretch> stretches = stretchesOf(dialogue, character);
    if (stretches.empty())
        return std::nullopt;
    Slope slope;
    Pace pace;
    for (const Stretch& stretch : stretches) {
        slope.add(stretch);
        pace.bytes += bytesOf(stretch);
    }
    pace.character = slope.slope();
    pace.standardError = slope.standardError();
    pace.lump = lumpOf(stretches, character);
    return pace;
}

} // namespace kel
