// SPDX-License-Identifier: MIT
#include "platform/posix/LineOutput.h"

#include "platform/FileDescriptor.h"
#include "platform/posix/SteadyTime.h"

#include <poll.h>

namespace kel {

namespace {

/// Waits until the line takes bytes again. False at the end of the patience.
bool waitForRoom(LineInput& line, Moment end)
{
    for (;;) {
        const Moment left = end - steadyTime();
        if (left <= Moment::zero())
            return false;
        const short wanted = line.canBringMore() ? POLLIN | POLLOUT : POLLOUT;
        pollfd handle{line.handle(), wanted, 0};
        const timespec time = toTimespec(left);
        if (::ppoll(&handle, 1, &time, nullptr) <= 0)
            continue;
        const bool hungUp = (handle.revents & (POLLHUP | POLLERR | POLLNVAL)) != 0;
        if (hungUp || (handle.revents & POLLIN) != 0)
            line.fetch(hungUp);
        if (hungUp || (handle.revents & POLLOUT) != 0)
            return true;
    }
}

} // namespace

void writeAll(LineInput& line, std::string_view bytes, Moment patience)
{
    if (line.hungUp())
        line.failHungUp();
    Moment end = steadyTime() + patience;
    while (!bytes.empty()) {
        const ssize_t count = retrying([&] { return ::write(line.handle(), bytes.data(), bytes.size()); });
        if (count > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(count));
            end = steadyTime() + patience;
        } else if (count < 0 && errno != EAGAIN && errno != EWOULDBLOCK) {
            line.hangUp();
            line.failHungUp();
        } else if (!waitForRoom(line, end)) {
            line.failStuck(bytes.size());
        }
    }
    line.answerMayCome();
}

} // namespace kel
