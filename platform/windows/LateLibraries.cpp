// SPDX-License-Identifier: MIT
// Libraries of the system that the options dialog and a list of ports alone call are loaded then: a host that creates a
// reader would wait for them longer than for the component. The pointers here take the place of those that an import
// library brings, by their names.

#include <windows.h>

// The system's own headers come in this order.
#include <commctrl.h>
#include <setupapi.h>
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

HDEVINFO WINAPI getClassDevices(const GUID* kind, PCWSTR enumerator, HWND parent, DWORD flags)
{
    static auto* const function = reinterpret_cast<HDEVINFO(WINAPI*)(const GUID*, PCWSTR, HWND, DWORD)>(
        functionOf(L"setupapi.dll", "SetupDiGetClassDevsW"));
    return function ? function(kind, enumerator, parent, flags) : INVALID_HANDLE_VALUE;
}

BOOL WINAPI enumDeviceInfo(HDEVINFO devices, DWORD index, PSP_DEVINFO_DATA device)
{
    static auto* const function = reinterpret_cast<BOOL(WINAPI*)(HDEVINFO, DWORD, PSP_DEVINFO_DATA)>(
        functionOf(L"setupapi.dll", "SetupDiEnumDeviceInfo"));
    return function ? function(devices, index, device) : FALSE;
}

HKEY WINAPI openDeviceKey(HDEVINFO devices, PSP_DEVINFO_DATA device, DWORD scope, DWORD profile, DWORD kind,
                          REGSAM access)
{
    static auto* const function =
        reinterpret_cast<HKEY(WINAPI*)(HDEVINFO, PSP_DEVINFO_DATA, DWORD, DWORD, DWORD, REGSAM)>(
            functionOf(L"setupapi.dll", "SetupDiOpenDevRegKey"));
    return function ? function(devices, device, scope, profile, kind, access) : static_cast<HKEY>(INVALID_HANDLE_VALUE);
}

BOOL WINAPI getDeviceProperty(HDEVINFO devices, PSP_DEVINFO_DATA device, DWORD property, PDWORD type, PBYTE buffer,
                              DWORD size, PDWORD needed)
{
    static auto* const function =
        reinterpret_cast<BOOL(WINAPI*)(HDEVINFO, PSP_DEVINFO_DATA, DWORD, PDWORD, PBYTE, DWORD, PDWORD)>(
            functionOf(L"setupapi.dll", "SetupDiGetDeviceRegistryPropertyW"));
    return function ? function(devices, device, property, type, buffer, size, needed) : FALSE;
}

BOOL WINAPI destroyDeviceInfo(HDEVINFO devices)
{
    static auto* const function =
        reinterpret_cast<BOOL(WINAPI*)(HDEVINFO)>(functionOf(L"setupapi.dll", "SetupDiDestroyDeviceInfoList"));
    return function ? function(devices) : FALSE;
}

} // namespace

extern "C" {
extern const decltype(&initCommonControls) initCommonControlsPointer KEL_POINTER_TO(InitCommonControlsEx, 4);
const decltype(&initCommonControls) initCommonControlsPointer = &initCommonControls;
extern const decltype(&shellExecute) shellExecutePointer KEL_POINTER_TO(ShellExecuteW, 24);
const decltype(&shellExecute) shellExecutePointer = &shellExecute;
extern const decltype(&getClassDevices) getClassDevicesPointer KEL_POINTER_TO(SetupDiGetClassDevsW, 16);
const decltype(&getClassDevices) getClassDevicesPointer = &getClassDevices;
extern const decltype(&enumDeviceInfo) enumDeviceInfoPointer KEL_POINTER_TO(SetupDiEnumDeviceInfo, 12);
const decltype(&enumDeviceInfo) enumDeviceInfoPointer = &enumDeviceInfo;
extern const decltype(&openDeviceKey) openDeviceKeyPointer KEL_POINTER_TO(SetupDiOpenDevRegKey, 24);
const decltype(&openDeviceKey) openDeviceKeyPointer = &openDeviceKey;
extern const decltype(&getDeviceProperty) getDevicePropertyPointer KEL_POINTER_TO(SetupDiGetDeviceRegistryPropertyW,
                                                                                  28);
const decltype(&getDeviceProperty) getDevicePropertyPointer = &getDeviceProperty;
extern const decltype(&destroyDeviceInfo) destroyDeviceInfoPointer KEL_POINTER_TO(SetupDiDestroyDeviceInfoList, 4);
const decltype(&destroyDeviceInfo) destroyDeviceInfoPointer = &destroyDeviceInfo;
}
