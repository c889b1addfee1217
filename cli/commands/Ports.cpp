// SPDX-License-Identifier: MIT
#include "cli/CommandList.h"
#include "cli/Commands.h"
#include "cli/Notice.h"
#include "cli/PortList.h"
#include "cli/UsageError.h"
#include "host/TextOutput.h"
#include "platform/PortMap.h"
#include "platform/SerialDevices.h"
#include "types/Text.h"

#include <filesystem>

namespace kel {

namespace {

struct PortsArguments {
    std::string format;
    Int32 port = 0;
    std::string device;
};

int list(const PortsArguments& arguments)
{
    const std::vector<host::PortState> ports = host::portStates();
    host::TextOutput output;
    output.writeOrFail(arguments.format == "json" ? portsAsJson(ports) : portsAsTable(ports));
    return kDoneStatus;
}

Int16 portNumber(const PortsArguments& arguments)
{
    if (arguments.port < host::kFirstPort || arguments.port > host::kLastPort)
        throw host::UsageError("Port numbers are " + CStr(host::kFirstPort) + " to " + CStr(host::kLastPort) +
                               ", not " + CStr(arguments.port) + ".");
    return static_cast<Int16>(arguments.port);
}

int set(const PortsArguments& arguments)
{
    const Int16 iPort = portNumber(arguments);
    if (arguments.device.empty())
        throw host::UsageError("The name of the device is empty; 'kelreader ports' lists the devices that are there.");
    const std::string device = wholeName(arguments.device);
    if (device.size() > PortMap::kLongestDevice)
        throw host::UsageError("The name of the device is " + CStr(static_cast<std::int64_t>(device.size())) +
                               " bytes long; the limit is " + CStr(static_cast<std::int64_t>(PortMap::kLongestDevice)) +
                               ".");
    if (!host::mapPort(iPort, device))
        throw CommandFailure("The settings store cannot be written, so port " + CStr(iPort) + " is unchanged.");

    std::error_code ignored;
    if (device.starts_with('/') && !std::filesystem::exists(device, ignored))
        notice(device + " is not there now.");
    else if (const std::string stable = stableName(device); stable != device)
        notice(device + " may be another device after the next start; " + stable + " stays the same.");
    return kDoneStatus;
}

int clear(const PortsArguments& arguments)
{
    const Int16 iPort = portNumber(arguments);
    if (!host::deviceOf(iPort)) {
        notice("Port " + std::to_string(iPort) + " has no device.");
        return kDoneStatus;
    }
    if (!host::unmapPort(iPort))
        throw CommandFailure("The settings store cannot be written, so port " + CStr(iPort) + " is unchanged.");
    return kDoneStatus;
}

} // namespace

void addPortsCommand(Commands& commands)
{
    const auto arguments = std::make_shared<PortsArguments>();
    CLI::App& ports = commands.add("ports", "Lists port numbers and serial devices, and whether each one opens",
                                   [arguments] { return list(*arguments); });
    addFormat(ports, arguments->format, {"table", "json"});

    CLI::App& setPort =
        commands.add(ports, "set", "Assigns a port number to a device", [arguments] { return set(*arguments); });
    setPort.add_option("number", arguments->port, "Port number, 1 to 16")->required();
    setPort.add_option("device", arguments->device, "Device, such as /dev/serial/by-id/..., on Windows COM23")
        ->required();

    CLI::App& clearPort =
        commands.add(ports, "clear", "Removes a port number's device", [arguments] { return clear(*arguments); });
    clearPort.add_option("number", arguments->port, "Port number, 1 to 16")->required();
}

} // namespace kel
