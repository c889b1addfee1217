// SPDX-License-Identifier: MIT
// The tests of all guards, and that there is one for each guard in the component.

#include "tests/failure/GuardTest.h"

#include "failure/modvbCodeShieldSupport.h"
#include "platform/posix/PosixFaultCapture.h"
#include "tests/support/BuiltFiles.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <set>

namespace kel::test {
namespace {

using testing::IsEmpty;

constexpr int kMostInstructions = 10000;

std::string nameOf(std::string procedure)
{
    std::replace(procedure.begin(), procedure.end(), '.', '_');
    return procedure;
}

class Guard : public testing::Test {
public:
    explicit Guard(const GuardCase& guard) : guard_(guard) {}

    void TestBody() override
    {
        if (guard_.by == FailsBy::Processor)
            meetAFault();
        else
            fail();
    }

private:
    void fail()
    {
        GuardBench bench;
        guard_.run(bench);
        FailingAllocation::disarm();
        expectReport(bench);
        const auto& boxes = bench.machine.screen().boxes();
        if (guard_.by == FailsBy::Caller) {
            ASSERT_EQ(boxes.size(), 1U);
            EXPECT_EQ(boxes[0].title, "Application Error");
        } else {
            EXPECT_THAT(boxes, IsEmpty());
        }
    }

    void expectReport(const GuardBench& bench)
    {
        const auto& reports = bench.host->reports;
        ASSERT_EQ(reports.size(), 1U) << testing::PrintToString(bench.host->order);
        EXPECT_EQ(reports[0].ErrorSource.substr(0, reports[0].ErrorSource.find(',')), guard_.procedure);
        EXPECT_EQ(reports[0].ErrorType, kErrorTypeRunTime);
        EXPECT_EQ(reports[0].ErrorTitle, "");
        if (guard_.by != FailsBy::Processor) {
            EXPECT_EQ(reports[0].ErrorNumber, guard_.number) << reports[0].ErrorDescription;
        }
        EXPECT_FALSE(componentRuns());
    }

    void meetAFault()
    {
        if (!SteppedFault::kPossible)
            GTEST_SKIP() << "needs a processor that can be stepped, and code that can be left at any statement";
        PosixFaultCapture::instance().install(&vbcsExceptionFilter);
        const auto attempt = [this] {
            GuardBench bench;
            guard_.run(bench);
            expectReport(bench);
            return !HasFailure();
        };
        EXPECT_TRUE(SteppedFault::sweep(kMostInstructions, attempt));
    }

    GuardCase guard_;
};

/// The procedures of all tables, with the number of their cases.
std::map<std::string, int>& guardedProcedures()
{
    static std::map<std::string, int> all;
    return all;
}

std::vector<GuardCase>& guardCases()
{
    static std::vector<GuardCase> all;
    return all;
}

/// The sources of reports that the component's code holds, as its library has them: macros and templates included.
std::set<std::string> sourcesOfComponent()
{
    constexpr std::string_view kPrefix = "KELReader81 - ";
    std::ifstream file(componentLibrary(), std::ios::binary);
    const std::string code{std::istreambuf_iterator<char>(file), {}};
    std::set<std::string> sources;
    for (std::size_t at = code.find(kPrefix); at != std::string::npos; at = code.find(kPrefix, at + 1)) {
        const std::string source = code.c_str() + at + kPrefix.size();
        if (!source.empty())
            sources.insert(source);
    }
    return sources;
}

// Names of procedures under which something is reported, but no failure of a statement.
const std::set<std::string> kNoGuards = {
    "basScantron.heckStatusST", // the status query under a name with a slip in it
};

TEST(EveryGuard, OfTheComponentIsInATable)
{
    std::set<std::string> sources = sourcesOfComponent();
    ASSERT_GT(sources.size(), 100U) << componentLibrary();
    std::vector<std::string> missing;
    for (const std::string& source : sources) {
        if (!guardedProcedures().contains(source) && !kNoGuards.contains(source))
            missing.push_back(source);
    }
    EXPECT_THAT(missing, IsEmpty()) << "procedures with a guard that no test makes fire";

    if (!SteppedFault::kPossible)
        return; // where no statement of a procedure can fail, the compiler leaves out its guard
    std::vector<std::string> gone;
    for (const auto& [procedure, cases] : guardedProcedures()) {
        if (!sources.contains(procedure))
            gone.push_back(procedure);
    }
    EXPECT_THAT(gone, IsEmpty()) << "tests of guards that the component does not have";
}

} // namespace

const std::vector<GuardCase>& allGuardCases()
{
    return guardCases();
}

GuardTable::GuardTable(const char* name, const std::vector<GuardCase>& cases)
{
    for (const GuardCase& guard : cases) {
        guardCases().push_back(guard);
        const int number = ++guardedProcedures()[guard.procedure];
        std::string test = nameOf(guard.procedure);
        if (number > 1)
            test += "_" + std::to_string(number);
        testing::RegisterTest(name, test.c_str(), nullptr, nullptr, __FILE__, __LINE__,
                              [guard]() -> testing::Test* { return new Guard(guard); });
    }
}

} // namespace kel::test
