#include "cli/CommandList.h"
#include "cli/Commands.h"
#include "cli/Interrupt.h"
#include "cli/JsonFile.h"
#include "cli/ScanOutput.h"
#include "cli/ScanSession.h"
#include "cli/TraceHead.h"
#include "cli/UsageError.h"
#include "recording/ReplayPlatform.h"

#include <iostream>

namespace kel {

namespace {

struct Arguments {
    std::string file;
    std::string formFile;
    std::vector<std::string> assignments;
    std::string format;
    std::string outFile;
};

Transcript parseOrRefuse(const std::string& text, const std::string& fileName)
{
    try {
        return parseTranscript(text);
    } catch (const TranscriptError& error) {
        throw UsageError(fileName + ", " + error.what() + ".");
    }
}

ScanRequest requestOf(const Arguments& arguments, const Transcript& transcript, const std::string& text)
{
    ScanRequest request = requestOfTranscript(transcript, text, arguments.file);
    if (!arguments.formFile.empty())
        request.form = readFormFile(arguments.formFile);
    request.assignments.insert(request.assignments.end(), arguments.assignments.begin(), arguments.assignments.end());
    return request;
}

/// Tells where the session has left its transcript; false if it has.
bool tellDifferences(const ReplayCarrier& replay)
{
    for (const std::string& difference : replay.differences())
        std::cerr << "kelreader: The session differs from its transcript. " << difference << std::endl;
    if (!replay.differences().empty())
        return false;
    const std::string unsent = replay.unsent();
    if (!unsent.empty())
        std::cerr << "kelreader: The session ended before the transcript did. " << unsent << std::endl;
    return unsent.empty();
}

int run(const Arguments& arguments)
{
    const std::string text = readGivenFile(arguments.file, "transcript");
    const Transcript transcript = parseOrRefuse(text, arguments.file);
    const ScanRequest request = requestOf(arguments, transcript, text);

    const auto replay = std::make_shared<ReplayCarrier>(transcript);
    ReplayPlatform machine(platform(), *replay);
    const PlatformScope scope(machine);
    clsKELReader reader;
    reader.fComm(Reference<Carrier>(replay));
    prepareReader(reader, request);

    ScanOutput output(arguments.outFile, arguments.format);
    const InterruptNote interrupt;
    const ScanResult result = runScan(reader, request, output, [&] {
        return InterruptNote::came() || output.output().failed() || replay->stopped();
    });

    if (InterruptNote::came())
        return kInterruptedStatus;
    if (output.output().failed())
        throw CommandFailure(output.output().problem());
    const bool asRecorded = tellDifferences(*replay);
    return asRecorded && result.failures.empty() && result.end.started ? kDoneStatus : kFailedStatus;
}

} // namespace

void addReplayCommand(Commands& commands)
{
    const auto arguments = std::make_shared<Arguments>();
    CLI::App& command = commands.add("replay", "Holds a recorded session again, without a reader",
                                     [arguments] { return run(*arguments); });
    command.add_option("file", arguments->file, "The transcript, as 'scan --trace' has written it")
        ->required()
        ->type_name("FILE");
    command.add_option("--form", arguments->formFile, "The form of the sheets, in the place of the recorded one")
        ->type_name("FILE");
    command.add_option("--set", arguments->assignments, "Sets a property of the reader, behind the recorded settings")
        ->type_name("Property=Value")
        ->allow_extra_args(false);
    addFormat(command, arguments->format, {"json", "csv", "table"});
    command.add_option("--out", arguments->outFile, "Writes to a file in place of standard output")->type_name("FILE");
    command.footer("Time is the transcript's: a wait of ten seconds takes none. The exit status is that of a scan, and "
                   "1 as well if the session does not send what the transcript has.");
}

} // namespace kel
