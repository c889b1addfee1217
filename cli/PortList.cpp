// SPDX-License-Identifier: MIT
#include "cli/PortList.h"

#include "formats/Columns.h"
#include "formats/JsonValue.h"
#include "types/Text.h"

#include <algorithm>

namespace kel {

std::string portsAsTable(const std::vector<host::PortState>& ports)
{
    std::size_t width = 6;
    std::optional<Int16> iFreePort;
    for (const host::PortState& state : ports) {
        width = std::max(width, state.device ? state.device->size() : 0);
        if (state.port && !state.device && !iFreePort)
            iFreePort = state.port;
    }

    std::string text = "Port  " + padded("Device", width) + "  State\n";
    for (const host::PortState& state : ports) {
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

std::string portsAsJson(const std::vector<host::PortState>& ports)
{
    std::string text = "[";
    for (const host::PortState& state : ports) {
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
