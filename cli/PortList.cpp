#include "cli/PortList.h"

#include "cli/JsonValue.h"
#include "cli/SerialDevices.h"
#include "platform/Platform.h"
#include "types/Text.h"

#include <algorithm>

namespace kel {

namespace {

/// Opens the device of a port, and notes why that fails.
void tryToOpen(Int16 port, PortState& state)
{
    try {
        const auto control = platform().newSerialControl();
        control->CommPort(port);
        control->PortOpen(True);
        control->PortOpen(False);
        state.opens = true;
    } catch (const RuntimeFailure& failure) {
        state.reason = failure.text();
    }
}

Int16 firstFreePort(const PortMap& map)
{
    for (Int16 port = PortMap::kFirstPort; port <= PortMap::kLastPort; ++port) {
        if (!map.get(port))
            return port;
    }
    return PortMap::kLastPort;
}

PortState stateOfNumber(const PortMap& map, Int16 port)
{
    PortState state;
    state.port = port;
    state.device = map.get(port);
    if (state.device)
        tryToOpen(port, state);
    return state;
}

/// A device without a number is tried under the number that it could be given.
PortState stateOfDevice(const SerialDevice& device, Int16 iFreePort)
{
    PortState state;
    state.device = device.name;
    state.description = device.description;
    const PortOverride inItsPlace(iFreePort, device.name);
    tryToOpen(iFreePort, state);
    state.reason = replaceAll(state.reason, "Port " + CStr(iFreePort) + " (" + device.name + ")", device.name);
    return state;
}

std::string padded(std::string text, std::size_t width)
{
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

} // namespace

std::vector<PortState> portStates(const PortMap& map)
{
    std::vector<PortState> ports;
    for (Int16 port = PortMap::kFirstPort; port <= PortMap::kLastPort; ++port)
        ports.push_back(stateOfNumber(map, port));

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

std::string portsAsTable(const std::vector<PortState>& ports)
{
    std::size_t width = 6;
    std::optional<Int16> iFreePort;
    for (const PortState& state : ports) {
        width = std::max(width, state.device ? state.device->size() : 0);
        if (state.port && !state.device && !iFreePort)
            iFreePort = state.port;
    }

    std::string text = "Port  " + padded("Device", width) + "  State\n";
    for (const PortState& state : ports) {
        const std::string number = state.port ? CStr(*state.port) : "";
        std::string line =
            std::string(4 - number.size(), ' ') + number + "  " + padded(state.device.value_or("-"), width) + "  ";
        if (!state.device)
            line += "no device";
        else
            line += state.opens ? "opens" : state.reason;
        if (!state.description.empty())
            line += " [" + validUtf8(state.description) + "]";
        text += line + "\n";
        if (!state.port && state.opens && iFreePort)
            text += std::string(6, ' ') + "give it a number: kelreader ports set " + CStr(*iFreePort) + " " +
                    *state.device + "\n";
    }
    return text;
}

std::string portsAsJson(const std::vector<PortState>& ports)
{
    std::string text = "[";
    for (const PortState& state : ports) {
        const Json line = {{"port", state.port ? Json(*state.port) : Json()},
                           {"device", state.device ? jsonValue(*state.device) : Json()},
                           {"description", jsonValue(state.description)},
                           {"opens", state.opens},
                           {"reason", jsonValue(state.reason)}};
        text += (text.size() == 1 ? "\n" : ",\n") + jsonText(line);
    }
    return text + "\n]\n";
}

} // namespace kel
