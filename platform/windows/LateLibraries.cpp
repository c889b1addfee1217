// SPDX-License-Identifier: MIT
// Libraries of the system that the options dialog alone calls are loaded when it calls them: a host that creates a
// reader would wait for them longer than for the component. The pointers here take the place of those that an import
// library brings, by their names.

#include <windows.h>

// The system's own headers come in this order.
#include <commctrl.h>
#include <shellapi.h>

#if defined(_WIN64)
#define KEL_POINTER_TO(function, bytesOfArguments) asm("__imp_" #function)
#else
#define KEL_POINTER_TO(function, bytesOfArguments) asm("__imp__" #function "@" #bytesOfArguments)
#endif

namespace {

void* functionOf(const wchar_t* library, const char* name)
{
    const HMODULE module = ::LoadLibraryW(library);
    return module ? reinterpret_cast<void*>(::GetProcAddress(module, name)) : nullptr;
}

BOOL WINAPI initCommonControls(const INITCOMMONCONTROLSEX* wanted)
{
    static auto* const function = reinterpret_cast<BOOL(WINAPI*)(const INITCOMMONCONTROLSEX*)>(
        functionOf(L"comctl32.dll", "InitCommonControlsEx"));
    return function ? function(wanted) : FALSE;
}

HINSTANCE WINAPI shellExecute(HWND window, LPCWSTR verb, LPCWSTR file, LPCWSTR arguments, LPCWSTR folder, INT show)
{
    static auto* const function = reinterpret_cast<HINSTANCE(WINAPI*)(HWND, LPCWSTR, LPCWSTR, LPCWSTR, LPCWSTR, INT)>(
        functionOf(L"shell32.dll", "ShellExecuteW"));
    return function ? function(window, verb, file, arguments, folder, show) : nullptr;
}

} // namespace

extern "C" {
extern const decltype(&initCommonControls) initCommonControlsPointer KEL_POINTER_TO(InitCommonControlsEx, 4);
const decltype(&initCommonControls) initCommonControlsPointer = &initCommonControls;
extern const decltype(&shellExecute) shellExecutePointer KEL_POINTER_TO(ShellExecuteW, 24);
const decltype(&shellExecute) shellExecutePointer = &shellExecute;
}
