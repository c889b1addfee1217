#include "cli/CommandList.h"
#include "cli/Commands.h"
#include "cli/Interrupt.h"
#include "cli/LoadedSettings.h"
#include "cli/ModelLookup.h"
#include "cli/ScanOutput.h"
#include "cli/ScanSession.h"
#include "cli/SimulatedReader.h"
#include "cli/TextOutput.h"
#include "cli/TraceHead.h"
#include "cli/UsageError.h"
#include "platform/Platform.h"
#include "platform/PortMap.h"
#include "recording/TracingCarrier.h"
#include "types/Text.h"

#include <iostream>

namespace kel {

namespace {

// The port that stands for a device which is named on the command line.
constexpr Int16 kDevicePort = 1;

struct Arguments {
    std::string model;
    std::string settings;
    std::optional<Int16> port;
    std::string device;
    bool simulate = false;
    std::string formFile;
    std::string answerKeyFile;
    std::vector<std::string> assignments;
    Int32 maxSheets = -1;
    std::string format;
    std::string outFile;
    std::string traceFile;
    std::string omrApiFile;
    bool rejectBlank = false;
    std::vector<Int32> rejectSheets;
    PrintRequest print;
    SimulatorArguments simulator;
};

ScanRequest requestOf(const Arguments& arguments)
{
    ScanRequest request;
    if (!arguments.settings.empty())
        request.settings = keyNamed(arguments.settings);
    if (!arguments.model.empty())
        request.model = modelNamed(arguments.model);
    if (!request.model && !request.settings)
        throw CLI::RequiredError("--model");
    if (!arguments.formFile.empty())
        request.form = readFormFile(arguments.formFile);
    if (!arguments.answerKeyFile.empty())
        request.answerKey = readAnswerKeyFile(arguments.answerKeyFile);
    request.assignments = arguments.assignments;
    request.port = arguments.port;
    if (!arguments.device.empty() || arguments.simulate)
        request.port = kDevicePort;
    request.maxSheets = arguments.maxSheets;
    request.rejectBlank = arguments.rejectBlank;
    for (const Int32 sheet : arguments.rejectSheets) {
        if (sheet < 1)
            throw UsageError("There is no sheet " + CStr(sheet) + " to reject; the first is 1.");
    }
    request.rejectSheets.insert(arguments.rejectSheets.begin(), arguments.rejectSheets.end());
    request.print = arguments.print;
    return request;
}

void demandLine(const Arguments& arguments, const clsKELReader& reader)
{
    const bool usb = isUsbModel(reader.ReaderType());
    const bool named = arguments.port || !arguments.device.empty() || arguments.simulate;
    if (!named && reader.Port() == 0 && !usb)
        throw UsageError("Where is the reader? Say --port N, --device PATH or --simulate ('kelreader ports' lists the "
                         "devices that are there).");
    if (!arguments.traceFile.empty() && usb)
        throw UsageError("A USB reader has no line that --trace could write down.");
    if (!arguments.traceFile.empty() && arguments.traceFile == arguments.outFile)
        throw UsageError("--out and --trace cannot share a file; name another one for either.");
    if (arguments.simulator.given() && !arguments.simulate)
        throw UsageError("The options of a simulated reader go with --simulate.");
}

/// Has the line of a reader written down while it is used. The file lives as long as the reader's carrier.
std::shared_ptr<const TextOutput> trace(const Arguments& arguments, const ScanRequest& request, clsKELReader& reader)
{
    const auto file = std::make_shared<TextOutput>(arguments.traceFile);
    TraceLog::Head head = traceHead(request, reader, arguments.formFile, arguments.answerKeyFile);
    if (arguments.formFile.empty() && request.form.side1Rows)
        head.emplace_back("form", sizesText(request.form));
    reader.fComm(
        makeReference<TracingCarrier>(reader.fComm(), head, [file](const std::string& line) { file->write(line); }));
    return file;
}

/// Starts the simulated reader. Without a form the component gets that of the sheets, so that it can read them.
std::unique_ptr<SimulatedReader> simulate(const Arguments& arguments, ScanRequest& request, clsKELReader& reader)
{
    const kelReaderType model = request.model.value_or(reader.ReaderType());
    if (arguments.formFile.empty()) {
        request.form = arguments.simulator.formOfSheets(model);
        applySizes(request.form, reader);
    }
    return startSimulatedReader(arguments.simulator, model, request.form);
}

void tellFaults(const std::vector<std::string>& faults)
{
    for (const std::string& fault : faults)
        std::cerr << "kelreader: The simulated reader did not expect this: " << fault << std::endl;
}

/// Settings that do not fit leave the reader half set: nothing is read with it.
int refuseSettings(const Arguments& arguments, const clsKELReader& reader, const std::vector<ReportedFailure>& failures)
{
    ScanOutput output(arguments.outFile, arguments.format);
    for (const ReportedFailure& failure : failures)
        output.failure(failure);
    output.end({.started = false, .sheets = 0, .cancelScan = static_cast<bool>(reader.CancelScan()), .result = false});
    return kFailedStatus;
}

int run(const Arguments& arguments)
{
    ScanRequest request = requestOf(arguments);
    clsKELReader reader;
    const std::vector<ReportedFailure> failures = prepareReader(reader, request);
    if (!failures.empty())
        return refuseSettings(arguments, reader, failures);
    demandLine(arguments, reader);

    std::unique_ptr<SimulatedReader> simulated;
    if (arguments.simulate)
        simulated = simulate(arguments, request, reader);
    const std::string device = simulated ? simulated->deviceFile() : arguments.device;
    std::optional<PortOverride> inItsPlace;
    if (!device.empty())
        inItsPlace.emplace(reader.Port(), device);

    if (!arguments.omrApiFile.empty())
        platform().omrApiLoader().libraryFile(arguments.omrApiFile);

    ScanOutput output(arguments.outFile, arguments.format);
    std::shared_ptr<const TextOutput> transcript;
    if (!arguments.traceFile.empty())
        transcript = trace(arguments, request, reader);
    const InterruptNote interrupt;
    const ScanResult result =
        runScan(reader, request, output, [&] { return InterruptNote::came() || output.output().failed(); });
    if (simulated)
        tellFaults(simulated->end());

    if (InterruptNote::came())
        return kInterruptedStatus;
    if (output.output().failed())
        throw CommandFailure(output.output().problem());
    if (transcript && transcript->failed())
        throw CommandFailure(transcript->problem());
    return result.failures.empty() && result.end.started ? kDoneStatus : kFailedStatus;
}

void addReaderOptions(CLI::App& command, Arguments& arguments)
{
    command.add_option("--model", arguments.model, "The model, by number or name; --settings may name it too");
    command
        .add_option("--settings", arguments.settings,
                    "Takes the settings that are kept under a key in place of the model's defaults")
        ->type_name("HIVE\\SUBKEY");
    CLI::Option* port =
        command.add_option("--port", arguments.port, "The reader's port number ('kelreader ports')")->type_name("N");
    CLI::Option* device =
        command.add_option("--device", arguments.device, "The reader's device, or a remote line as rfc2217:HOST:PORT")
            ->type_name("PATH")
            ->excludes(port);
    CLI::Option* simulate =
        command.add_flag("--simulate", arguments.simulate, "A simulated reader")->excludes(port)->excludes(device);
    command.add_option("--form", arguments.formFile, "The form of the sheets, as JSON")->type_name("FILE");
    command
        .add_option("--omrapi", arguments.omrApiFile,
                    "The library of the USB readers' maker, in place of the usual one")
        ->type_name("FILE")
        ->excludes(simulate);
    command
        .add_option("--answer-key", arguments.answerKeyFile,
                    "The right answers, as JSON, for a reader that grades by itself")
        ->type_name("FILE");
    command
        .add_option("--set", arguments.assignments,
                    "Sets a property of the reader, or of its printer as Printer.Distance=10")
        ->type_name("Property=Value")
        ->allow_extra_args(false);
}

void addSheetOptions(CLI::App& command, Arguments& arguments)
{
    command.add_option("--max-sheets", arguments.maxSheets, "Ends after so many sheets; below 0: no limit")
        ->capture_default_str()
        ->type_name("N");
    command.add_flag("--reject-blank", arguments.rejectBlank, "Rejects sheets without a mark or an answer");
    command.add_option("--reject-sheets", arguments.rejectSheets, "Rejects these sheets, the first is 1")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->type_name("2,5");
    command.add_option("--print1", arguments.print.print1,
                       "First line to print; {date}, {sheet} and {barcode} are filled in");
    command.add_option("--print2", arguments.print.print2, "Second line to print");
    command.add_option("--print3", arguments.print.print3, "Third line to print");
    command.add_option("--print-distance", arguments.print.distance, "Where along the sheet the print begins")
        ->type_name("N");
}

} // namespace

void addScanCommand(Commands& commands)
{
    const auto arguments = std::make_shared<Arguments>();
    CLI::App& command = commands.add("scan", "Reads a batch of sheets", [arguments] { return run(*arguments); });
    addReaderOptions(command, *arguments);
    addSheetOptions(command, *arguments);
    addFormat(command, arguments->format, {"json", "csv", "table"});
    command.add_option("--out", arguments->outFile, "Writes to a file in place of standard output")->type_name("FILE");
    command.add_option("--trace", arguments->traceFile, "Writes down what goes over the line, for 'kelreader replay'")
        ->type_name("FILE");
    arguments->simulator.addTo(command);
    command.footer(
        "json: a line an event, the last one is the end. csv: a heading and a row a sheet; side1 and side2 "
        "hold the marks as row:column=value, with blanks between. table: the sheets as grids for the eye, "
        "a dot for no mark, A to Z for 10 to 35, # for more.\n"
        "Exit status: 0 nothing failed, 1 a failure was reported or the reader did not start, 2 wrong usage, "
        "130 interrupted.");
}

} // namespace kel
