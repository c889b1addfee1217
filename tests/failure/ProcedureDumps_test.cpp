// SPDX-License-Identifier: MIT
// The variables that the dump of a procedure holds: support reads them by their names.

#include "tests/failure/GuardTest.h"

#include "platform/NamedObjects.h"
#include "tests/support/BuiltFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest-spi.h>

#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>

namespace kel::test {
namespace {

using testing::IsEmpty;

using Names = std::set<std::string>;

/// The names of the variables in a text of a dump: those of the procedure, not the elements of arrays.
void collectNames(const std::string& text, Names& names)
{
    static const std::regex line("(?:^|\n)    <(\\w+)");
    for (auto found = std::sregex_iterator(text.begin(), text.end(), line); found != std::sregex_iterator(); ++found)
        names.insert((*found)[1]);
}

/// Keeps the names of the parameters and locals of every procedure that is told.
class NameCollector final : public ErrorLibraryObject {
public:
    explicit NameCollector(std::map<std::string, Names>& procedures) : procedures_(procedures) {}

    void ErrorHandler(const CrashReport& report) override
    {
        Names& names = procedures_[report.module + "." + report.procedure];
        const std::string& text = report.variables;
        collectNames(text.substr(0, text.find("<ModuleVariables>")), names);
        collectNames(text.substr(text.find("<Parameters>")), names);
    }
    /// The procedure's caller gets the failure next, and has no memory to report it either.
    Int32 Action() override
    {
        FailingAllocation::armForHandlers();
        return 0;
    }

private:
    std::map<std::string, Names>& procedures_;
};

/// What every procedure dumps that fails, and has no memory to report it, in one of the cases of the guards' tables.
std::map<std::string, Names> dumpedNames()
{
    std::map<std::string, Names> procedures;
    registerErrorLibrary(kErrorLibraryClass, [&] { return std::make_shared<NameCollector>(procedures); });
    for (const GuardCase& guard : allGuardCases()) {
        if (guard.by == FailsBy::Processor)
            continue;
        // What a case expects of the procedure's end is for its own test.
        testing::TestPartResultArray ignored;
        const testing::ScopedFakeTestPartResultReporter reporter(
            testing::ScopedFakeTestPartResultReporter::INTERCEPT_ONLY_CURRENT_THREAD, &ignored);
        GuardBench bench;
        FailingAllocation::armForHandlers();
        try {
            guard.run(bench);
        } catch (const std::exception&) {
            // As its caller would have met it here.
        }
    }
    registerErrorLibrary(kErrorLibraryClass, {});
    return procedures;
}

/// The table, a procedure a line: "basNCS.ReadPageNCS: oReader sCmd".
std::map<std::string, Names> tableOfNames()
{
    std::map<std::string, Names> table;
    std::ifstream file(testData() + "/failure/procedure_variables.txt");
    for (std::string line; std::getline(file, line);) {
        const std::size_t colon = line.find(':');
        if (line.starts_with('#') || colon == std::string::npos)
            continue;
        std::istringstream names(line.substr(colon + 1));
        for (std::string name; names >> name;)
            table[line.substr(0, colon)].insert(name);
    }
    return table;
}

TEST(ProcedureDumps, HoldTheVariablesOfTheTable)
{
    const std::map<std::string, Names> table = tableOfNames();
    ASSERT_GT(table.size(), 90U);
    std::map<std::string, Names> dumped = dumpedNames();
    for (const auto& [procedure, names] : table) {
        EXPECT_TRUE(dumped.contains(procedure)) << procedure << " was not made to fail";
        Names missing;
        std::set_difference(names.begin(), names.end(), dumped[procedure].begin(), dumped[procedure].end(),
                            std::inserter(missing, missing.end()));
        EXPECT_THAT(missing, IsEmpty()) << procedure;
    }
}

/// A procedure of a module has at least its parameters to tell; one that no statement can make fail tells them to
/// nobody.
TEST(ProcedureDumps, TableHasEveryProcedureOfAModule)
{
    const std::map<std::string, Names> table = tableOfNames();
    const std::set<std::string> withoutVariables = {"basSekonicSR.CloseReaderSR", "basSekonicSR.InitBarcodeSR"};
    for (const GuardCase& guard : allGuardCases()) {
        if (!guard.procedure.starts_with("bas") || guard.by == FailsBy::Processor)
            continue;
        EXPECT_TRUE(table.contains(guard.procedure) || withoutVariables.contains(guard.procedure)) << guard.procedure;
    }
}

} // namespace
} // namespace kel::test
