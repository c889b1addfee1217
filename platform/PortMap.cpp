// SPDX-License-Identifier: MIT
#include "platform/PortMap.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace kel {

namespace {

constexpr kelReaderRegistryKey kHive = kelReaderRegistryKeyCurrentUser;
constexpr const char* kSubKey = "Software\\KELReader81U\\Ports";

thread_local std::vector<const PortOverride*> overrides; // the latest last

bool isPort(Int16 port)
{
    return port >= PortMap::kFirstPort && port <= PortMap::kLastPort;
}

} // namespace

std::optional<std::string> PortMap::get(Int16 port) const
{
    if (!isPort(port))
        return std::nullopt;
    const auto found = std::find_if(overrides.rbegin(), overrides.rend(),
                                    [&](const PortOverride* candidate) { return candidate->port_ == port; });
    if (found != overrides.rend())
        return (*found)->device_;
    std::optional<RegistryValue> value = registry_.read(kHive, kSubKey, std::to_string(port));
    if (!value || value->type != RegistryType::Text)
        return std::nullopt;
    std::string device = std::move(value->data);
    device.resize(std::min(device.size(), device.find('\0'))); // a registry may keep the terminator
    return device.empty() ? std::nullopt : std::optional(std::move(device));
}

bool PortMap::set(Int16 port, const std::string& device)
{
    return isPort(port) && !device.empty() && device.size() <= kLongestDevice &&
           registry_.write(kHive, kSubKey, std::to_string(port), {RegistryType::Text, device});
}

bool PortMap::clear(Int16 port)
{
    return isPort(port) && registry_.remove(kHive, kSubKey, std::to_string(port));
}

std::map<Int16, std::string> PortMap::all() const
{
    std::map<Int16, std::string> devices;
    for (Int16 port = kFirstPort; port <= kLastPort; ++port) {
        if (std::optional<std::string> device = get(port))
            devices.emplace(port, std::move(*device));
    }
    return devices;
}

PortOverride::PortOverride(Int16 port, std::string device) : port_(port), device_(std::move(device))
{
    overrides.push_back(this);
}

PortOverride::~PortOverride()
{
    std::erase(overrides, this);
}

} // namespace kel
