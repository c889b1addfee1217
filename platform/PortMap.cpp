#include "platform/PortMap.h"

#include <utility>

namespace kel {

namespace {

constexpr kelReaderRegistryKey kHive = kelReaderRegistryKeyCurrentUser;
constexpr const char* kSubKey = "Software\\KELReader81U\\Ports";

thread_local std::map<Int16, std::string> overrides;

bool isPort(Int16 port)
{
    return port >= PortMap::kFirstPort && port <= PortMap::kLastPort;
}

} // namespace

std::optional<std::string> PortMap::get(Int16 port) const
{
    if (!isPort(port))
        return std::nullopt;
    if (const auto found = overrides.find(port); found != overrides.end())
        return found->second;
    std::optional<RegistryValue> value = registry_.read(kHive, kSubKey, std::to_string(port));
    if (!value || value->type != RegistryType::Text || value->data.empty())
        return std::nullopt;
    return std::move(value->data);
}

bool PortMap::set(Int16 port, const std::string& device)
{
    return isPort(port) && !device.empty() &&
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

PortOverride::PortOverride(Int16 port, std::string device) : port_(port)
{
    if (const auto found = overrides.find(port); found != overrides.end())
        previous_ = found->second;
    overrides[port] = std::move(device);
}

PortOverride::~PortOverride()
{
    if (previous_)
        overrides[port_] = *previous_;
    else
        overrides.erase(port_);
}

} // namespace kel
