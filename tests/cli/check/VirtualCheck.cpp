// SPDX-License-Identifier: MIT
#include "tests/cli/check/VirtualCheck.h"

#include "cli/check/ReportText.h"
#include "profiles/Catalogue.h"

namespace kel::test {

namespace {

// Of a sheet that has bytes 11 or 13 where a family sends its marks as bits.
constexpr std::uint64_t kSeed = 10;

} // namespace

std::vector<std::string> faultsOf(SimulatedFamily family)
{
    std::vector<std::string> faults;
    for (const SiteFaultEntry& entry : siteFaults())
        if (entry.appliesTo(family))
            faults.emplace_back(entry.name);
    return faults;
}

CheckPlan fullPlan(kelReaderType model)
{
    CheckPlan plan;
    plan.request.model = model;
    plan.request.port = Int16{1};
    if (model == kelReaderTypeChatsworthACF200)
        plan.request.assignments = {"Feeder=true"};
    plan.request.form = host::formOfSheets({}, model);
    plan.formGiven = true;
    plan.sheets = 3;
    plan.search = true;
    plan.yes = true;
    return plan;
}

VirtualOutcome checkVirtually(kelReaderType model, const VirtualOptions& options)
{
    const CheckPlan plan = options.plan.value_or(fullPlan(model));
    SimulatorOptions wanted;
    wanted.seeded = SeededSheets{.seed = kSeed, .count = static_cast<std::uint64_t>(plan.sheets), .copies = true};
    wanted.form.side1Rows = plan.request.form.side1Rows.value_or(std::vector<Int16>());
    wanted.form.side1Cols = plan.request.form.side1Cols.value_or(std::vector<Int16>());
    wanted.form.side2Rows = plan.request.form.side2Rows.value_or(std::vector<Int16>());
    wanted.form.side2Cols = plan.request.form.side2Cols.value_or(std::vector<Int16>());
    for (const std::string& fault : options.faults)
        wanted.siteFaults.push_back(parseSiteFault(fault).value());
    const std::unique_ptr<Simulator> reader = makeSimulator(model, std::move(wanted));

    SimulatedPlatform machine;
    const PlatformScope scope(machine);
    machine.attach(1, *reader);
    machine.portState(1, options.port);
    VirtualOutcome outcome;
    WillingOperator willing;
    bool sheetsBegan = false;
    const auto noteWhatWasSent = [&] {
        sheetsBegan = true;
        outcome.logBeforeSheets = reader->log();
        outcome.sentBeforeSheets = machine.line(1).sent();
        outcome.tookBeforeSheets = machine.now();
    };
    LineBench bench([&](const std::string& line) {
        if (line == sectionLine("sheets"))
            noteWhatWasSent();
        outcome.report += line;
    });
    CheckRun run(plan, {.bench = bench,
                        .person = options.person ? *options.person : willing,
                        .onResult = [&](const CheckResult& result) { outcome.report += resultLine(result); },
                        .stopWanted = options.stopWanted});
    outcome.results = run.run();
    if (!sheetsBegan)
        noteWhatWasSent();
    outcome.report += kReportEnd;
    outcome.verdict = judge(outcome.results);
    outcome.took = machine.now();
    outcome.errors = reader->errors();
    return outcome;
}

std::vector<kelReaderType> modelsOfCatalogue(bool usb)
{
    std::vector<kelReaderType> models;
    for (const CatalogueGroup& group : catalogue())
        for (const CatalogueModel& model : group.Models)
            if ((model.Link.InterfaceType == kelReaderInterfaceTypeUSB) == usb)
                models.push_back(model.ReaderType);
    return models;
}

kelReaderType representative(SimulatedFamily family)
{
    switch (family) {
    case SimulatedFamily::Apperson: return kelReaderTypeAppersonAdvantageLink;
    case SimulatedFamily::Chatsworth: return kelReaderTypeChatsworthACF200;
    case SimulatedFamily::EZData: return kelReaderTypeNCSEZData;
    case SimulatedFamily::OpScan: return kelReaderTypeNCSOpScan5;
    case SimulatedFamily::PeripheralDynamics: return kelReaderTypePDIVMR138;
    case SimulatedFamily::Scanmark: return kelReaderTypeScantronScanMark2500;
    case SimulatedFamily::SekonicSerial: return kelReaderTypeScanningSystemsSR601;
    case SimulatedFamily::SekonicUsb: break;
    }
    return kelReaderTypeSekonicSR2300;
}

} // namespace kel::test
