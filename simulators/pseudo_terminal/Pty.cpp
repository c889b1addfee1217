// SPDX-License-Identifier: MIT
#include "simulators/pseudo_terminal/Pty.h"

#include "platform/posix/TerminalAttributes.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <system_error>
#include <termios.h>

namespace kel {

namespace {

[[noreturn]] void fail(const char* what)
{
    throw std::system_error(errno, std::generic_category(), what);
}

} // namespace

Pty::Pty() : master_(::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC))
{
    std::array<char, 128> name{};
    if (!master_.isOpen() || ::grantpt(master_.number()) != 0 || ::unlockpt(master_.number()) != 0 ||
        ::ptsname_r(master_.number(), name.data(), name.size()) != 0)
        fail("no pseudo-terminal");
    name_ = name.data();
    slave_ = FileDescriptor(::open(name_.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
    TerminalAttributes attributes;
    if (!slave_.isOpen() || !attributes.readFrom(slave_.number()))
        fail("no pseudo-terminal");
    attributes.makeRaw();
    attributes.set(LineParameters());
    if (!attributes.writeTo(slave_.number()))
        fail("no pseudo-terminal");

    // Watches are few on some systems. Without one the line works, and the first byte shows that it is open.
    watch_ = FileDescriptor(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    if (watch_.isOpen() &&
        ::inotify_add_watch(watch_.number(), name_.c_str(), IN_OPEN | IN_CLOSE_WRITE | IN_CLOSE_NOWRITE) < 0)
        watch_.close();
}

LineParameters Pty::line() const
{
    TerminalAttributes attributes;
    return attributes.readFrom(master_.number()) ? attributes.line() : LineParameters();
}

std::string Pty::read()
{
    std::string bytes(4096, '\0');
    const ssize_t count = retrying([&] { return ::read(master_.number(), bytes.data(), bytes.size()); });
    bytes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return bytes;
}

std::size_t Pty::write(std::string_view bytes)
{
    const ssize_t count = retrying([&] { return ::write(master_.number(), bytes.data(), bytes.size()); });
    return count > 0 ? static_cast<std::size_t>(count) : 0;
}

Pty::Openings Pty::newOpenings()
{
    Openings openings;
    for (;;) {
        alignas(inotify_event) std::array<char, 4096> events;
        const ssize_t count = retrying([&] { return ::read(watch_.number(), events.data(), events.size()); });
        if (count <= 0)
            return openings;
        for (std::size_t at = 0; at < static_cast<std::size_t>(count);) {
            inotify_event event;
            std::memcpy(&event, events.data() + at, sizeof event);
            if (event.mask & IN_OPEN)
                ++openings.opened;
            if (event.mask & (IN_CLOSE_WRITE | IN_CLOSE_NOWRITE))
                ++openings.closed;
            at += sizeof event + event.len;
        }
    }
}

bool Pty::allRead() const
{
    deliver();
    int unread = 0;
    return ::ioctl(slave_.number(), FIONREAD, &unread) != 0 || unread == 0;
}

void Pty::dropUnread()
{
    deliver();
    ::tcflush(slave_.number(), TCIFLUSH);
}

void Pty::deliver() const noexcept
{
    pollfd line{slave_.number(), POLLIN, 0};
    static_cast<void>(::poll(&line, 1, 0));
}

void Pty::hangUp() noexcept
{
    // The near end holds the number: a host that opens the line again meets none, and not somebody else's.
    master_.close();
    watch_.close();
}

} // namespace kel
