#include "cli/CommandList.h"
#include "cli/Commands.h"
#include "cli/Interrupt.h"
#include "cli/JsonValue.h"
#include "cli/ModelLookup.h"
#include "cli/SimulatorArguments.h"
#include "cli/TextOutput.h"
#include "cli/UsageError.h"
#include "platform/posix/PtyDeviceHost.h"

#include <filesystem>
#include <iostream>

namespace kel {

namespace {

struct Arguments {
    std::string model;
    std::string link;
    std::string formFile;
    SimulatorArguments simulator;
};

std::unique_ptr<PtyDeviceHost> hostOf(Simulator& reader, const std::string& link)
{
    try {
        return std::make_unique<PtyDeviceHost>(reader, PtyDeviceHost::Options{.link = link, .paceHost = true});
    } catch (const std::filesystem::filesystem_error& failure) {
        throw CommandFailure("The link " + link + " cannot be made: " + failure.code().message() + ".");
    } catch (const std::system_error& failure) {
        throw CommandFailure("No pseudo-terminal can be made: " + failure.code().message() + ".");
    }
}

int run(const Arguments& arguments)
{
    const kelReaderType model = modelNamed(arguments.model);
    const ScanForm form = arguments.formFile.empty() ? ScanForm() : readFormFile(arguments.formFile);
    const std::unique_ptr<Simulator> reader = arguments.simulator.make(model, form);
    const std::unique_ptr<PtyDeviceHost> host = hostOf(*reader, arguments.link);

    // When nobody reads the log any more, nobody is there for whom to go on.
    TextOutput output;
    const auto writeLine = [&](const std::string& line) {
        if (!output.write(line + "\n"))
            host->stop();
    };
    reader->onLog([&](const SheetRecord& record) { writeLine(toJson(record)); });
    reader->onError([&](const std::string& what) {
        writeLine(jsonText({{"event", "error"}, {"text", jsonValue(what)}}));
    });

    const InterruptNote interrupt([](void* running) { static_cast<PtyDeviceHost*>(running)->stop(); }, host.get());
    writeLine(jsonText({{"event", "ready"}, {"device", host->deviceFile()}}));
    host->run();

    if (InterruptNote::came())
        return kInterruptedStatus;
    if (output.failed())
        throw CommandFailure(output.problem());
    std::cerr << "kelreader: The simulated reader was unplugged." << std::endl;
    return reader->errors().empty() ? kDoneStatus : kFailedStatus;
}

} // namespace

void addSimulateCommand(Commands& commands)
{
    const auto arguments = std::make_shared<Arguments>();
    CLI::App& command = commands.add("simulate", "Plays a reader behind a pseudo-terminal, until Ctrl-C",
                                     [arguments] { return run(*arguments); });
    command.add_option("--model", arguments->model, "The model, by number or name")->required();
    command.add_option("--link", arguments->link, "Makes a symbolic link to the device")->type_name("PATH");
    command.add_option("--form", arguments->formFile, "The form of the sheets")->type_name("FILE");
    arguments->simulator.addTo(command);
    command.footer("The first line of output names the device to open; each line after it tells what became of a sheet,"
                   " or what the host did wrongly.");
}

} // namespace kel
