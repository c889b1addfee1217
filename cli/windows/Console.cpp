// SPDX-License-Identifier: MIT
#include "cli/Console.h"

#include "cli/windows/TerminalStream.h"
#include "host/OutputFile.h"
#include "platform/windows/WindowsText.h"

#include <array>
#include <condition_variable>
#include <fcntl.h>
#include <io.h>
#include <iostream>
#include <mutex>
#include <thread>
#include <utility>
#include <windows.h>

// The system's own headers come in this order.
#include <shellapi.h>

namespace kel {

namespace {

constexpr std::size_t kUsualWidth = 100;

std::size_t widthOf(HANDLE console)
{
    CONSOLE_SCREEN_BUFFER_INFO screen{};
    if (!::GetConsoleScreenBufferInfo(console, &screen))
        return kUsualWidth;
    return static_cast<std::size_t>(screen.srWindow.Right - screen.srWindow.Left + 1);
}

/// What is typed, as it comes: a console cannot be asked for a line without waiting for it. The thread that waits ends
/// with the process.
class Keyboard {
public:
    Keyboard()
    {
        std::thread([this] { listen(); }).detach();
    }

    [[nodiscard]] std::optional<std::string> take(std::chrono::milliseconds atMost)
    {
        std::unique_lock lock(mutex_);
        if (!news_.wait_for(lock, atMost, [this] { return ended_ || !text_.empty(); }))
            return std::nullopt;
        return std::exchange(text_, {});
    }

private:
    void listen()
    {
        std::array<char, 256> text{};
        DWORD count = 0;
        const HANDLE input = ::GetStdHandle(STD_INPUT_HANDLE);
        while (::ReadFile(input, text.data(), text.size(), &count, nullptr) &&
               (count > 0 || ::GetLastError() == ERROR_OPERATION_ABORTED)) { // by Ctrl-C
            const std::lock_guard lock(mutex_);
            text_.append(text.data(), count);
            news_.notify_all();
        }
        const std::lock_guard lock(mutex_);
        ended_ = true;
        news_.notify_all();
    }

    std::mutex mutex_;
    std::condition_variable news_;
    std::string text_;
    bool ended_ = false;
};

std::optional<TerminalStream> output;
std::optional<TerminalStream> errors;

} // namespace

Console::Console()
{
    // A line ends in the same way wherever it goes.
    ::_setmode(_fileno(stdout), _O_BINARY);
    ::_setmode(_fileno(stderr), _O_BINARY);
    output.emplace(std::cout, STDOUT_FILENO);
    errors.emplace(std::cerr, STDERR_FILENO);
}

Console::~Console()
{
    errors.reset();
    output.reset();
}

/// The run time has them in the user's code page, which does not have every letter.
std::vector<std::string> programArguments(int argc, const char* const* argv)
{
    int count = 0;
    wchar_t** const words = ::CommandLineToArgvW(::GetCommandLineW(), &count);
    if (!words)
        return {argv + 1, argv + argc};
    std::vector<std::string> arguments;
    for (int i = 1; i < count; ++i)
        arguments.push_back(utf8Text(words[i]));
    ::LocalFree(words);
    return arguments;
}

std::size_t terminalWidth()
{
    return widthOf(::GetStdHandle(STD_OUTPUT_HANDLE));
}

/// Consoles before Windows 10 know no sequence for it.
void clearErrorLine()
{
    std::cerr << "\r" << std::string(widthOf(::GetStdHandle(STD_ERROR_HANDLE)) - 1, ' ') << "\r" << std::flush;
}

bool errorsAreSeen()
{
    return host::isTerminal(STDERR_FILENO);
}

std::optional<std::string> typedText(std::chrono::milliseconds atMost)
{
    static auto* const keyboard = new Keyboard; // its thread outlives everything
    return keyboard->take(atMost);
}

} // namespace kel
