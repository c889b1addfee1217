// SPDX-License-Identifier: MIT
#include "cli/CommandList.h"
#include "cli/Commands.h"
#include "cli/Interrupt.h"
#include "cli/SimulatorArguments.h"
#include "cli/SiteFaultTable.h"
#include "cli/UsageError.h"
#include "formats/JsonValue.h"
#include "host/ModelLookup.h"
#include "host/SimulatedLibraryHost.h"
#include "host/SimulatorParts.h"
#include "host/TextOutput.h"
#include "simulators/SimulatorTable.h"
#include "simulators/pseudo_terminal/PtyDeviceHost.h"

#include <chrono>
#include <filesystem>
#include <iostream>
#include <thread>

namespace kel {

namespace {

constexpr std::chrono::milliseconds kLookForNews{50};

struct Arguments {
    std::string model;
    bool listFaults = false;
    std::string link;
    std::string formFile;
    SimulatorArguments simulator;
};

/// Makes what may fail for want of a place: a link to it, or itself.
template <class Make>
auto atLink(const std::string& link, Make&& make)
{
    try {
        return make();
    } catch (const std::filesystem::filesystem_error& failure) {
        if (link.empty())
            throw CommandFailure("No temporary folder can be made: " + failure.code().message() + ".");
        throw CommandFailure("The link " + link + " cannot be made: " + failure.code().message() + ".");
    } catch (const std::system_error& failure) {
        throw CommandFailure("No pseudo-terminal can be made: " + failure.code().message() + ".");
    }
}

std::string errorLine(const std::string& what)
{
    return jsonText({{"event", "error"}, {"text", jsonValue(what)}}) + "\n";
}

int playReader(const Arguments& arguments, kelReaderType model, const host::Form& form)
{
    const std::unique_ptr<Simulator> reader = host::makeSimulator(arguments.simulator.simulation(), model, form);
    const auto host = atLink(arguments.link, [&] {
        return std::make_unique<PtyDeviceHost>(*reader, PtyDeviceHost::Options{.link = arguments.link});
    });

    // When nobody reads the log any more, nobody is there for whom to go on.
    host::TextOutput output;
    const auto write = [&](const std::string& line) {
        if (!output.write(line))
            host->stop();
    };
    reader->onLog([&](const SheetRecord& record) { write(toJson(record) + "\n"); });
    reader->onError([&](const std::string& what) { write(errorLine(what)); });

    const InterruptNote interrupt([](void* running) { static_cast<PtyDeviceHost*>(running)->stop(); }, host.get());
    write(jsonText({{"event", "ready"}, {"device", host->deviceFile()}}) + "\n");
    host->run();

    if (InterruptNote::came())
        return kInterruptedStatus;
    if (output.failed())
        throw CommandFailure(output.problem());
    std::cerr << "kelreader: The simulated reader was unplugged." << std::endl;
    return reader->errors().empty() ? kDoneStatus : kFailedStatus;
}

/// A USB model: a library to load lies where the first line says, and what happens in it is told as it comes.
int playLibrary(const Arguments& arguments, const host::Form& form)
{
    const OmrSimulationState state = host::omrState(arguments.simulator.simulation(), form);
    const auto host =
        atLink(arguments.link, [&] { return std::make_unique<host::SimulatedLibraryHost>(state, arguments.link); });

    host::TextOutput output;
    const InterruptNote interrupt;
    output.write(jsonText({{"event", "ready"}, {"library", host->library().string()}}) + "\n");
    while (!InterruptNote::came() && !output.failed()) {
        std::this_thread::sleep_for(kLookForNews);
        for (const host::SimulatedLibraryHost::News& news : host->news())
            output.write(news.isFault ? errorLine(news.text) : news.text + "\n");
    }
    if (InterruptNote::came())
        return kInterruptedStatus;
    throw CommandFailure(output.problem());
}

int listFaults(const std::string& model)
{
    host::TextOutput output;
    output.writeOrFail(
        siteFaultTable(model.empty() ? std::nullopt : std::optional(simulatedFamily(host::modelNamed(model)))));
    return kDoneStatus;
}

int run(const Arguments& arguments)
{
    if (arguments.listFaults)
        return listFaults(arguments.model);
    if (arguments.model.empty())
        throw host::UsageError("--model is required; 'kelreader simulate --help' tells what there is.");
    const kelReaderType model = host::modelNamed(arguments.model);
    const host::Form form = arguments.formFile.empty() ? host::Form() : host::readFormFile(arguments.formFile);
    return host::isUsbModel(model) ? playLibrary(arguments, form) : playReader(arguments, model, form);
}

} // namespace

void addSimulateCommand(Commands& commands)
{
    const auto arguments = std::make_shared<Arguments>();
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
        "--omrapi'); each line after it tells what became of a sheet, or what the host did wrongly. Every program that "
        "loads the library finds all the sheets.");
}

} // namespace kel
