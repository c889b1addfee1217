// SPDX-License-Identifier: MIT
#include "tests/cli/check/VirtualCheck.h"

#include "host/SimulatorParts.h"
#include "profiles/ReaderModels.h"
#include "tests/support/BuiltFiles.h"
#include "tests/support/TemporaryFolder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <sstream>

// What is wrong where a reader stands, against what a check says of it: for every fault and family, and for every
// healthy reader. docs/readers/faults.md is made of the same.

namespace kel::test {
namespace {

using Kind = SiteFault::Kind;

/// The cause by which a fault is to be named.
Cause causeOf(Kind kind)
{
    static const std::map<Kind, Cause> causes = {
        {Kind::WrongSpeed, Cause::WrongSpeed},
        {Kind::WrongParity, Cause::WrongParity},
        {Kind::WrongDataBits, Cause::WrongDataBits},
        {Kind::WrongStopBits, Cause::WrongStopBits},
        {Kind::ClockOff, Cause::ClockOff},
        {Kind::HandshakingUnwired, Cause::HandshakingUnwired},
        {Kind::HandshakingOff, Cause::BytesLost},
        {Kind::XonXoffSwallowed, Cause::BytesSwallowed},
        {Kind::Echo, Cause::Echo},
        {Kind::Lumps, Cause::Lumps},
        {Kind::OtherModel, Cause::OtherModel},
        {Kind::LeftInMode, Cause::LeftInMode},
        {Kind::StatusLonger, Cause::StatusLonger},
        {Kind::StatusShorter, Cause::StatusShorter},
        {Kind::SwitchedOff, Cause::SwitchedOff},
        {Kind::NotConnected, Cause::NotConnected},
        {Kind::SetupRefused, Cause::SetupRefused},
        {Kind::BarcodeUnitMissing, Cause::BarcodeUnitMissing},
        {Kind::EmptyFeeder, Cause::EmptyFeeder},
        {Kind::Jam, Cause::Jam},
        {Kind::DoubleFeed, Cause::DoubleFeed},
        {Kind::DirtyHead, Cause::DirtyHead},
        {Kind::SkewedSheet, Cause::SkewedSheet},
    };
    return causes.at(kind);
}

/// Checks a simulated USB reader. There is no time in it, and so no virtual clock.
CheckResults checkUsb(kelReaderType model, const std::vector<std::string>& faults)
{
    CheckPlan plan = fullPlan(model);
    plan.request.port = {};
    plan.request.assignments = {"Barcode=true"};
    host::Simulation simulation;
    simulation.count = static_cast<std::uint64_t>(plan.sheets);
    simulation.copies = true;
    simulation.faults = faults;
    const host::SimulatedReader reader(model, simulation, plan.request.form);
    WillingOperator willing;
    LineBench bench([](const std::string&) {});
    CheckRun run(plan, {.bench = bench, .person = willing, .onResult = [](const CheckResult&) {}, .stopWanted = {}});
    return run.run();
}

Verdict verdictOf(kelReaderType model, SimulatedFamily family, const std::vector<std::string>& faults)
{
    return family == SimulatedFamily::SekonicUsb ? judge(checkUsb(model, faults))
                                                 : checkVirtually(model, {.faults = faults}).verdict;
}

struct Row {
    SimulatedFamily family;
    std::string fault;
    Cause wanted;
    Verdict verdict;
};

std::vector<Row> wholeTable()
{
    std::vector<Row> made;
    for (const SimulatedFamily family : kSimulatedFamilies)
        for (const std::string& fault : faultsOf(family))
            made.push_back({family, fault, causeOf(parseSiteFault(fault)->kind),
                            verdictOf(representative(family), family, {fault})});
    return made;
}

void expectFaultsNamedByTheirCause(const std::vector<Row>& table)
{
    std::size_t named = 0;
    std::string others;
    for (const Row& row : table) {
        if (row.verdict.cause == row.wanted)
            ++named;
        else
            others += std::string(nameOf(row.family)) + ", " + row.fault + ": " +
                      std::string(nameOf(row.verdict.cause)) + "\n";
    }
    EXPECT_GE(named * 100, table.size() * 95) << others;
    testing::Test::RecordProperty("named", static_cast<int>(named));
}

void expectFaultsOfEveryFamily(const std::vector<Row>& table)
{
    for (const SimulatedFamily family : kSimulatedFamilies) {
        const auto rows = std::ranges::count_if(table, [&](const Row& row) { return row.family == family; });
        EXPECT_GE(rows, family == SimulatedFamily::SekonicUsb ? 6 : 12) << nameOf(family);
    }
}

std::string pageOf(const std::vector<Row>& table)
{
    std::ostringstream page;
    page
        << "<!-- Made by the tests: KEL_WRITE_PAGES=1 kel_tests --gtest_filter='CheckFaultTable.*' -->\n\n"
           "# What `kelreader check` says\n\n"
           "Faults of a reader's site, each made in a simulated reader of each family, and what a check with `--search "
           "--sheets 3` says of it. [All readers](common.md) has what to do first.\n";
    for (const SimulatedFamily family : kSimulatedFamilies) {
        page << "\n## " << nameOf(family) << "\n\nSimulated: " << ReturnReaderName(representative(family))
             << ".\n\n| Fault | Named | The operator reads |\n|---|---|---|\n";
        for (const Row& row : table) {
            if (row.family != family)
                continue;
            page << "| " << row.fault << " | "
                 << (row.verdict.cause == row.wanted ? std::string("yes")
                                                     : "as " + std::string(nameOf(row.verdict.cause)))
                 << " | " << row.verdict.sentence << " " << row.verdict.advice << " |\n";
        }
    }
    return page.str();
}

// One test, since the table takes long to make, and tests may run in a process each.
TEST(CheckFaultTable, NamesFaultsByTheirCauseAndIsOnItsPage)
{
    const std::vector<Row> table = wholeTable();
    expectFaultsNamedByTheirCause(table);
    expectFaultsOfEveryFamily(table);
    const std::filesystem::path file = std::filesystem::path(testData()).parent_path() / "docs/readers/faults.md";
    if (std::getenv("KEL_WRITE_PAGES"))
        std::ofstream(file) << pageOf(table);
    EXPECT_EQ(fileText(file), pageOf(table));
}

class CheckHealthy : public testing::TestWithParam<kelReaderType> {};

TEST_P(CheckHealthy, IsNotBlamed)
{
    const bool usb = host::isUsbModel(GetParam());
    const Verdict verdict = verdictOf(GetParam(), usb ? SimulatedFamily::SekonicUsb : SimulatedFamily::Apperson, {});
    EXPECT_TRUE(verdict.usable) << verdict.sentence;
    EXPECT_EQ(verdict.cause, Cause::None) << verdict.sentence;
    EXPECT_EQ(verdict.sentence, "The reader can be used.");
}

std::vector<kelReaderType> allModels()
{
    std::vector<kelReaderType> models = modelsOfCatalogue(false);
    for (const kelReaderType model : modelsOfCatalogue(true))
        models.push_back(model);
    return models;
}

INSTANTIATE_TEST_SUITE_P(Models, CheckHealthy, testing::ValuesIn(allModels()),
                         [](const auto& model) { return "Model" + std::to_string(model.param); });

TEST(CheckHealthyModels, AreAllThereAre)
{
    EXPECT_EQ(allModels().size(), 41U);
}

} // namespace
} // namespace kel::test
