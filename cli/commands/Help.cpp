// SPDX-License-Identifier: MIT
#include "cli/CommandList.h"
#include "cli/Commands.h"
#include "cli/UsageError.h"
#include "formats/NearestNames.h"
#include "host/TextOutput.h"

namespace kel {

namespace {

/// The command below `parent` that bears a name.
CLI::App& commandNamed(CLI::App& parent, const std::string& name)
{
    std::vector<std::string> known;
    for (CLI::App* command : parent.get_subcommands([](const CLI::App*) { return true; })) {
        if (command->get_name() == name)
            return *command;
        known.push_back(command->get_name());
    }
    if (known.empty())
        throw host::UsageError("'" + parent.get_name() + "' has no commands of its own.");
    throw host::UsageError("There is no command '" + name + "'; " + nearestListed(nearestNames(name, known)) + ".");
}

int run(CLI::App& program, const std::vector<std::string>& words)
{
    CLI::App* command = &program;
    std::string path = program.get_name();
    for (const std::string& given : words) {
        for (const std::string& word : CLI::detail::split(given, ' ')) { // 'ports set' may come as one
            command = &commandNamed(*command, word);
            path += " " + word;
        }
    }
    // Its own help() would describe the command that was called, which is this one.
    host::TextOutput().writeOrFail(command->get_formatter()->make_help(command, path, CLI::AppFormatMode::Normal));
    return kDoneStatus;
}

} // namespace

void addHelpCommand(Commands& commands)
{
    const auto words = std::make_shared<std::vector<std::string>>();
    CLI::App& program = commands.program();
    CLI::App& command =
        commands.add("help", "Shows help for a command", [words, &program] { return run(program, *words); });
    command.add_option("command", *words, "Name of a command, such as scan or 'ports set'");
}

} // namespace kel
