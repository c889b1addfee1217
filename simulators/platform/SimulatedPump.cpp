// SPDX-License-Identifier: MIT
#include "simulators/platform/SimulatedPump.h"

#include "platform/FaultCapture.h"
#include "types/RuntimeFailure.h"

#include <algorithm>
#include <utility>

namespace kel {

namespace {

using namespace std::chrono_literals;

// How long the real pump blocks at most.
constexpr Moment kLongestBlock = 5ms;

// A reader may be busy with itself for so many steps before the host hears of it.
constexpr int kMostSteps = 100'000;

std::optional<Moment> earlier(std::optional<Moment> a, std::optional<Moment> b)
{
    if (!a || !b)
        return a ? a : b;
    return std::min(*a, *b);
}

} // namespace

SimulatedScanTimer::SimulatedScanTimer(SimulatedPump& pump) : pump_(pump)
{
    pump_.add(*this);
}

SimulatedScanTimer::~SimulatedScanTimer()
{
    pump_.remove(*this);
}

void SimulatedScanTimer::Interval(Int32 milliseconds)
{
    if (milliseconds < 0)
        throw RuntimeFailure(FailureCode::InvalidPropertyValue);
    interval_ = milliseconds;
    startedAt_ = pump_.now();
}

void SimulatedScanTimer::Enabled(Boolean value)
{
    enabled_ = value;
    startedAt_ = pump_.now();
}

std::optional<Moment> SimulatedScanTimer::due() const
{
    if (!enabled_ || interval_ == 0)
        return std::nullopt;
    return startedAt_ + std::chrono::milliseconds(interval_);
}

void SimulatedPump::DoEvents()
{
    ++turns_;
    clock_.idleTurn();
    fireTimers();
    if (hostPump_ && !inHostPump_) {
        inHostPump_ = true;
        {
            const HostCode host;
            hostPump_();
        }
        inHostPump_ = false;
    }
    runActions();
    const bool slept = std::exchange(sleptInTurn_, false);
    if (!newsOnALine() && !slept)
        moveOn();
}

void SimulatedPump::Sleep(Int32 milliseconds)
{
    sleeps_.push_back({clock_.now(), milliseconds});
    sleptInTurn_ = true;
    if (milliseconds > 0)
        clock_.advanceTo(clock_.now() + std::chrono::milliseconds(milliseconds));
}

void SimulatedPump::at(Moment moment, std::function<void()> action)
{
    atMoments_.emplace(moment, std::move(action));
}

void SimulatedPump::atDoEvents(std::uint64_t n, std::function<void()> action)
{
    atTurns_.emplace(turns_ + n, std::move(action));
}

void SimulatedPump::fireTimers()
{
    for (SimulatedScanTimer* timer : timers_)
        if (const std::optional<Moment> due = timer->due(); due && *due <= clock_.now())
            timer->fire();
}

void SimulatedPump::runActions()
{
    while (!atMoments_.empty() && atMoments_.begin()->first <= clock_.now())
        atMoments_.extract(atMoments_.begin()).mapped()();
    while (!atTurns_.empty() && atTurns_.begin()->first <= turns_)
        atTurns_.extract(atTurns_.begin()).mapped()();
}

bool SimulatedPump::newsOnALine()
{
    bool news = false;
    for (SimulatedLine* line : lines_)
        news = (line->isOpen() && line->hasNews()) || news;
    return news;
}

std::optional<Moment> SimulatedPump::nextHostEvent() const
{
    std::optional<Moment> next;
    for (const SimulatedScanTimer* timer : timers_)
        next = earlier(next, timer->due());
    if (!atMoments_.empty())
        next = earlier(next, atMoments_.begin()->first);
    return next;
}

std::optional<Moment> SimulatedPump::nextLineEvent() const
{
    std::optional<Moment> next;
    for (const SimulatedLine* line : lines_)
        if (line->isOpen())
            next = earlier(next, line->nextEvent());
    return next;
}

void SimulatedPump::moveOn()
{
    const Moment longest = clock_.now() + kLongestBlock;
    for (int step = 0; step < kMostSteps; ++step) {
        const std::optional<Moment> host = nextHostEvent();
        std::optional<Moment> next = earlier(host, nextLineEvent());
        const bool blockEnds = !next || (hostPump_ && *next > longest);
        if (blockEnds)
            next = longest;
        clock_.advanceTo(*next);
        // Input that has come in the same moment in which a timer is due is there before the timer's event.
        if (newsOnALine() || blockEnds)
            return;
        if (host && *host <= clock_.now()) {
            fireTimers();
            runActions();
            return;
        }
    }
}

} // namespace kel
