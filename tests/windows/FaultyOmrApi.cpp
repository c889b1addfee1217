// SPDX-License-Identifier: MIT
// A library of the USB readers' maker that fails in the midst of a call, as the environment variable KEL_OMRAPI_FAULT
// tells it: a code in hexadecimal digits, alone or after "final " (nobody may go on from it) or "nested " (it is the
// innermost of three); or one of the words below. In 32 bits its names are decorated: one way for some, another for the
// rest.

#include <windows.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

volatile std::intptr_t nothing = 0;

int fill(int depth)
{
    volatile char room[1024];
    room[0] = static_cast<char>(depth);
    return depth < 0 ? 0 : fill(depth + 1) + room[0];
}

void raise(DWORD code, DWORD flags)
{
    ::RaiseException(code, flags, 0, nullptr);
}

void raiseNested(DWORD code)
{
    EXCEPTION_RECORD first{};
    first.ExceptionCode = code;
    EXCEPTION_RECORD second{};
    second.ExceptionCode = 0xC0000026;
    second.ExceptionRecord = &first;
    EXCEPTION_RECORD third{};
    third.ExceptionCode = 0xC0000025;
    third.ExceptionRecord = &second;
    const auto raiseRecord = reinterpret_cast<void(WINAPI*)(EXCEPTION_RECORD*)>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), "RtlRaiseException")));
    raiseRecord(&third);
}

void fail()
{
    std::array<char, 64> text{};
    if (::GetEnvironmentVariableA("KEL_OMRAPI_FAULT", text.data(), static_cast<DWORD>(text.size())) == 0)
        return;
    const std::string fault = text.data();
    const auto code = [&](std::size_t from) { return static_cast<DWORD>(std::strtoul(&fault[from], nullptr, 16)); };
    if (fault == "read")
        static_cast<void>(*reinterpret_cast<volatile char*>(nothing));
    else if (fault == "copy")
        std::memcpy(reinterpret_cast<void*>(nothing), text.data(), text.size()); // in the system's library
    else if (fault == "jump")
        reinterpret_cast<void (*)()>(nothing)();
    else if (fault == "stack")
        fill(0);
    else if (fault == "own") // a fault that it handles itself
        static_cast<void>(::IsBadReadPtr(reinterpret_cast<const void*>(16), 4));
    else if (fault.starts_with("final "))
        raise(code(6), EXCEPTION_NONCONTINUABLE);
    else if (fault.starts_with("nested "))
        raiseNested(code(7));
    else
        raise(code(0), 0);
}

} // namespace

#define OMR_EXPORT extern "C" __declspec(dllexport) std::int32_t __stdcall

OMR_EXPORT OMR_OpenDeviceUSB()
{
    fail();
    return 1;
}

OMR_EXPORT OMR_GetLastError()
{
    return 0;
}

OMR_EXPORT OMR_CloseDevice()
{
    return 0;
}

OMR_EXPORT OMR_EjectSheet(std::int32_t outlet)
{
    return outlet < 3 ? 1 : 0;
}
