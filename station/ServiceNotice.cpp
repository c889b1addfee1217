// SPDX-License-Identifier: MIT
#include "station/ServiceNotice.h"

#include "platform/FileDescriptor.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdlib>
#include <string_view>
#include <sys/socket.h>
#include <sys/un.h>

namespace kel {

namespace {

std::string_view variable(const char* name)
{
    const char* const value = std::getenv(name);
    return value ? value : "";
}

/// Sends a notice; `flags` are those of send().
void send(std::string_view state, int flags)
{
    const std::string_view place = variable("NOTIFY_SOCKET");
    sockaddr_un address{};
    if (place.empty() || place.size() >= sizeof address.sun_path)
        return;
    address.sun_family = AF_UNIX;
    std::copy(place.begin(), place.end(), std::begin(address.sun_path));
    if (place.front() == '@')
        address.sun_path[0] = '\0'; // a name that is no file's
    const FileDescriptor socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    ::sendto(socket.number(), state.data(), state.size(), MSG_NOSIGNAL | flags,
             reinterpret_cast<const sockaddr*>(&address),
             static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + place.size()));
}

} // namespace

void tellServiceManager(const std::string& state)
{
    send(state, 0);
}

void feedWatchdog()
{
    send("WATCHDOG=1", MSG_DONTWAIT);
}

std::optional<std::chrono::milliseconds> watchdogPeriod()
{
    const auto numberOf = [](std::string_view text) {
        std::int64_t number = 0;
        std::from_chars(text.data(), text.data() + text.size(), number);
        return number;
    };
    const std::int64_t microseconds = numberOf(variable("WATCHDOG_USEC"));
    const std::int64_t process = numberOf(variable("WATCHDOG_PID"));
    if (microseconds <= 0 || (process != 0 && process != ::getpid()))
        return std::nullopt;
    return std::max(std::chrono::milliseconds(1),
                    std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::microseconds(microseconds / 2)));
}

} // namespace kel
