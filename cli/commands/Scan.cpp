// SPDX-License-Identifier: MIT
#include "cli/CommandList.h"
#include "cli/Commands.h"
#include "cli/InterruptWatch.h"
#include "cli/Notice.h"
#include "cli/ReaderOptions.h"
#include "cli/ScanOutput.h"
#include "cli/ScanStore.h"
#include "cli/SimulatorArguments.h"
#include "cli/UsageError.h"
#include "host/LoadedSettings.h"
#include "host/LocalTime.h"
#include "host/Reader.h"
#include "platform/LineErrors.h"
#include "profiles/ReaderModels.h"
#include "store/SheetRecords.h"
#include "types/Path.h"
#include "types/Text.h"

namespace kel {

namespace {

struct ScanArguments {
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
    bool fields = false;
    std::string outFile;
    std::string traceFile;
    std::string pictureFolder;
    std::string storeFile;
    std::string readerName;
    std::string batchName;
    std::string omrApiFile;
    bool rejectBlank = false;
    std::vector<Int32> rejectSheets;
    host::Print print;
    SimulatorArguments simulator;
};

std::string timeNow()
{
    return host::localTime("%Y-%m-%d %H:%M");
}

/// What a page of a batch is headed with.
std::string pageTitle(kelReaderType model)
{
    return ReturnReaderName(model) + ", " + timeNow();
}

host::Request requestOf(const ScanArguments& arguments)
{
    host::Request request;
    if (!arguments.settings.empty())
        request.settings = host::keyNamed(arguments.settings);
    if (!arguments.model.empty())
        request.model = arguments.model;
    if (!request.model && !request.settings)
        throw CLI::RequiredError("--model");
    if (!arguments.formFile.empty())
        request.form = host::readFormFile(pathOf(arguments.formFile));
    if (!arguments.answerKeyFile.empty())
        request.answerKey = host::readAnswerKeyFile(pathOf(arguments.answerKeyFile));
    request.assignments = arguments.assignments;
    request.port = arguments.port;
    request.device = arguments.device;
    if (arguments.simulate)
        request.simulated = arguments.simulator.simulation();
    request.usbLibrary = pathOf(arguments.omrApiFile);
    request.traceFile = pathOf(arguments.traceFile);
    request.maxSheets = arguments.maxSheets;
    request.rejectBlank = arguments.rejectBlank;
    for (const Int32 sheet : arguments.rejectSheets) {
        if (sheet < 1)
            throw host::UsageError("There is no sheet " + CStr(sheet) + " to reject; the first is 1.");
    }
    request.rejectSheets.insert(arguments.rejectSheets.begin(), arguments.rejectSheets.end());
    request.print = arguments.print;
    return request;
}

void demandLine(const ScanArguments& arguments, const clsKELReader& reader)
{
    const bool usb = host::isUsbModel(reader.ReaderType());
    const bool named = arguments.port || !arguments.device.empty() || arguments.simulate;
    if (!named && reader.Port() == 0 && !usb)
        throw host::UsageError(
            "Where is the reader? Use --port N, --device PATH or --simulate ('kelreader ports' lists the "
            "devices).");
    if (!arguments.traceFile.empty() && arguments.traceFile == arguments.outFile)
        throw host::UsageError("--out and --trace cannot share a file; name another one for either.");
    if (arguments.storeFile.empty() && (!arguments.readerName.empty() || !arguments.batchName.empty()))
        throw host::UsageError("--reader and --batch need --store FILE.");
    if (arguments.simulator.given() && !arguments.simulate)
        throw host::UsageError("The options of a simulated reader go with --simulate.");
}

void tellFaults(const std::vector<std::string>& faults)
{
    for (const std::string& fault : faults)
        notice("The simulated reader did not expect this: " + fault);
}

void tellLineErrors(const clsKELReader& reader)
{
    const Reference<Carrier> carrier = reader.fComm();
    auto* const counting = dynamic_cast<CountsLineErrors*>(&carrier->mscComm());
    const LineErrors errors = counting ? counting->lineErrors() : LineErrors();
    if (!errors.any())
        return;
    notice("The line had " + lineErrorsText(errors) +
           (errors.parity > 0 ? " (such characters were read as \"?\")" : "") +
           "; compare speed, parity and data bits with the reader's, and look at the cable.");
}

/// Settings that do not fit leave the reader half set: nothing is read with it.
int refuseSettings(const ScanArguments& arguments, const std::vector<host::Failure>& failures)
{
    ScanOutput output(arguments.outFile, arguments.format, timeNow());
    for (const host::Failure& failure : failures)
        output.failure(failure);
    output.end({.started = false, .sheets = 0, .cancelScan = true, .result = false});
    return kFailedStatus;
}

/// What a store calls a scan, unless somebody has said.
StoreNames storeNames(const ScanArguments& arguments)
{
    StoreNames names{arguments.storeFile, arguments.readerName, arguments.batchName};
    if (names.reader.empty() && arguments.port)
        names.reader = "port " + CStr(*arguments.port);
    if (names.reader.empty())
        names.reader = arguments.simulate ? "simulated" : arguments.device;
    if (names.reader.empty())
        names.reader = "reader";
    return names;
}

int read(host::Reader& reader, const ScanArguments& arguments)
{
    demandLine(arguments, reader.object());
    const std::optional<std::vector<host::Field>> fields =
        wantedFields(arguments.fields, reader.form(), arguments.format);
    std::optional<ScanStore> store;
    if (!arguments.storeFile.empty()) {
        store.emplace(storeNames(arguments));
        reader.sheetsBefore(store->sheetsBefore());
    }
    reader.connect();
    const clsKELReader& object = reader.object();
    const PictureForm form = pictureForm(reader.form(), object.ReaderType(), object.RecognitionThreshold());
    ScanOutput output(arguments.outFile, arguments.format, pageTitle(object.ReaderType()), form, fields);
    if (!arguments.pictureFolder.empty())
        output.addPictures(pathOf(arguments.pictureFolder), form);
    host::Events& events = store ? store->events(reader, output) : output;
    const host::Result result = [&] {
        const InterruptWatch interrupt([&] { reader.object().CancelScan(True); });
        return reader.read(
            events, [&] { return InterruptNote::came() || !output.problem().empty(); }, host::StopAsked::AtEachSheet);
    }();
    tellFaults(reader.simulatorErrors());
    tellLineErrors(reader.object());
    if (store)
        store->demandAll();

    if (InterruptNote::came())
        return kInterruptedStatus;
    if (const std::string problem = output.problem(); !problem.empty())
        throw CommandFailure(problem);
    if (!reader.traceProblem().empty())
        throw CommandFailure(reader.traceProblem());
    return result.failures.empty() && result.end.started ? kDoneStatus : kFailedStatus;
}

int run(const ScanArguments& arguments)
{
    std::optional<host::Reader> reader;
    try {
        reader.emplace(requestOf(arguments));
    } catch (const host::ReaderFailed& refusal) {
        return refuseSettings(arguments, refusal.failures());
    }
    return read(*reader, arguments);
}

void addReaderOptions(CLI::App& command, ScanArguments& arguments)
{
    command.add_option("--model", arguments.model, "Model, by number or name; not needed if --settings names one");
    command
        .add_option("--settings", arguments.settings,
                    "Uses the settings saved under a key instead of the model's defaults")
        ->type_name("HIVE\\SUBKEY");
    const auto [port, device] = addPort(command, arguments.port, arguments.device);
    CLI::Option* simulate = command.add_flag("--simulate", arguments.simulate, "Reads from a simulated reader")
                                ->excludes(port)
                                ->excludes(device);
    command.add_option("--form", arguments.formFile, "Form of the sheets (JSON)")->type_name("FILE");
    addUsbLibrary(command, arguments.omrApiFile)->excludes(simulate);
    command
        .add_option("--answer-key", arguments.answerKeyFile,
                    "Answer key (JSON) for a reader that grades the sheets itself")
        ->type_name("FILE");
    addAssignments(command, arguments.assignments,
                   "Sets a property of the reader or of its printer, such as Printer.Distance=10");
}

void addSheetOptions(CLI::App& command, ScanArguments& arguments)
{
    command.add_option("--max-sheets", arguments.maxSheets, "Stops after N sheets; a negative number is no limit")
        ->capture_default_str()
        ->type_name("N");
    command.add_flag("--reject-blank", arguments.rejectBlank, "Rejects sheets without a mark or an answer");
    command
        .add_option("--reject-sheets", arguments.rejectSheets,
                    "Rejects these sheets; the first sheet of this scan is 1")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->type_name("2,5");
    command.add_option("--print1", arguments.print.print1,
                       "First line to print; may contain {date}, {sheet} and {barcode}");
    command.add_option("--print2", arguments.print.print2, "Second line to print");
    command.add_option("--print3", arguments.print.print3, "Third line to print");
    command.add_option("--print-distance", arguments.print.distance, "Position on the sheet where printing starts")
        ->type_name("N");
}

} // namespace

void addScanCommand(Commands& commands)
{
    const auto arguments = std::make_shared<ScanArguments>();
    CLI::App& command = commands.add("scan", "Reads a batch of sheets", [arguments] { return run(*arguments); });
    addReaderOptions(command, *arguments);
    addSheetOptions(command, *arguments);
    addFormat(command, arguments->format, {"json", "csv", "table", "html"});
    command.add_flag("--fields", arguments->fields,
                     "Prints the columns that the form names instead of the marks; with json and csv");
    command.add_option("--out", arguments->outFile, "Writes to a file instead of standard output")->type_name("FILE");
    command.add_option("--pictures", arguments->pictureFolder, "Saves a picture of each sheet in a folder, as SVG")
        ->type_name("FOLDER");
    command
        .add_option("--store", arguments->storeFile,
                    "Stores each sheet in a file before the next one is fed (see 'kelreader sheets')")
        ->type_name("FILE");
    command.add_option("--reader", arguments->readerName, "Name of the reader in the store")->type_name("NAME");
    command.add_option("--batch", arguments->batchName, "Name of the batch in the store; the default is the time")
        ->type_name("NAME");
    command
        .add_option("--trace", arguments->traceFile,
                    "Records every byte on the line, or every call of a USB reader's library, for 'kelreader replay'")
        ->type_name("FILE");
    arguments->simulator.addTo(command);
    command.footer(
        "json: one line per event, the last one is the end. csv: a heading and one row per sheet; side1 and side2 "
        "hold the marks as row:column=value, separated by blanks. table: one grid per side, with a dot for no mark, "
        "A to Z for 10 to 35, # for more. html: a page with pictures of the sheets, a table to sort and filter, and "
        "statistics of the marks.\n"
        "Exit status: 0 nothing failed, 1 a failure was reported or the reader did not start, 2 wrong usage, "
        "130 interrupted.");
}

} // namespace kel
