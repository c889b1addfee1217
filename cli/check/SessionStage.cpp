// SPDX-License-Identifier: MIT
#include "TextNames.h"
#include "cli/check/CheckRun.h"
#include "host/Failure.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace kel {

namespace {

constexpr std::size_t kStarts = 3;
constexpr double kSecond = 1000;

using Starts = std::array<SessionSeen, kStarts>;

bool went(const SessionSeen& seen)
{
    return seen.failures.empty() && (seen.started || !seen.withheld.empty());
}

/// The reports of a USB reader that does not take what a start sets.
bool refusesSetup(const host::Failure& failure)
{
    return failure.number == text::kSrReadingMethodRefused.value() ||
           failure.number == text::kSrColumnsRefused.value() || failure.number == text::kSrFeedModeRefused.value();
}

Cause causeOf(const SessionSeen& seen)
{
    if (tellsHangUp(seen.failures))
        return Cause::LineHungUp;
    return std::ranges::any_of(seen.failures, refusesSetup) ? Cause::SetupRefused : Cause::Reported;
}

std::string whyNot(const SessionSeen& seen)
{
    return seen.failures.empty() ? "the session did not start" : host::failureSentence(seen.failures.front());
}

void checkStarts(CheckRun& run, const Starts& starts)
{
    CheckResult result{
        .stage = CheckStage::Session, .name = "three sessions start and end", .status = CheckStatus::Pass};
    for (const SessionSeen& seen : starts)
        result.milliseconds += seen.dialogue.milliseconds;
    const auto good = static_cast<std::size_t>(std::ranges::count_if(starts, went));
    const auto* const bad = std::ranges::find_if_not(starts, went);
    if (bad != starts.end()) {
        if (tellsHangUp(bad->failures)) {
            run.reachable = false;
            run.whyNot = "the line has hung up";
        }
        const bool onlyFirst = good == kStarts - 1 && bad == starts.begin();
        result.status = onlyFirst ? CheckStatus::Warn : CheckStatus::Fail;
        result.seen = std::to_string(good) + " of 3; " + whyNot(*bad);
        result.cause = onlyFirst ? Cause::LeftInMode : causeOf(*bad);
    } else if (!starts.front().withheld.empty()) {
        result.seen = "up to " + starts.front().withheld + ", which waits for sheets";
    }
    run.add(result);
}

/// The slowest reply of all, in milliseconds.
double slowestReply(const Starts& starts)
{
    double slowest = 0;
    for (const SessionSeen& seen : starts)
        for (const Exchange& exchange : seen.dialogue.exchanges)
            slowest = std::max(slowest, exchange.replyTime().value_or(0));
    return slowest;
}

/// The longest pause within a reply, in milliseconds.
double longestPause(const Starts& starts)
{
    double longest = 0;
    for (const SessionSeen& seen : starts)
        for (const Exchange& exchange : seen.dialogue.exchanges)
            for (std::size_t at = 1; at < exchange.arrivals.size(); ++at)
                longest = std::max(longest, exchange.arrivals[at].notBefore - exchange.arrivals[at - 1].at);
    return longest;
}

std::string inMilliseconds(double time)
{
    const auto tenths = static_cast<long>(std::lround(time * 10));
    return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " ms";
}

void checkReplies(CheckRun& run, const Starts& starts)
{
    const double timeout = run.timeout() * kSecond;
    const double slowest = slowestReply(starts);
    int pieces = 0;
    std::size_t garbage = 0;
    for (const SessionSeen& seen : starts) {
        for (const Arrival& arrival : seen.dialogue.unasked)
            garbage += arrival.bytes.size();
        pieces += static_cast<int>(std::ranges::count_if(
            seen.dialogue.exchanges, [](const Exchange& exchange) { return exchange.arrivals.size() > 1; }));
    }
    CheckResult times{.stage = CheckStage::Session,
                      .name = "replies come in time",
                      .status = slowest > timeout / 2 ? CheckStatus::Warn : CheckStatus::Pass,
                      .expected = "within " + std::to_string(run.timeout()) + " s",
                      .seen = "the slowest after " + inMilliseconds(slowest) + "; " + std::to_string(pieces) +
                              (pieces == 1 ? " reply" : " replies") + " in pieces"};
    if (times.status == CheckStatus::Warn)
        times.advice = "Raise Timeout to " + std::to_string(std::lround(std::ceil(4 * slowest / kSecond))) + ".";
    run.add(times);
    CheckResult rest{
        .stage = CheckStage::Session, .name = "nothing stands before a reply", .status = CheckStatus::Pass};
    if (garbage > 0) {
        rest.status = CheckStatus::Warn;
        rest.seen = std::to_string(garbage) + " bytes";
        rest.cause = Cause::LeftInMode;
    }
    run.add(rest);
    const long advised = std::max(2L, std::lround(std::ceil(4 * slowest / kSecond)));
    run.add({.stage = CheckStage::Session,
             .name = "advised settings",
             .status = CheckStatus::Pass,
             .seen = "Timeout " + std::to_string(std::max<long>(advised, run.timeout())) + ", SleepTime " +
                     std::to_string(std::max<long>(run.sleepTime(), std::lround(2 * longestPause(starts))))});
}

} // namespace

void sessionStage(CheckRun& run)
{
    Starts starts;
    for (std::size_t at = 0; at < kStarts; ++at) {
        run.person().tell("session " + std::to_string(at + 1) + " of 3");
        starts[at] = run.hold("start " + std::to_string(at + 1), 0);
    }
    checkStarts(run, starts);
    checkReplies(run, starts);
}

} // namespace kel
