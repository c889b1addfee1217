// SPDX-License-Identifier: MIT
#include "platform/SerialDevices.h"

#include "platform/windows/WindowsText.h"
#include "types/Text.h"

#include <algorithm>
#include <array>
#include <windows.h>

// The system's own headers come in this order.
#include <devguid.h>
#include <setupapi.h>

namespace kel {

namespace {

constexpr DWORD kLongestText = 256;

/// A text value of a key that is open.
std::wstring textValue(HKEY key, const wchar_t* name)
{
    std::array<wchar_t, kLongestText> text{};
    DWORD size = sizeof text;
    if (::RegGetValueW(key, nullptr, name, RRF_RT_REG_SZ, nullptr, text.data(), &size) != ERROR_SUCCESS)
        return {};
    return text.data();
}

/// Calls `visit` for each port that has a device which describes itself: with the name of the port, what the system
/// calls it for people, "USB Serial Port (COM3)", and the key of the device's settings.
template <class Visit>
void forEachDescribedPort(Visit&& visit)
{
    const HDEVINFO devices = ::SetupDiGetClassDevsW(&GUID_DEVCLASS_PORTS, nullptr, nullptr, DIGCF_PRESENT);
    if (devices == INVALID_HANDLE_VALUE)
        return;
    SP_DEVINFO_DATA device{};
    device.cbSize = sizeof device;
    for (DWORD index = 0; ::SetupDiEnumDeviceInfo(devices, index, &device); ++index) {
        const HKEY key = ::SetupDiOpenDevRegKey(devices, &device, DICS_FLAG_GLOBAL, 0, DIREG_DEV, KEY_QUERY_VALUE);
        if (key == INVALID_HANDLE_VALUE)
            continue;
        std::array<wchar_t, kLongestText> text{};
        ::SetupDiGetDeviceRegistryPropertyW(devices, &device, SPDRP_FRIENDLYNAME, nullptr,
                                            reinterpret_cast<BYTE*>(text.data()), sizeof text - sizeof(wchar_t),
                                            nullptr);
        visit(utf8Text(textValue(key, L"PortName")), utf8Text(text.data()), key);
        ::RegCloseKey(key);
    }
    ::SetupDiDestroyDeviceInfoList(devices);
}

/// The ports that drivers have made, with or without a device that describes itself.
std::vector<std::string> portNames()
{
    std::vector<std::string> names;
    HKEY key = nullptr;
    if (::RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"HARDWARE\\DEVICEMAP\\SERIALCOMM", 0, KEY_READ, &key) != ERROR_SUCCESS)
        return names;
    for (DWORD index = 0;; ++index) {
        std::array<wchar_t, kLongestText> name{};
        DWORD length = kLongestText;
        if (::RegEnumValueW(key, index, name.data(), &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
            break;
        names.push_back(utf8Text(textValue(key, name.data())));
    }
    ::RegCloseKey(key);
    return names;
}

/// COM3 before COM12.
bool comesBefore(const SerialDevice& a, const SerialDevice& b)
{
    return std::pair(a.name.size(), a.name) < std::pair(b.name.size(), b.name);
}

} // namespace

std::vector<SerialDevice> serialDevices()
{
    std::vector<SerialDevice> devices;
    forEachDescribedPort([&](const std::string& name, const std::string& description, HKEY) {
        if (name.starts_with("COM")) // printers' ports are of this class, too
            devices.push_back({name, description.substr(0, description.rfind(" (" + name))});
    });
    for (const std::string& name : portNames()) {
        const auto isIt = [&](const SerialDevice& device) { return sameDevice(device.name, name); };
        if (!name.empty() && std::none_of(devices.begin(), devices.end(), isIt))
            devices.push_back({name, ""});
    }
    std::sort(devices.begin(), devices.end(), &comesBefore);
    return devices;
}

std::string stableName(const std::string& device, const std::string&)
{
    return device; // a device keeps its number wherever it is plugged in
}

std::optional<std::string> usualDevice(Int16 port)
{
    // The drivers' list is not whole: a session may have ports of its own, such as those of a remote desktop.
    const std::string name = "COM" + CStr(port);
    std::array<wchar_t, kLongestText> target{};
    const bool isThere = ::QueryDosDeviceW(wideText(name).c_str(), target.data(), kLongestText) != 0 ||
                         ::GetLastError() == ERROR_INSUFFICIENT_BUFFER;
    return isThere ? std::optional(name) : std::nullopt;
}

std::string wholeName(const std::string& device)
{
    return device;
}

bool sameDevice(const std::string& a, const std::string& b)
{
    return equalNoCase(a, b);
}

/// What the drivers of FTDI's adapters keep.
std::optional<std::string> latencyTimer(const std::string& device)
{
    std::optional<std::string> timer;
    forEachDescribedPort([&](const std::string& name, const std::string&, HKEY key) {
        DWORD milliseconds = 0;
        DWORD size = sizeof milliseconds;
        if (sameDevice(name, device) && ::RegGetValueW(key, nullptr, L"LatencyTimer", RRF_RT_REG_DWORD, nullptr,
                                                       &milliseconds, &size) == ERROR_SUCCESS)
            timer = std::to_string(milliseconds);
    });
    return timer;
}

std::string latencyAdvice(const std::string& device)
{
    return "Lower it to 1: in the Device Manager, " + device + ", Port Settings, Advanced, Latency Timer.";
}

} // namespace kel
