// SPDX-License-Identifier: MIT
#include "cli/CommandList.h"
#include "cli/Commands.h"
#include "cli/PlayForOthers.h"
#include "cli/SimulatorArguments.h"
#include "cli/SiteFaultTable.h"
#include "cli/UsageError.h"
#include "host/ModelLookup.h"
#include "host/TextOutput.h"
#include "simulators/SimulatorTable.h"
#include "types/Path.h"

namespace kel {

namespace {

struct SimulateArguments {
    std::string model;
    bool listFaults = false;
    std::string link;
    std::string formFile;
    SimulatorArguments simulator;
};

int listFaults(const std::string& model)
{
    host::TextOutput output;
    output.writeOrFail(
        siteFaultTable(model.empty() ? std::nullopt : std::optional(simulatedFamily(host::modelNamed(model)))));
    return kDoneStatus;
}

int run(const SimulateArguments& arguments)
{
    if (arguments.listFaults)
        return listFaults(arguments.model);
    if (arguments.model.empty())
        throw host::UsageError("--model is required; 'kelreader simulate --help' shows the usage.");
    const kelReaderType model = host::modelNamed(arguments.model);
    const host::Form form = arguments.formFile.empty() ? host::Form() : host::readFormFile(pathOf(arguments.formFile));
    const PlayedModel played{model, form, arguments.simulator.simulation()};
    return host::isUsbModel(model) ? playLibrary(played, arguments.link) : playReader(played, arguments.link);
}

} // namespace

void addSimulateCommand(Commands& commands)
{
    const auto arguments = std::make_shared<SimulateArguments>();
    CLI::App& command = commands.add("simulate", "Simulates a reader for other programs until Ctrl-C",
                                     [arguments] { return run(*arguments); });
    command.add_option("--model", arguments->model, "Model, by number or name");
    command.add_flag("--list-faults", arguments->listFaults,
                     "Lists the site faults that --fault can simulate; with --model, those of that model");
    command.add_option("--link", arguments->link, "Creates a symbolic link to the device or library")
        ->type_name("PATH");
    command.add_option("--form", arguments->formFile, "Form of the sheets (JSON)")->type_name("FILE");
    arguments->simulator.addTo(command);
    command.footer(
        "The first line of output names the device to open, or for a USB model the library to load ('kelreader scan "
        "--omrapi'); each line after it reports a sheet, or an error of the host. Every program that "
        "loads the library finds all the sheets.");
}

} // namespace kel
