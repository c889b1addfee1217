#include "platform/TurnPump.h"

#include "platform/FaultCapture.h"
#include "platform/ReceivedInput.h"
#include "platform/SteadyTime.h"
#include "platform/TurnTimer.h"

#include <algorithm>
#include <utility>

namespace kel {

namespace {

using std::chrono::milliseconds;

// How long a turn blocks at most: the host's own pump wants its turns. Without an open line the caller may be waiting
// for a line of the host, which cannot be watched.
constexpr Moment kLongestTurn = milliseconds(20);
constexpr Moment kLongestTurnWithoutLine = milliseconds(1);

// How long a pause may leave a line alone. A system that keeps no more than 4,095 bytes of a line is full after 160
// milliseconds at the fastest speed that readers know.
constexpr Moment kLongestNap = milliseconds(80);

} // namespace

TurnPump::TurnPump() : begin_(steadyTime()) {}

Moment TurnPump::now() const
{
    return steadyTime() - begin_;
}

void TurnPump::hostPump(std::function<void()> pump)
{
    hostPump_ = pump ? std::make_shared<const std::function<void()>>(std::move(pump)) : nullptr;
}

void TurnPump::add(TurnTimer& timer)
{
    timers_.push_back(&timer);
    timersChanged();
}

void TurnPump::remove(TurnTimer& timer)
{
    if (std::erase(timers_, &timer) > 0)
        timersChanged();
}

void TurnPump::DoEvents()
{
    turnBegan_ = now();
    runHostPump();
    const bool messagesRan = runMessages();
    if (timerIsDue()) {
        fetchInput(Moment::zero());
        fireTimers();
    } else if (!messagesRan && !inputInvites()) {
        const std::optional<Moment> timer = nextTimer();
        fetchInput(timer ? *timer - now() : Moment::max());
        fireTimers();
    }
    endTurn();
}

/// The host may do anything in its pump, also install another one.
void TurnPump::runHostPump()
{
    if (const auto pump = hostPump_) {
        const HostCode host;
        (*pump)();
    }
}

std::optional<Moment> TurnPump::nextTimer() const
{
    std::optional<Moment> next;
    for (const TurnTimer* timer : timers_) {
        const std::optional<Moment> end = timer->end();
        if (end && (!next || *end < *next))
            next = end;
    }
    return next;
}

bool TurnPump::timerIsDue() const
{
    const std::optional<Moment> next = nextTimer();
    return next && *next <= now();
}

void TurnPump::fireTimers()
{
    if (timers_.empty())
        return;
    const bool inputCame =
        std::any_of(lines_.begin(), lines_.end(), [](const ReceivedInput* line) { return line->untold(); });
    const std::vector<TurnTimer*> running = timers_;
    for (TurnTimer* timer : running)
        timer->fireIfDue(now(), inputCame && timer->end() > turnBegan_);
}

bool TurnPump::inputInvites() const
{
    return std::any_of(lines_.begin(), lines_.end(), [](const ReceivedInput* line) { return line->inviting(); });
}

Moment TurnPump::longestWait(Moment atMost, bool anyLine)
{
    return std::min(atMost, anyLine ? kLongestTurn : kLongestTurnWithoutLine);
}

void TurnPump::endTurn()
{
    for (ReceivedInput* line : lines_)
        line->turnEnds();
}

void TurnPump::Sleep(Int32 milliseconds)
{
    if (milliseconds <= 0)
        return;
    const Moment end = steadyTime() + std::chrono::milliseconds(milliseconds);
    while (!lines_.empty() && end - steadyTime() > kLongestNap) {
        sleepUntil(steadyTime() + kLongestNap);
        for (ReceivedInput* line : lines_)
            line->fetch();
    }
    sleepUntil(end);
    for (ReceivedInput* line : lines_)
        line->timePasses();
}

} // namespace kel
