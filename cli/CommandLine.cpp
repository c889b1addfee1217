// SPDX-License-Identifier: MIT
#include "cli/CommandLine.h"

#include "cli/CommandList.h"
#include "cli/Commands.h"
#include "cli/Console.h"
#include "cli/Notice.h"
#include "cli/ThisSystem.h"
#include "cli/UsageError.h"
#include "formats/NearestNames.h"
#include "startup/Main.h"
#include "strings/LanguageDatabase.h"
#include "strings/LetterCase.h"
#include "types/Text.h"

#include <algorithm>
#include <iostream>
#include <system_error>

namespace kel {

namespace {

int complain(const std::string& sentence, int status)
{
    notice(sentence);
    return status;
}

/// What CLI11 has to say: help and version to standard output, a complaint as one line with a hint after it.
int answerParser(const CLI::App& app, const CLI::ParseError& error)
{
    if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success))
        return app.exit(error, std::cout, std::cerr);
    std::string command = "kelreader";
    for (const CLI::App* chosen = &app; !chosen->get_subcommands().empty();) {
        chosen = chosen->get_subcommands().front();
        command += " " + chosen->get_name();
    }
    return complain(std::string(error.what()) + "; '" + command + " --help' shows the usage.", kUsageStatus);
}

/// The parser itself would only say that it misses a command.
void demandKnownCommand(const CLI::App& app, const std::string& name)
{
    std::vector<std::string> known;
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; }))
        known.push_back(command->get_name());
    const bool isCommand = !name.empty() && !name.starts_with('-');
    if (isCommand && std::find(known.begin(), known.end(), name) == known.end())
        throw host::UsageError("There is no command '" + name + "'; " + nearestListed(nearestNames(name, known)) + ".");
}

/// A shell's variable that is not set gives an option an empty value, which is never what was meant. Only a line to
/// print may be empty.
void demandValues(const CLI::App& command)
{
    for (const CLI::Option* option : command.get_options()) {
        const auto isEmpty = [](const std::string& value) { return value.empty(); };
        if (option->nonpositional() && !option->get_name().starts_with("--print") &&
            std::any_of(option->results().begin(), option->results().end(), isEmpty))
            throw host::UsageError(option->get_name() + " has an empty value; leave it out, or give it one.");
    }
    for (const CLI::App* chosen : command.get_subcommands())
        demandValues(*chosen);
}

/// The arguments with "/L=NAME", which hosts take in any case of letters, in the spelling that the parser knows.
std::vector<std::string> argumentsOf(int argc, const char* const* argv)
{
    std::vector<std::string> arguments = programArguments(argc, argv);
    for (std::string& argument : arguments) {
        if (argument == "--")
            break;
        if (equalNoCase(argument.substr(0, 3), "/L="))
            argument.replace(0, 3, "--language=");
    }
    return arguments;
}

/// Has texts in a language whose name `wanted` begins with, in any case of letters.
void chooseLanguage(const std::string& wanted)
{
    if (wanted.empty())
        return;
    const std::vector<std::string> names = languageDatabase().languageNames();
    const auto isWanted = [&](const std::string& name) { return folded(wanted).starts_with(folded(name)); };
    if (!names.empty() && std::none_of(names.begin(), names.end(), isWanted))
        throw host::UsageError("There is no language '" + wanted + "'; the languages are " + listed(names, "and") +
                               ".");
    languageDatabase().askFor(wanted);
}

int parseAndRun(int argc, const char* const* argv)
{
    CLI::App app("Reads sheets with optical mark readers.", "kelreader");
    app.set_version_flag("--version", "kelreader " KEL_VERSION);
    app.require_subcommand(1);
    app.allow_windows_style_options(false); // the same command on all systems
    Commands commands(app);
#define KEL_ADD_COMMAND(add) add(commands);
    KEL_COMMANDS(KEL_ADD_COMMAND)
#undef KEL_ADD_COMMAND

    try {
        std::vector<std::string> arguments = argumentsOf(argc, argv);
        demandKnownCommand(app, arguments.empty() ? "" : arguments.front());
        std::reverse(arguments.begin(), arguments.end()); // as the parser takes them from the end
        app.parse(std::move(arguments));
        demandValues(app);
        chooseLanguage(commands.language());
        return commands.runChosen();
    } catch (const CLI::ParseError& error) {
        return answerParser(app, error);
    }
}

} // namespace

CLI::App& Commands::add(CLI::App& parent, const std::string& name, const std::string& description, Run run)
{
    CLI::App* command = parent.add_subcommand(name, description);
    addLanguage(*command);
    command->final_callback([this, command, run = std::move(run)] {
        // A command with others below it runs itself only when none of those was called.
        if (command->get_subcommands().empty())
            chosen_ = run;
    });
    return *command;
}

void Commands::addLanguage(CLI::App& command)
{
    command
        .add_option("--language", language_,
                    "Language of reports and of the options window, such as German (also: /L=NAME)")
        ->type_name("NAME");
}

void addFormat(CLI::App& command, std::string& format, const std::vector<std::string>& formats)
{
    format = formats.front();
    command.add_option("--format", format, "Output format")->check(CLI::IsMember(formats))->capture_default_str();
}

int runCommandLine(int argc, const char* const* argv)
{
    const Console console;
    try {
        Main(); // reads a setting, and may meet each of these
        return parseAndRun(argc, argv);
    } catch (const host::UsageError& error) {
        return complain(error.what(), kUsageStatus);
    } catch (const std::bad_alloc&) {
        return complain("There is not enough memory; " + std::string(kMemoryAdvice), kFailedStatus);
    } catch (const std::system_error& failure) {
        if (failure.code() == std::errc::resource_unavailable_try_again)
            return complain("The system gives this process no further thread; " + std::string(kThreadAdvice),
                            kFailedStatus);
        return complain(failure.what(), kFailedStatus);
    } catch (const std::exception& failure) {
        return complain(failure.what(), kFailedStatus);
    }
}

} // namespace kel
