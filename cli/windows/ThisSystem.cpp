// SPDX-License-Identifier: MIT
#include "cli/ThisSystem.h"

#include "platform/windows/WindowsText.h"

#include <array>
#include <windows.h>

namespace kel {

namespace {

/// The system's description of itself; the usual call reports an older version than its own.
std::string fromRegistry(const wchar_t* name)
{
    std::array<wchar_t, 256> text{};
    DWORD size = sizeof text;
    constexpr DWORD kOwnView = RRF_RT_REG_SZ | RRF_SUBKEY_WOW6464KEY;
    if (::RegGetValueW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion", name, kOwnView, nullptr,
                       text.data(), &size) != ERROR_SUCCESS)
        return "unknown";
    return utf8Text(text.data());
}

const char* processor()
{
    SYSTEM_INFO system{};
    ::GetNativeSystemInfo(&system);
    switch (system.wProcessorArchitecture) {
    case PROCESSOR_ARCHITECTURE_AMD64: return "x86_64";
    case PROCESSOR_ARCHITECTURE_ARM64: return "arm64";
    default: return "x86";
    }
}

} // namespace

const std::string_view kMemoryAdvice = "close other programs.";
const std::string_view kThreadAdvice = "end other programs.";

std::string systemText()
{
    return fromRegistry(L"ProductName") + " build " + fromRegistry(L"CurrentBuildNumber") + " " + processor() +
           (sizeof(void*) == 4 ? ", command of 32 bits" : ", command of 64 bits");
}

} // namespace kel
