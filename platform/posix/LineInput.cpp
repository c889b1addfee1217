// SPDX-License-Identifier: MIT
#include "platform/posix/LineInput.h"

#include "platform/FileDescriptor.h"
#include "platform/posix/SteadyTime.h"

#include <cerrno>
#include <poll.h>
#include <unistd.h>
#include <utility>

namespace kel {

namespace {

// The kernel hands out so many bytes of a terminal at a time, however many are asked for.
constexpr std::size_t kFullRead = 4095;

} // namespace

// One byte more than is ever handed out.
LineInput::LineInput(int handle, std::string name) : ReceivedInput(std::move(name), kFullRead + 1), handle_(handle) {}

/// The end of the line's file, and any failure but "nothing there", is its hanging up.
ReceivedInput::Fetched LineInput::read(char* into, std::size_t room)
{
    const ssize_t count = retrying([&] { return ::read(handle_, into, room); });
    if (count > 0) {
        const auto bytes = static_cast<std::size_t>(count);
        return {.count = marked_ ? marks_.decode(into, bytes) : bytes, .more = bytes >= kFullRead};
    }
    if (count == 0 || (errno != EAGAIN && errno != EWOULDBLOCK))
        hangUp();
    return {};
}

void LineInput::awaitInput(Moment until)
{
    pollfd handle{handle_, POLLIN, 0};
    const timespec time = toTimespec(until - steadyTime());
    ::ppoll(&handle, 1, &time, nullptr);
}

void LineInput::systemCounts(SystemCounts counts)
{
    systemCounts_ = std::move(counts);
    countsAtFirst_ = systemCounts_();
}

LineErrors LineInput::errors()
{
    const std::optional<LineErrors> counts = systemCounts_ ? systemCounts_() : std::nullopt;
    if (!counts || !countsAtFirst_)
        return {.parity = marks_.replaced()};
    return {.parity = counts->parity - countsAtFirst_->parity,
            .framing = counts->framing - countsAtFirst_->framing,
            .overrun = counts->overrun - countsAtFirst_->overrun};
}

} // namespace kel
