// SPDX-License-Identifier: MIT
// Runs a program in a console of its own, of the code page that western consoles start with, and prints what stands
// there when it has ended: the code page, and the lines down to the cursor's, in UTF-8. Usage: in_console COLUMNS
// "PROGRAM ARGUMENTS". The exit status is the program's.

#include "platform/windows/WindowsText.h"

#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

constexpr int kWrongUsage = 2;
constexpr UINT kCodePage = 437;
constexpr SHORT kLines = 200;

HANDLE opened(const wchar_t* device)
{
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    return CreateFileW(device, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited,
                       OPEN_EXISTING, 0, nullptr);
}

std::string line(HANDLE screen, SHORT columns, SHORT row)
{
    std::wstring letters(static_cast<std::size_t>(columns), L' ');
    DWORD count = 0;
    ReadConsoleOutputCharacterW(screen, letters.data(), static_cast<DWORD>(columns), {0, row}, &count);
    letters.erase(letters.find_last_not_of(L' ') + 1);
    return kel::utf8Text(letters);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3)
        return kWrongUsage;
    const auto columns = static_cast<SHORT>(std::atoi(argv[1]));
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    FreeConsole();
    AllocConsole();
    const HANDLE screen = opened(L"CONOUT$");
    SetConsoleOutputCP(kCodePage);
    const SMALL_RECT window{0, 0, static_cast<SHORT>(columns - 1), 24};
    const SMALL_RECT smallest{0, 0, 0, 0};
    SetConsoleWindowInfo(screen, TRUE, &smallest); // a buffer is never smaller than its window
    SetConsoleScreenBufferSize(screen, {columns, kLines});
    SetConsoleWindowInfo(screen, TRUE, &window);

    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = opened(L"CONIN$");
    startup.hStdOutput = screen;
    startup.hStdError = screen;
    PROCESS_INFORMATION program{};
    std::wstring command = kel::wideText(argv[2]);
    if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &program))
        return kWrongUsage;
    WaitForSingleObject(program.hProcess, INFINITE);
    DWORD status = 0;
    GetExitCodeProcess(program.hProcess, &status);

    CONSOLE_SCREEN_BUFFER_INFO shown{};
    GetConsoleScreenBufferInfo(screen, &shown);
    std::string told = "code page " + std::to_string(GetConsoleOutputCP()) + "\n";
    for (SHORT row = 0; row <= shown.dwCursorPosition.Y; ++row)
        told += line(screen, columns, row) + "\n";
    DWORD written = 0;
    WriteFile(output, told.data(), static_cast<DWORD>(told.size()), &written, nullptr);
    return static_cast<int>(status);
}
