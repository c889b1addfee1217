#include "platform/posix/PosixMessagePump.h"

#include "platform/posix/LineInput.h"
#include "platform/posix/PosixScanTimer.h"
#include "platform/posix/SteadyTime.h"

#include <algorithm>
#include <cerrno>

namespace kel {

namespace {

using std::chrono::milliseconds;

// How long a turn blocks at most: the host's own pump wants its turns. Without an open line the caller may be waiting
// for a line of the host, which cannot be watched.
constexpr Moment kLongestTurn = milliseconds(20);
constexpr Moment kLongestTurnWithoutLine = milliseconds(1);

// How long a pause may leave a line alone. The kernel keeps 4,095 bytes of a line, which take 160 milliseconds at the
// fastest speed that readers know.
constexpr Moment kLongestNap = milliseconds(80);

} // namespace

PosixMessagePump::PosixMessagePump() : begin_(steadyTime()) {}

Moment PosixMessagePump::now() const
{
    return steadyTime() - begin_;
}

void PosixMessagePump::hostPump(std::function<void()> pump)
{
    hostPump_ = pump ? std::make_shared<const std::function<void()>>(std::move(pump)) : nullptr;
}

void PosixMessagePump::DoEvents()
{
    runHostPump();
    if (timerIsDue()) {
        fetchInput(Moment::zero());
        fireTimers();
    } else if (!inputInvites()) {
        const std::optional<Moment> timer = nextTimer();
        fetchInput(timer ? *timer - now() : Moment::max());
        fireTimers();
    }
    endTurn();
}

/// The host may do anything in its pump, also install another one.
void PosixMessagePump::runHostPump()
{
    if (const auto pump = hostPump_)
        (*pump)();
}

std::optional<Moment> PosixMessagePump::nextTimer() const
{
    std::optional<Moment> next;
    for (const PosixScanTimer* timer : timers_) {
        const std::optional<Moment> end = timer->end();
        if (end && (!next || *end < *next))
            next = end;
    }
    return next;
}

bool PosixMessagePump::timerIsDue() const
{
    const std::optional<Moment> next = nextTimer();
    return next && *next <= now();
}

void PosixMessagePump::fireTimers()
{
    if (timers_.empty())
        return;
    const bool inputCame =
        std::any_of(lines_.begin(), lines_.end(), [](const LineInput* line) { return line->untold(); });
    const std::vector<PosixScanTimer*> running = timers_;
    for (PosixScanTimer* timer : running)
        timer->fireIfDue(now(), inputCame);
}

bool PosixMessagePump::inputInvites() const
{
    return std::any_of(lines_.begin(), lines_.end(), [](const LineInput* line) { return line->inviting(); });
}

/// Waits for input, a while at most, and fetches it. Any signal ends the wait: it may be the user's interruption.
void PosixMessagePump::fetchInput(Moment atMost)
{
    handles_.clear();
    polled_.clear();
    for (LineInput* line : lines_) {
        if (line->canBringMore()) {
            handles_.push_back({line->handle(), POLLIN, 0});
            polled_.push_back(line);
        }
    }
    const timespec time = toTimespec(std::min(atMost, handles_.empty() ? kLongestTurnWithoutLine : kLongestTurn));
    ++polls_;
    if (::ppoll(handles_.data(), handles_.size(), &time, nullptr) <= 0)
        return;
    for (std::size_t i = 0; i < handles_.size(); ++i) {
        if (handles_[i].revents != 0)
            polled_[i]->fetch((handles_[i].revents & (POLLHUP | POLLERR | POLLNVAL)) != 0);
    }
}

void PosixMessagePump::endTurn()
{
    for (LineInput* line : lines_)
        line->turnEnds();
}

void PosixMessagePump::Sleep(Int32 milliseconds)
{
    if (milliseconds <= 0)
        return;
    const Moment end = steadyTime() + std::chrono::milliseconds(milliseconds);
    while (!lines_.empty() && end - steadyTime() > kLongestNap) {
        sleepUntil(steadyTime() + kLongestNap);
        for (LineInput* line : lines_)
            line->fetch();
    }
    sleepUntil(end);
    for (LineInput* line : lines_)
        line->timePasses();
}

} // namespace kel
