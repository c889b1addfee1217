// SPDX-License-Identifier: MIT
#include "cli/CommandList.h"
#include "cli/Commands.h"
#include "cli/Interrupt.h"
#include "cli/Notice.h"
#include "cli/ReaderOptions.h"
#include "cli/UsageError.h"
#include "cli/check/CheckOutput.h"
#include "cli/check/ReportHead.h"
#include "cli/check/ReportText.h"
#include "cli/check/SheetMask.h"
#include "cli/check/TerminalOperator.h"
#include "host/JsonFile.h"
#include "host/Reader.h"
#include "platform/PortMap.h"
#include "recording/ReportSections.h"

#include <algorithm>

namespace kel {

namespace {

constexpr Int32 kMostSheets = 1000;

// The port that stands for a device which is named.
constexpr Int16 kDevicePort = 1;

struct CheckArguments {
    std::string model;
    std::optional<Int16> port;
    std::string device;
    bool simulate = false;
    std::string omrApiFile;
    std::string formFile;
    std::vector<std::string> assignments;
    Int32 sheets = 0;
    bool search = false;
    bool interactive = false;
    bool yes = false;
    std::string reportFile;
    bool mask = false;
    std::string replayFile;
    std::string format;
    std::vector<std::string> faults;
    std::vector<std::string> settings;
};

void demandSense(const CheckArguments& arguments)
{
    if (!arguments.replayFile.empty())
        return;
    if (arguments.model.empty())
        throw host::UsageError("--model is required; 'kelreader models' lists the models.");
    const bool usb = host::isUsbModel(host::modelNamed(arguments.model));
    const bool line = arguments.port || !arguments.device.empty();
    if (usb && line)
        throw host::UsageError("A USB model has no line; leave --port and --device out, and use --omrapi FILE if the "
                               "maker's library is elsewhere.");
    if (!usb && !arguments.omrApiFile.empty())
        throw host::UsageError("--omrapi is for USB models; this one has a line: use --port N or --device PATH.");
    if (!usb && !line && !arguments.simulate)
        throw host::UsageError("Where is the reader? Say --port N, --device PATH or --simulate ('kelreader ports' "
                               "lists the devices).");
    if (!arguments.simulate && (!arguments.faults.empty() || !arguments.settings.empty()))
        throw host::UsageError("The options of a simulated reader go with --simulate.");
    if (arguments.mask && arguments.reportFile.empty())
        throw host::UsageError("--mask needs --report FILE.");
}

CheckPlan planOf(const CheckArguments& arguments)
{
    CheckPlan plan;
    plan.request.model = arguments.model;
    plan.request.port = arguments.port;
    plan.request.device = arguments.device;
    plan.request.usbLibrary = arguments.omrApiFile;
    plan.request.assignments = arguments.assignments;
    if (!arguments.device.empty() || arguments.simulate)
        plan.request.port = kDevicePort;
    host::Simulation simulation;
    simulation.count = static_cast<std::uint64_t>(arguments.sheets);
    simulation.copies = true;
    simulation.faults = arguments.faults;
    simulation.settings = arguments.settings;
    plan.formGiven = !arguments.formFile.empty() || arguments.simulate;
    plan.request.form = arguments.formFile.empty() ? host::formOfSheets(simulation, *plan.request.model)
                                                   : host::readFormFile(arguments.formFile);
    if (arguments.simulate)
        plan.request.simulated = simulation;
    plan.sheets = arguments.sheets;
    plan.search = arguments.search;
    plan.interactive = arguments.interactive;
    plan.yes = arguments.yes || arguments.simulate;
    return plan;
}

/// Where the report goes as it is made: a file, masked or not, or nowhere.
class ReportFile {
public:
    ReportFile(const CheckArguments& arguments, const CheckPlan& plan)
    {
        if (arguments.reportFile.empty())
            return;
        file_.emplace(arguments.reportFile);
        if (arguments.mask)
            mask_.emplace(*plan.request.model);
        write(reportHead(plan, arguments.mask));
    }

    void write(const std::string& line)
    {
        if (file_)
            file_->write(mask_ ? mask_->masked(line) : line);
    }

    [[nodiscard]] std::string problem() const { return file_ ? file_->problem() : ""; }

private:
    std::optional<host::TextOutput> file_;
    std::optional<SheetMask> mask_;
};

int checkReader(const CheckArguments& arguments)
{
    const CheckPlan plan = planOf(arguments);
    static_cast<void>(host::Reader(plan.request)); // refuses what does not fit before anything is made
    std::optional<host::SimulatedReader> simulated;
    std::optional<PortOverride> override;
    if (plan.request.simulated)
        simulated.emplace(*plan.request.model, *plan.request.simulated, plan.request.form);
    const std::string device = simulated ? simulated->device() : plan.request.device;
    if (!device.empty())
        override.emplace(kDevicePort, device);
    if (!plan.request.usbLibrary.empty())
        platform().omrApiLoader().libraryFile(plan.request.usbLibrary);

    ReportFile report(arguments, plan);
    CheckOutput output(arguments.format == "json");
    TerminalOperator person;
    LineBench bench([&](const std::string& line) { report.write(line); });
    const InterruptNote interrupt;
    CheckRun run(plan, {.bench = bench,
                        .person = person,
                        .onResult =
                            [&](const CheckResult& result) {
                                person.clear();
                                report.write(resultLine(result));
                                output.result(result);
                            },
                        .stopWanted = [&] { return InterruptNote::came() || !output.problem().empty(); }});
    const CheckResults results = run.run();
    person.clear();
    output.verdict(judge(results));
    report.write(kReportEnd);
    if (!output.problem().empty())
        throw CommandFailure(output.problem());
    if (!report.problem().empty())
        throw CommandFailure(report.problem());
    return exitStatus(results);
}

/// Nobody is there when a report is held again: what he said is in it.
class AbsentOperator final : public Operator {
public:
    [[nodiscard]] bool doThis(const std::string&) override { return true; }
    [[nodiscard]] bool confirms(const std::string&) override { return true; }
    void tell(const std::string&) override {}
};

/// A stage that was stopped has no end to come to.
bool stoppedIn(const CheckReport& report, CheckStage stage)
{
    return std::ranges::any_of(report.results, [&](const CheckResult& result) {
        return result.stage == stage && result.cause == Cause::Interrupted;
    });
}

int checkReport(const CheckArguments& arguments)
{
    const CheckReport report =
        parseReport(host::readGivenFile(arguments.replayFile, host::kTranscriptFile), arguments.replayFile);
    const CheckPlan plan = planOfReport(report, arguments.replayFile);
    ReportBench bench(report.sections, report.facts);
    AbsentOperator person;
    CheckOutput output(arguments.format == "json");
    const InterruptNote interrupt;
    CheckRun run(plan, {.bench = bench,
                        .person = person,
                        .onResult = [&](const CheckResult& result) { output.result(result); },
                        .stopWanted = [] { return InterruptNote::came(); },
                        .recorded = report.results,
                        .isRecorded =
                            [&](CheckStage stage) {
                                return stoppedIn(report, stage) || stage == CheckStage::Confirm ||
                                       (report.masked && stage == CheckStage::Sheets);
                            }});
    const CheckResults results = run.run();
    output.verdict(judge(results));
    for (const std::string& difference : bench.differences())
        notice("The check differs from its report. " + difference);
    if (!report.whole)
        notice(arguments.replayFile + " ends before the check did; the verdict covers only what it holds.");
    if (InterruptNote::came())
        return kInterruptedStatus;
    return judge(results).usable && bench.differences().empty() ? kDoneStatus : kFailedStatus;
}

int run(const CheckArguments& arguments)
{
    demandSense(arguments);
    return arguments.replayFile.empty() ? checkReader(arguments) : checkReport(arguments);
}

void addReaderOptions(CLI::App& command, CheckArguments& arguments)
{
    command.add_option("--model", arguments.model, "Model, by number or name");
    const auto [port, device] = addPort(command, arguments.port, arguments.device);
    addUsbLibrary(command, arguments.omrApiFile);
    command.add_flag("--simulate", arguments.simulate, "Checks a simulated reader")->excludes(port)->excludes(device);
    command.add_option("--form", arguments.formFile, "Form of the sheets (JSON)")->type_name("FILE");
    addAssignments(command, arguments.assignments,
                   "Sets a property of the reader or of its printer, such as Printer.Distance=10");
    command.add_option("--fault", arguments.faults, "Simulates a fault; 'kelreader simulate --list-faults' lists them")
        ->type_name("FAULT")
        ->allow_extra_args(false)
        ->group("Simulated reader");
    command.add_option("--setting", arguments.settings, "Model-specific option: NAME=VALUE")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false)
        ->group("Simulated reader");
}

} // namespace

void addCheckCommand(Commands& commands)
{
    const auto arguments = std::make_shared<CheckArguments>();
    CLI::App& command = commands.add("check", "Checks whether a reader works and, if not, what is wrong",
                                     [arguments] { return run(*arguments); });
    addReaderOptions(command, *arguments);
    command.add_option("--sheets", arguments->sheets, "Reads N copies of one sheet; without it no paper moves")
        ->check(CLI::Range(0, kMostSheets))
        ->type_name("N");
    command.add_flag("--yes", arguments->yes, "Asks nobody to insert sheets: they are in the feeder");
    command.add_flag("--search", arguments->search,
                     "Tries other speeds, parities, handshakes and models if nothing answers");
    command.add_flag("--interactive", arguments->interactive,
                     "Asks you what only you can see: feeder, reject hopper, print, stop, cable");
    CLI::Option* report =
        command.add_option("--report", arguments->reportFile, "Writes all findings into one file to mail")
            ->type_name("FILE");
    command.add_flag("--mask", arguments->mask, "Leaves marks, barcodes and record fields out of the report");
    command.add_option("--replay", arguments->replayFile, "Repeats the check of a report, without a reader")
        ->type_name("FILE")
        ->excludes(report);
    addFormat(command, arguments->format, {"table", "json"});
    command.footer(
        "The stages: the line; whether the reader answers; three sessions; sheets; what you confirm; whether all is as "
        "it was. Before the sheets the check sends nothing that moves paper, prints, or stores anything in the "
        "reader.\n"
        "Exit status: 0 the reader can be used, 1 it cannot, 2 wrong usage, 130 interrupted.");
}

} // namespace kel
