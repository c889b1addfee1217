#include "platform/ReceivedInput.h"

#include "platform/SteadyTime.h"
#include "types/RuntimeFailure.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace kel {

namespace {

// A look is at its oldest after a character's time, but the clock is no finer and no loop slower than this.
constexpr Moment kShortestLook = std::chrono::microseconds(20);
constexpr Moment kLongestLook = std::chrono::milliseconds(1);

} // namespace

ReceivedInput::ReceivedInput(std::string name, std::size_t fullRead) : name_(std::move(name)), fullRead_(fullRead)
{
    characterTime(kLongestLook);
}

void ReceivedInput::characterTime(Moment time)
{
    lookLasts_ = std::clamp(time, kShortestLook, kLongestLook);
}

bool ReceivedInput::mayBeOld() const noexcept
{
    return old_ || steadyTime() - lastLook_ > lookLasts_;
}

/// A look that found nothing is not repeated behind a turn of the pump that took no time.
bool ReceivedInput::foundNothingBeforeTurn() noexcept
{
    return std::exchange(turnBehindVainLook_, false) && !old_ && steadyTime() - lastLook_ <= kShortestLook;
}

Int32 ReceivedInput::count()
{
    if (waiting() == 0 ? !foundNothingBeforeTurn() : mayBeOld())
        look();
    untold_ = false;
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
    untold_ = false;
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
    const std::size_t count = canBringMore() ? readOnce() : 0;
    old_ = count >= fullRead_; // then there was more than one read gives
    lookedInVain_ = count == 0 && !hungUp_;
    lastLook_ = steadyTime();
}

void ReceivedInput::fetch(bool hangUpSignalled)
{
    const std::size_t before = waiting();
    // Behind a read that was not full there is nothing, but for the end of a line that has hung up.
    while (canBringMore()) {
        const std::size_t count = readOnce();
        if (count == 0 || (count < fullRead_ && !hangUpSignalled))
            break;
    }
    if (hangUpSignalled)
        hungUp_ = true;
    old_ = false;
    lookedInVain_ = false;
    lastLook_ = steadyTime();
    if (waiting() > before) {
        untold_ = true;
        offered_ = false;
    }
}

/// Reads what is there, and answers how many bytes came.
std::size_t ReceivedInput::readOnce()
{
    ++reads_;
    // One more than is ever handed out, so that a full read is known as one.
    fetched_.resize(fullRead_ + 1);
    const std::size_t count = read(fetched_.data(), fetched_.size());
    if (count == 0)
        return 0;
    // What has been taken goes before the buffer grows.
    buffer_.erase(0, taken_);
    taken_ = 0;
    buffer_.append(fetched_, 0, count);
    return count;
}

void ReceivedInput::turnEnds() noexcept
{
    busyInTurn_ = false;
    turnBehindVainLook_ = std::exchange(lookedInVain_, false);
    offered_ = true;
    timePassed_ = true;
}

void ReceivedInput::timePasses() noexcept
{
    old_ = true;
    timePassed_ = true;
    busyInTurn_ = true;
}

void ReceivedInput::failHungUp() const
{
    throw RuntimeFailure(FailureCode::ErrorReadingDevice,
                         failureText(FailureCode::ErrorReadingDevice) + ": " + name_ +
                             " has hung up: the reader was disconnected or switched off. Connect it and start anew.");
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
