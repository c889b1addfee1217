// SPDX-License-Identifier: MIT
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

// How long a turn blocks at most where not all that may end the caller's wait can be waited for: with a pump of the
// host, or a line that cannot be watched; without an open line, so that the caller may be waiting for one of the
// host's; and without a running timer, so that it may be the host's that runs.
constexpr Moment kLongestTurnWithClock = milliseconds(20);
constexpr Moment kLongestTurnUnwatched = milliseconds(1);
constexpr Moment kLongestTurnWithoutTimer = milliseconds(250);

// A wait that ends so much later than it should has not merely waited for its turn on the processor.
constexpr Moment kStop = milliseconds(100);

// How long a pause may leave a line alone. A system that keeps no more than 4,095 bytes of a line is full after 160
// milliseconds at the fastest speed that readers know.
constexpr Moment kLongestNap = milliseconds(80);

} // namespace

TurnPump::TurnPump() : begin_(steadyTime()) {}

Moment TurnPump::time() const noexcept
{
    return steadyTime();
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
        waitForInput();
        fireTimers();
    }
    endTurn();
}

void TurnPump::waitForInput()
{
    const std::optional<Moment> timer = nextTimer();
    const Moment begin = now();
    fetchInput(timer ? *timer - begin : Moment::max());
    if (timer && now() - *timer > kStop)
        makeUpForStop(now() - begin);
}

void TurnPump::makeUpForStop(Moment lost)
{
    for (TurnTimer* timer : timers_)
        timer->makeUpFor(lost);
    timersChanged();
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

Moment TurnPump::longestWait(Moment atMost, Watched watched) const
{
    if (watched == Watched::Nothing)
        return std::min(atMost, kLongestTurnUnwatched);
    if (hostPump_ || watched == Watched::Some)
        return std::min(atMost, kLongestTurnWithClock);
    return nextTimer() ? atMost : std::min(atMost, kLongestTurnWithoutTimer);
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
    Moment end = time() + std::chrono::milliseconds(milliseconds);
    for (Moment begin = time(); begin < end; begin = time()) {
        const Moment napEnd = std::min(end, begin + kLongestNap);
        sleepUntil(napEnd);
        if (const Moment late = time() - napEnd; late > kStop) {
            end += late;
            makeUpForStop(late);
        }
        if (napEnd < end) {
            for (ReceivedInput* line : lines_)
                line->fetch();
        }
    }
    for (ReceivedInput* line : lines_)
        line->timePasses();
}

} // namespace kel
