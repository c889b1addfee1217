// SPDX-License-Identifier: MIT
#include "platform/ReceivedInput.h"

#include "platform/SteadyTime.h"
#include "types/RuntimeFailure.h"

#include <algorithm>
#include <limits>

namespace kel {

namespace {

// A look is at its oldest after a character's time, but the clock is no finer and no loop slower than this.
constexpr Moment kShortestLook = std::chrono::microseconds(20);
constexpr Moment kLongestLook = std::chrono::milliseconds(1);

// A line that is opened has to be silent for so long, and is waited for so long at most.
constexpr Moment kSilence = std::chrono::milliseconds(50);
constexpr Moment kLongestSettling = std::chrono::milliseconds(300);

// Bytes further apart are no stream. A pause of the caller fetches them more often than that.
constexpr Moment kGap = std::chrono::milliseconds(200);

} // namespace

ReceivedInput::ReceivedInput(std::string name, std::size_t readSize) : name_(std::move(name)), fetched_(readSize, '\0')
{
    characterTime(kLongestLook);
}

Moment ReceivedInput::time() const noexcept
{
    return steadyTime();
}

void ReceivedInput::characterTime(Moment time)
{
    lookLasts_ = std::clamp(time, kShortestLook, kLongestLook);
}

bool ReceivedInput::mayBeOld() const noexcept
{
    return known_ == Known::Outdated || time() - lastLook_ > lookLasts_;
}

/// A look that found nothing is not repeated after a turn of the pump that took no time. And what the pump has just
/// fetched was all there was: the caller that has taken it finds nothing more, once, without a look.
bool ReceivedInput::nothingCanHaveCome() noexcept
{
    if ((known_ != Known::Turned && known_ != Known::Emptied) || time() - lastLook_ > kShortestLook)
        return false;
    known_ = Known::Vain;
    return true;
}

Int32 ReceivedInput::count()
{
    if (waiting() == 0 ? !nothingCanHaveCome() : mayBeOld())
        look();
    failIfEndless();
    news_ = News::None;
    if (hungUp_) {
        if (waiting() == 0)
            failHungUp();
        if (vainLooks_ == 0 || timePassed_)
            ++vainLooks_;
        timePassed_ = false;
        if (vainLooks_ >= kLooksAtDeadLine)
            failHungUp();
    }
    if (waiting() > told_)
        busyInTurn_ = true;
    told_ = waiting();
    return static_cast<Int32>(waiting());
}

std::string ReceivedInput::take(Int32 most)
{
    const auto wanted = most == 0 ? std::numeric_limits<std::size_t>::max() : static_cast<std::size_t>(most);
    if (waiting() == 0 || (waiting() < wanted && mayBeOld()))
        look();
    failIfEndless();
    news_ = News::None;
    if (waiting() == 0 && hungUp_)
        failHungUp();
    const std::size_t count = std::min(wanted, waiting());
    std::string result = buffer_.substr(taken_, count);
    taken_ += count;
    if (waiting() == 0) {
        buffer_.clear();
        taken_ = 0;
    }
    told_ = waiting();
    if (count > 0) {
        busyInTurn_ = true;
        vainLooks_ = 0;
    }
    return result;
}

/// What the caller asks for is no news to it afterwards.
void ReceivedInput::look()
{
    const std::size_t before = waiting();
    Fetched last;
    for (bool more = true; more && canBringMore(); more = last.more)
        last = readOnce();
    if (last.more)
        known_ = Known::Outdated;
    else
        known_ = waiting() == before && !hungUp_ ? Known::Vain : Known::Looked;
    lastLook_ = time();
}

void ReceivedInput::fetch(bool hangUpSignalled)
{
    const std::size_t before = waiting();
    // After a read that was not full there is nothing, but for the end of a line that has hung up.
    Fetched last;
    while (canBringMore()) {
        last = readOnce();
        if (last.count == 0 || (!last.more && !hangUpSignalled))
            break;
    }
    if (hangUpSignalled)
        hungUp_ = true;
    if (last.more)
        known_ = Known::Outdated;
    else
        known_ = last.count > 0 ? Known::Emptied : Known::Looked;
    lastLook_ = time();
    if (waiting() > before)
        news_ = News::Fresh;
}

ReceivedInput::Fetched ReceivedInput::readOnce()
{
    ++reads_;
    const Fetched fetched = read(fetched_.data(), fetched_.size());
    if (fetched.count == 0)
        return fetched;
    const Moment now = time();
    streamed_ = now - lastCame_ > kGap ? fetched.count : streamed_ + fetched.count;
    endless_ = endless_ || streamed_ > kLongestStream;
    lastCame_ = now;
    // What has been taken goes before the buffer grows.
    buffer_.erase(0, taken_);
    taken_ = 0;
    buffer_.append(fetched_, 0, fetched.count);
    return fetched;
}

void ReceivedInput::dropUntilSilent()
{
    const Moment latest = time() + kLongestSettling;
    for (Moment silent = time() + kSilence; !hungUp_ && time() < std::min(silent, latest);) {
        awaitInput(std::min(silent, latest));
        if (readOnce().count > 0)
            silent = time() + kSilence;
        buffer_.clear();
        taken_ = 0;
    }
    streamed_ = 0;
    endless_ = false;
}

void ReceivedInput::failIfEndless() const
{
    if (endless_)
        throw RuntimeFailure(FailureCode::ErrorReadingDevice,
                             failureText(FailureCode::ErrorReadingDevice) + ": " + name_ +
                                 " sends without end: " + std::to_string(kLongestStream) +
                                 " bytes came without a pause, and no reader sends so much. Is it a reader, and does "
                                 "its speed agree with the settings?");
}

void ReceivedInput::turnEnds() noexcept
{
    busyInTurn_ = false;
    if (known_ == Known::Vain)
        known_ = Known::Turned;
    else if (known_ == Known::Turned)
        known_ = Known::Looked;
    if (news_ == News::Fresh)
        news_ = News::Offered;
    timePassed_ = true;
}

void ReceivedInput::timePasses() noexcept
{
    known_ = Known::Outdated;
    timePassed_ = true;
    busyInTurn_ = true;
}

void ReceivedInput::failHungUp() const
{
    throw RuntimeFailure(FailureCode::ErrorReadingDevice,
                         failureText(FailureCode::ErrorReadingDevice) + ": " + name_ +
                             " has hung up: the reader was disconnected or switched off. Connect it and start again.");
}

void ReceivedInput::failStuck(std::size_t bytesLeft) const
{
    throw RuntimeFailure(FailureCode::ErrorReadingDevice,
                         failureText(FailureCode::ErrorReadingDevice) + ": " + name_ + " takes no output, and " +
                             std::to_string(bytesLeft) +
                             " bytes are left. Is the reader switched on, and does its handshaking agree with the "
                             "settings?");
}

} // namespace kel
