// SPDX-License-Identifier: MIT
#include "platform/SerialDevices.h"

#include <filesystem>
#include <fstream>
#include <libserialport.h>
#include <memory>
#include <system_error>

namespace kel {

namespace {

struct FreePortList {
    void operator()(sp_port** list) const { sp_free_port_list(list); }
};

std::string latencyFile(const std::string& device)
{
    std::error_code ignored;
    const std::filesystem::path real = std::filesystem::canonical(device, ignored);
    return "/sys/class/tty/" + real.filename().string() + "/device/latency_timer";
}

} // namespace

std::vector<SerialDevice> serialDevices()
{
    std::vector<SerialDevice> devices;
    sp_port** found = nullptr;
    if (sp_list_ports(&found) != SP_OK)
        return devices;
    const std::unique_ptr<sp_port*, FreePortList> list(found);
    for (sp_port** port = found; *port; ++port) {
        const std::string name = sp_get_port_name(*port);
        const char* description = sp_get_port_description(*port);
        const bool saysMore = description && std::filesystem::path(name).filename() != description;
        devices.push_back({stableName(name), saysMore ? description : ""});
    }
    return devices;
}

std::string stableName(const std::string& device, const std::string& folder)
{
    std::error_code ignored;
    for (std::filesystem::directory_iterator link(folder, ignored), end; !ignored && link != end;
         link.increment(ignored)) {
        if (sameDevice(link->path().string(), device))
            return link->path().string();
    }
    return device;
}

std::optional<std::string> usualDevice(Int16)
{
    return std::nullopt;
}

std::string wholeName(const std::string& device)
{
    std::error_code ignored;
    return std::filesystem::exists(device, ignored) ? std::filesystem::absolute(device).lexically_normal().string()
                                                    : device;
}

bool sameDevice(const std::string& a, const std::string& b)
{
    std::error_code ignored;
    return a == b || std::filesystem::equivalent(a, b, ignored);
}

std::optional<std::string> latencyTimer(const std::string& device)
{
    std::ifstream file(latencyFile(device));
    std::string text;
    return file >> text ? std::optional(text) : std::nullopt;
}

std::string latencyAdvice(const std::string& device)
{
    return "Lower it: echo 1 | sudo tee " + latencyFile(device);
}

} // namespace kel
