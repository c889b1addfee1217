#include "platform/posix/LineInput.h"

#include "platform/FileDescriptor.h"

#include <cerrno>
#include <unistd.h>
#include <utility>

namespace kel {

namespace {

// The kernel hands out so many bytes of a terminal at a time, however many are asked for.
constexpr std::size_t kFullRead = 4095;

} // namespace

LineInput::LineInput(int handle, std::string name) : ReceivedInput(std::move(name), kFullRead), handle_(handle) {}

/// The end of the line's file, and any failure but "nothing there", is its hanging up.
std::size_t LineInput::read(char* into, std::size_t room)
{
    const ssize_t count = retrying([&] { return ::read(handle_, into, room); });
    if (count > 0)
        return static_cast<std::size_t>(count);
    if (count == 0 || (errno != EAGAIN && errno != EWOULDBLOCK))
        hangUp();
    return 0;
}

} // namespace kel
