// SPDX-License-Identifier: MIT
#include "host/Replay.h"
#include "cli/CommandList.h"
#include "cli/Commands.h"
#include "cli/Interrupt.h"
#include "cli/Notice.h"
#include "cli/ReaderOptions.h"
#include "cli/ScanOutput.h"
#include "cli/UsageError.h"
#include "host/JsonFile.h"
#include "types/Path.h"

namespace kel {

namespace {

struct ReplayArguments {
    std::string file;
    std::string formFile;
    std::vector<std::string> assignments;
    std::string format;
    bool fields = false;
    std::string outFile;
};

/// Reports where the session differed from its transcript; false if it did.
bool tellDifferences(const host::Replay& replay)
{
    for (const std::string& difference : replay.differences())
        notice("The session differs from its transcript. " + difference);
    if (!replay.differences().empty())
        return false;
    const std::string unsent = replay.unsent();
    if (!unsent.empty())
        notice("The session ended before the transcript did. " + unsent);
    return unsent.empty();
}

int run(const ReplayArguments& arguments)
{
    host::Replay replay(host::readGivenFile(pathOf(arguments.file), host::kTranscriptFile), arguments.file);
    if (!arguments.formFile.empty())
        replay.request().form = host::readFormFile(pathOf(arguments.formFile));
    std::vector<std::string>& assignments = replay.request().assignments;
    assignments.insert(assignments.end(), arguments.assignments.begin(), arguments.assignments.end());

    ScanOutput output(arguments.outFile, arguments.format, {}, {},
                      wantedFields(arguments.fields, replay.request().form, arguments.format));
    const InterruptNote interrupt;
    const host::Result result = replay.read(output, [&] { return InterruptNote::came() || !output.problem().empty(); });

    if (InterruptNote::came())
        return kInterruptedStatus;
    if (const std::string problem = output.problem(); !problem.empty())
        throw CommandFailure(problem);
    const bool asRecorded = tellDifferences(replay);
    return asRecorded && result.failures.empty() && result.end.started ? kDoneStatus : kFailedStatus;
}

} // namespace

void addReplayCommand(Commands& commands)
{
    const auto arguments = std::make_shared<ReplayArguments>();
    CLI::App& command =
        commands.add("replay", "Replays a recorded session without a reader", [arguments] { return run(*arguments); });
    command.add_option("file", arguments->file, "Transcript of 'scan --trace', or report of 'check --report'")
        ->required()
        ->type_name("FILE");
    command.add_option("--form", arguments->formFile, "Form to use instead of the recorded one")->type_name("FILE");
    addAssignments(command, arguments->assignments, "Sets a property of the reader after the recorded settings");
    addFormat(command, arguments->format, {"json", "csv", "table"});
    command.add_flag("--fields", arguments->fields,
                     "Prints the columns that the form names instead of the marks; with json and csv");
    command.add_option("--out", arguments->outFile, "Writes to a file instead of standard output")->type_name("FILE");
    command.footer("Recorded waits take no time. The exit status is that of a scan, or 1 if the session sends anything "
                   "else than the transcript has.");
}

} // namespace kel
