// SPDX-License-Identifier: MIT
#include "cli/Console.h"

#include "cli/Commands.h"
#include "host/OutputFile.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <iostream>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace kel {

namespace {

constexpr std::size_t kUsualWidth = 100;

/// A standard stream that is closed leaves its number to the next file that is opened, such as a reader's line: what is
/// written then would go to the reader. What stands in its place cannot be read or written, as the stream itself.
void holdStandardStreams()
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(stream, F_GETFD) < 0)
            static_cast<void>(::open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY));
    }
}

/// A process that exceeds its processor time (ulimit -t) is otherwise ended by the system without a word.
void endOutOfTime(int)
{
    constexpr std::string_view kText =
        "kelreader: The limit on processor time (ulimit -t) has been reached; raise it and start again.\n";
    [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, kText.data(), kText.size());
    ::_exit(kFailedStatus);
}

} // namespace

Console::Console()
{
    holdStandardStreams();
    // A reader of our output that goes away, and a file that may not grow, are reported as a failed write.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGXCPU, &endOutOfTime);
}

Console::~Console() = default;

std::vector<std::string> programArguments(int argc, const char* const* argv)
{
    return {argv + 1, argv + argc};
}

std::size_t terminalWidth()
{
    winsize size{};
    return ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : kUsualWidth;
}

bool errorsAreSeen()
{
    return host::isTerminal(STDERR_FILENO);
}

void clearErrorLine()
{
    std::cerr << "\r\x1B[K" << std::flush;
}

std::optional<std::string> typedText(std::chrono::milliseconds atMost)
{
    pollfd keyboard{STDIN_FILENO, POLLIN, 0};
    if (::poll(&keyboard, 1, static_cast<int>(atMost.count())) <= 0)
        return std::nullopt;
    char text[256];
    const ssize_t count = ::read(STDIN_FILENO, text, sizeof text);
    if (count < 0 && errno == EINTR)
        return std::nullopt;
    return std::string(text, count > 0 ? static_cast<std::size_t>(count) : 0);
}

} // namespace kel
