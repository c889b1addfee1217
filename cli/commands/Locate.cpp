// SPDX-License-Identifier: MIT
#include "cli/CommandList.h"
#include "cli/Commands.h"
#include "cli/Notice.h"
#include "cli/ReaderOptions.h"
#include "cli/SearchReports.h"
#include "host/ModelLookup.h"
#include "host/PropertyTable.h"
#include "host/TextOutput.h"
#include "types/Text.h"

namespace kel {

namespace {

struct LocateArguments {
    std::string model;
    Int16 startPort = 0;
    std::vector<std::string> assignments;
};

int run(const LocateArguments& arguments)
{
    clsKELReader reader;
    const SearchReports reports;
    reader.LoadDefaults(host::modelNamed(arguments.model));
    for (const std::string& assignment : arguments.assignments)
        host::applyAssignment(reader, assignment);
    if (reader.Locate(arguments.startPort)) {
        host::TextOutput output;
        output.writeOrFail(CStr(reader.Port()) + "\n");
        return kDoneStatus;
    }
    reports.tellOfDevices();
    if (!reader.Profiles()->Item(CStr(reader.ReaderType()))->LocateEnabled())
        notice(reader.ReaderName() + " cannot be searched for; name its port.");
    else
        notice("No " + reader.ReaderName() +
               " answered at any port. Is it switched on and connected, and does its port have a device ('kelreader "
               "ports')?");
    return kFailedStatus;
}

} // namespace

void addLocateCommand(Commands& commands)
{
    const auto arguments = std::make_shared<LocateArguments>();
    CLI::App& command = commands.add("locate", "Searches the ports for a reader and prints its port number",
                                     [arguments] { return run(*arguments); });
    command.add_option("--model", arguments->model, "Model number, name, or part of the name")->required();
    command.add_option("--port", arguments->startPort, "Port to search first, 1 to 16");
    addAssignments(command, arguments->assignments, "Sets a property of the reader, such as a line setting");
}

} // namespace kel
