// SPDX-License-Identifier: MIT
#include "platform/posix/PosixMessagePump.h"

#include "platform/posix/LineInput.h"
#include "platform/posix/SteadyTime.h"

namespace kel {

void PosixMessagePump::add(LineInput& line)
{
    TurnPump::add(line);
}

void PosixMessagePump::remove(LineInput& line)
{
    TurnPump::remove(line);
}

/// Any signal ends the wait: it may be the user's interruption.
void PosixMessagePump::fetchInput(Moment atMost)
{
    handles_.clear();
    polled_.clear();
    for (ReceivedInput* each : lines()) {
        auto* line = static_cast<LineInput*>(each); // `add` takes no others
        if (line->canBringMore()) {
            handles_.push_back({line->handle(), POLLIN, 0});
            polled_.push_back(line);
        }
    }
    const bool all = polled_.size() == lines().size() && wakeCall_->handle() >= 0;
    const Watched watched = polled_.empty() ? Watched::Nothing : all ? Watched::All : Watched::Some;
    const timespec time = toTimespec(longestWait(atMost, watched));
    handles_.push_back({wakeCall_->handle(), POLLIN, 0}); // poll leaves one of -1 out
    ++polls_;
    if (::ppoll(handles_.data(), handles_.size(), &time, nullptr) <= 0)
        return;
    if (handles_.back().revents != 0)
        wakeCall_->answer();
    for (std::size_t i = 0; i < polled_.size(); ++i) {
        if (handles_[i].revents != 0)
            polled_[i]->fetch((handles_[i].revents & (POLLHUP | POLLERR | POLLNVAL)) != 0);
    }
}

void PosixMessagePump::sleepUntil(Moment end)
{
    kel::sleepUntil(end);
}

} // namespace kel
