// SPDX-License-Identifier: MIT
#include "cli/check/ReportHead.h"
#include "cli/check/SheetMask.h"
#include "host/Replay.h"
#include "host/UsageError.h"
#include "tests/cli/check/VirtualCheck.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kel::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

struct Replayed {
    CheckResults results;
    Verdict verdict;
    std::vector<std::string> differences;
};

/// Checks again what a report holds.
Replayed checkAgain(const std::string& text)
{
    const CheckReport report = parseReport(text, "report.txt");
    SimulatedPlatform machine;
    const PlatformScope scope(machine);
    const CheckPlan plan = planOfReport(report, "report.txt");
    ReportBench bench(report.sections, report.facts);
    WillingOperator person;
    CheckRun run(plan, {.bench = bench,
                        .person = person,
                        .onResult = [](const CheckResult&) {},
                        .stopWanted = {},
                        .recorded = report.results,
                        .isRecorded =
                            [&](CheckStage stage) {
                                return stage == CheckStage::Confirm || (report.masked && stage == CheckStage::Sheets);
                            }});
    Replayed replayed;
    replayed.results = run.run();
    replayed.verdict = judge(replayed.results);
    replayed.differences = bench.differences();
    return replayed;
}

std::string reportOf(kelReaderType model, const VirtualOutcome& outcome)
{
    return reportHead(fullPlan(model), false) + outcome.report;
}

/// What was found out, without the times.
std::vector<std::string> findings(const CheckResults& results)
{
    std::vector<std::string> lines;
    for (const CheckResult& result : results)
        lines.push_back(std::string(nameOf(result.stage)) + ", " + result.name + ": " +
                        std::string(nameOf(result.status)) + " " + std::string(nameOf(result.cause)) + " " +
                        result.seen);
    return lines;
}

class CheckReports : public testing::TestWithParam<SimulatedFamily> {};

TEST_P(CheckReports, ComeToTheSameVerdict)
{
    const kelReaderType model = representative(GetParam());
    for (const std::vector<std::string>& faults : {std::vector<std::string>{},
                                                   {"wrong-speed"},
                                                   {"echo"},
                                                   {"lumps"},
                                                   {"jam"},
                                                   {"switched-off"},
                                                   {"switched-off:0"},
                                                   {"dirty-head"},
                                                   {"left-in-mode"},
                                                   {"handshaking-unwired"},
                                                   {"handshaking-off"}}) {
        SCOPED_TRACE(faults.empty() ? "healthy" : faults.front());
        const VirtualOutcome outcome = checkVirtually(model, {.faults = faults});
        const Replayed again = checkAgain(reportOf(model, outcome));
        EXPECT_THAT(again.differences, IsEmpty());
        EXPECT_EQ(again.verdict, outcome.verdict);
        EXPECT_THAT(findings(again.results), testing::ElementsAreArray(findings(outcome.results)));
    }
}

TEST_P(CheckReports, HoldTheSessionWithTheSheets)
{
    const kelReaderType model = representative(GetParam());
    const VirtualOutcome outcome = checkVirtually(model);
    host::Replay replay(reportOf(model, outcome), "report.txt");
    host::Events events;
    const host::Result result = replay.read(events);
    EXPECT_TRUE(result.end.started);
    EXPECT_EQ(result.end.sheets, 3);
    EXPECT_THAT(replay.differences(), IsEmpty());
    EXPECT_THAT(replay.unsent(), IsEmpty());
}

TEST_P(CheckReports, MaskedTheyTellNothingOfTheSheetsAndHoldTheSameSession)
{
    const kelReaderType model = representative(GetParam());
    const VirtualOutcome outcome = checkVirtually(model, {.faults = {"dirty-head"}});
    SheetMask mask(model);
    std::string masked = reportHead(fullPlan(model), true);
    for (std::size_t begin = 0; begin < outcome.report.size();) {
        const std::size_t end = outcome.report.find('\n', begin) + 1;
        masked += mask.masked(outcome.report.substr(begin, end - begin));
        begin = end;
    }
    EXPECT_EQ(checkAgain(masked).verdict, outcome.verdict);

    struct Marks final : host::Events {
        void sheet(const host::Sheet& event) override { count += event.marks(1).size() + event.marks(2).size(); }
        std::size_t count = 0;
    };
    Marks before;
    Marks behind;
    host::Replay plain(reportOf(model, outcome), "report.txt");
    EXPECT_EQ(plain.read(before).end.sheets, 3);
    host::Replay replay(masked, "report.txt");
    EXPECT_EQ(replay.read(behind).end.sheets, 3);
    EXPECT_GT(before.count, 0U);
    EXPECT_EQ(behind.count, 0U);
}

INSTANTIATE_TEST_SUITE_P(Families, CheckReports,
                         testing::Values(SimulatedFamily::Apperson, SimulatedFamily::Chatsworth,
                                         SimulatedFamily::EZData, SimulatedFamily::OpScan,
                                         SimulatedFamily::PeripheralDynamics, SimulatedFamily::Scanmark,
                                         SimulatedFamily::SekonicSerial),
                         [](const auto& family) {
                             std::string name = nameOf(family.param);
                             std::erase(name, ' ');
                             return name;
                         });

TEST(CheckReport, CutOffIsHeldAsFarAsItGoes)
{
    const kelReaderType model = kelReaderTypeScantronScanMark2500;
    const std::string text = reportOf(model, checkVirtually(model));
    const std::string half = text.substr(0, text.find("# section: start 2"));
    EXPECT_FALSE(parseReport(half, "report.txt").whole);
    const Replayed again = checkAgain(half);
    EXPECT_EQ(again.results.back().cause, Cause::Interrupted);
    EXPECT_EQ(again.results.front().status, CheckStatus::Pass);
    EXPECT_TRUE(parseReport(text, "report.txt").whole);
    // In the middle of a line, wherever.
    for (std::size_t length = half.size() / 2; length < half.size(); length += 97)
        EXPECT_FALSE(parseReport(half.substr(0, length), "report.txt").whole);
}

TEST(CheckReport, ATextThatIsNoneIsRefused)
{
    EXPECT_THROW(static_cast<void>(parseReport("# model: 13\n> 41\n", "x.txt")), host::UsageError);
    EXPECT_THROW(static_cast<void>(parseReport("# report: kelreader check 1\n# section: a\n? 41\n", "x.txt")),
                 host::UsageError);
    EXPECT_THROW(static_cast<void>(parseReport("# report: kelreader check 1\n# result: {\n", "x.txt")),
                 host::UsageError);
}

TEST(CheckStops, EndsInOrderWhereverItIsStopped)
{
    for (const kelReaderType model : {kelReaderTypeScantronScanMark2500, kelReaderTypePDIVMR138}) {
        int asked = 0;
        int most = 0;
        static_cast<void>(checkVirtually(model, {.stopWanted = [&] {
                                             ++most;
                                             return false;
                                         }}));
        for (int at = 1; at < most; at += most / 12) {
            SCOPED_TRACE(at);
            asked = 0;
            const VirtualOutcome outcome = checkVirtually(model, {.stopWanted = [&] { return ++asked > at; }});
            EXPECT_EQ(exitStatus(outcome.results), 130);
            EXPECT_EQ(outcome.results.back().cause, Cause::Interrupted);
            EXPECT_THAT(outcome.report, HasSubstr("# end of report"));
        }
    }
}

TEST(CheckLines, NameWhatKeepsThemFromOpening)
{
    for (const auto& [state, cause] : {std::pair{PortState::Absent, Cause::LineAbsent},
                                       {PortState::Busy, Cause::LineBusy},
                                       {PortState::NotPermitted, Cause::LineNotPermitted}}) {
        const VirtualOutcome outcome = checkVirtually(kelReaderTypePDIVMR138, {.port = state});
        EXPECT_EQ(outcome.verdict.cause, cause);
        EXPECT_EQ(outcome.sentBeforeSheets, "");
        EXPECT_EQ(exitStatus(outcome.results), 1);
    }
}

TEST(CheckOperator, IsAskedForSheetsAndMayGo)
{
    CheckPlan plan = fullPlan(kelReaderTypePDIVMR138);
    plan.yes = false;
    WillingOperator person;
    person.leaves = true;
    const VirtualOutcome outcome = checkVirtually(kelReaderTypePDIVMR138, {.plan = plan, .person = &person});
    EXPECT_THAT(person.asked, testing::ElementsAre(HasSubstr("filled sheet")));
    EXPECT_EQ(exitStatus(outcome.results), 130);
}

TEST(CheckOperator, ConfirmsWhatOnlyHeSees)
{
    CheckPlan plan = fullPlan(kelReaderTypeScantronScanMark5500);
    plan.sheets = 0;
    plan.interactive = true;
    WillingOperator person;
    person.denies = true;
    const VirtualOutcome outcome = checkVirtually(kelReaderTypeScantronScanMark5500, {.plan = plan, .person = &person});
    EXPECT_THAT(person.asked, testing::Contains(HasSubstr("reject hopper")));
    EXPECT_THAT(person.asked, testing::Contains(HasSubstr("Pull the reader's cable")));
    EXPECT_EQ(outcome.verdict.cause, Cause::Reported);
}

} // namespace
} // namespace kel::test
