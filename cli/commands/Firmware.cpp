// SPDX-License-Identifier: MIT
#include "cli/CommandList.h"
#include "cli/Commands.h"
#include "cli/Notice.h"
#include "cli/ReaderOptions.h"
#include "cli/SearchReports.h"
#include "host/ModelLookup.h"
#include "host/PropertyTable.h"
#include "host/TextOutput.h"
#include "platform/PortMap.h"
#include "types/Text.h"

#include <optional>

namespace kel {

namespace {

struct FirmwareArguments {
    std::string model;
    std::optional<Int16> port;
    std::string device;
    std::vector<std::string> assignments;
};

int run(const FirmwareArguments& arguments)
{
    const Int16 port = arguments.port.value_or(PortMap::kFirstPort);
    std::optional<PortOverride> line;
    if (!arguments.device.empty())
        line.emplace(port, arguments.device);
    clsKELReader reader;
    const SearchReports reports;
    reader.LoadDefaults(host::modelNamed(arguments.model));
    reader.Port(port);
    for (const std::string& assignment : arguments.assignments)
        host::applyAssignment(reader, assignment);
    std::string version;
    if (reader.Firmware(version)) {
        host::TextOutput output;
        output.writeOrFail(version + "\n");
        return kDoneStatus;
    }
    reports.tell();
    if (!reader.Profiles()->Item(CStr(reader.ReaderType()))->FirmwareEnabled())
        notice(reader.ReaderName() + " does not report its firmware version.");
    else
        notice("No " + reader.ReaderName() + " reported its firmware version at port " + std::to_string(reader.Port()) +
               ". Is it switched on and connected?");
    return kFailedStatus;
}

} // namespace

void addFirmwareCommand(Commands& commands)
{
    const auto arguments = std::make_shared<FirmwareArguments>();
    CLI::App& command = commands.add("firmware", "Asks a reader for its firmware version and prints it",
                                     [arguments] { return run(*arguments); });
    command.add_option("--model", arguments->model, "Model number, name, or part of the name")->required();
    addPort(command, arguments->port, arguments->device);
    addAssignments(command, arguments->assignments, "Sets a property of the reader, such as a line setting");
}

} // namespace kel
