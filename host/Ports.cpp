// SPDX-License-Identifier: MIT
#include "host/Ports.h"

#include "platform/Platform.h"
#include "platform/PortLook.h"
#include "platform/PortMap.h"
#include "platform/SerialDevices.h"

#include <algorithm>

namespace kel::host {

namespace {

/// The part that is shown of a name that is too long for a device.
constexpr std::size_t kBeginning = 40;

/// Notes whether a line opens, and why not. The reason of a device without a number names none.
void note(const PortLook& look, PortState& state)
{
    const FailedPort& port = look.port;
    state.opens = look.opens;
    if (state.port || port.cause.empty())
        state.reason = look.reason;
    else
        state.reason = port.device + " " + port.cause + (port.remedy.empty() ? "." : ". " + port.remedy);
}

Int16 firstFreePort(const PortMap& map)
{
    for (Int16 port = PortMap::kFirstPort; port <= PortMap::kLastPort; ++port) {
        if (!map.get(port))
            return port;
    }
    return PortMap::kLastPort;
}

PortState stateOfNumber(Int16 port)
{
    PortState state;
    state.port = port;
    state.device = deviceOfPort(port);
    if (state.device)
        note(lookAtPort(port), state);
    if (state.device && state.device->size() > PortMap::kLongestDevice)
        state.device = state.device->substr(0, kBeginning) + "...";
    return state;
}

/// A device without a port number is tried under a number that could be assigned to it.
PortState stateOfDevice(const SerialDevice& device, Int16 iFreePort)
{
    PortState state;
    state.device = device.name;
    state.description = device.description;
    note(lookAtDevice(device.name, iFreePort), state);
    return state;
}

} // namespace

std::vector<PortState> portStates()
{
    const PortMap map(platform().registry());
    std::vector<PortState> ports;
    for (Int16 port = PortMap::kFirstPort; port <= PortMap::kLastPort; ++port)
        ports.push_back(stateOfNumber(port));

    const Int16 iFreePort = firstFreePort(map);
    for (const SerialDevice& device : serialDevices()) {
        const auto numbered = std::find_if(ports.begin(), ports.end(), [&](const PortState& state) {
            return state.port && state.device && sameDevice(*state.device, device.name);
        });
        if (numbered == ports.end())
            ports.push_back(stateOfDevice(device, iFreePort));
        else
            numbered->description = device.description;
    }
    return ports;
}

std::optional<std::string> deviceOf(Int16 port)
{
    return PortMap(platform().registry()).get(port);
}

bool mapPort(Int16 port, const std::string& device)
{
    return PortMap(platform().registry()).set(port, device);
}

bool unmapPort(Int16 port)
{
    return PortMap(platform().registry()).clear(port);
}

} // namespace kel::host
