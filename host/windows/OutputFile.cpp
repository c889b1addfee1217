// SPDX-License-Identifier: MIT
#include "host/OutputFile.h"

#include "platform/windows/WindowsText.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#include <windows.h>

namespace kel::host {

namespace {

// A console accepts at most 64 kB at once.
constexpr std::size_t kAtOnce = 8192;

/// Null if the descriptor is not a console's.
HANDLE consoleOf(int descriptor)
{
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the run time gives a handle as a number
    const auto handle = reinterpret_cast<HANDLE>(::_get_osfhandle(descriptor));
    DWORD mode = 0;
    return ::GetConsoleMode(handle, &mode) ? handle : nullptr;
}

/// In UTF-16, which every console accepts: before Windows 10 they break characters that come as bytes, and miscount
/// those.
std::ptrdiff_t writeToConsole(HANDLE console, std::string_view text)
{
    const std::wstring letters = wideText(text);
    for (std::wstring_view rest = letters; !rest.empty();) {
        std::size_t count = std::min(rest.size(), kAtOnce);
        if (count < rest.size() && IS_HIGH_SURROGATE(rest[count - 1]))
            --count;
        DWORD written = 0;
        if (!::WriteConsoleW(console, rest.data(), static_cast<DWORD>(count), &written, nullptr) || written == 0) {
            errno = EIO;
            return -1;
        }
        rest.remove_prefix(written);
    }
    return static_cast<std::ptrdiff_t>(text.size());
}

} // namespace

int openOutputFile(const std::filesystem::path& file)
{
    return ::_wopen(file.c_str(), _O_WRONLY | _O_CREAT | _O_TRUNC | _O_BINARY | _O_NOINHERIT, _S_IREAD | _S_IWRITE);
}

std::ptrdiff_t writeText(int descriptor, std::string_view text)
{
    if (const HANDLE console = consoleOf(descriptor))
        return writeToConsole(console, text);
    return ::_write(descriptor, text.data(), static_cast<unsigned>(text.size()));
}

bool isTerminal(int descriptor)
{
    return consoleOf(descriptor) != nullptr;
}

} // namespace kel::host
