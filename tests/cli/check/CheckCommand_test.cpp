// SPDX-License-Identifier: MIT
#include "cli/CommandList.h"
#include "host/SimulatorParts.h"
#include "simulators/platform/SimulatedPlatform.h"
#include "simulators/pseudo_terminal/Pty.h"
#include "tests/cli/CommandRun.h"
#include "tests/support/Patience.h"

#include <csignal>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kel::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

std::string verdictOf(const CommandOutcome& outcome)
{
    const std::vector<std::string> lines = outcome.lines();
    return lines.empty() ? "" : lines.back();
}

/// The command with a simulated reader at port 1, under a virtual clock: a check is about time, and a busy machine has
/// another one than its readers.
class CheckInTime {
public:
    CheckInTime(const std::string& model, host::Simulation simulation) : model_(model)
    {
        simulation.count = 2;
        simulation.copies = true;
        const auto type = static_cast<kelReaderType>(std::stoi(model));
        device_ = host::makeSimulator(simulation, type, host::formOfSheets(simulation, type));
        machine_.attach(1, *device_);
    }

    [[nodiscard]] CommandOutcome check(const std::vector<std::string>& more) const
    {
        std::vector<std::string> words = {"check", "--model", model_, "--port", "1", "--sheets", "2", "--yes"};
        words.insert(words.end(), more.begin(), more.end());
        return runWithin(addCheckCommand, words);
    }

private:
    std::string model_;
    SimulatedPlatform machine_;
    PlatformScope scope_{machine_};
    std::unique_ptr<Simulator> device_;
};

class HealthyReader : public testing::TestWithParam<const char*> {};

TEST_P(HealthyReader, CanBeUsedAndItsReportHoldsTheCheckAgain)
{
    const TextFile report("");
    const CommandOutcome outcome = CheckInTime(GetParam(), {}).check({"--report", report.path(), "--format", "json"});
    EXPECT_EQ(outcome.status, 0) << outcome.output << outcome.errors;
    EXPECT_THAT(verdictOf(outcome), HasSubstr(R"("usable":true)"));
    EXPECT_THAT(report.text(), StartsWith("# report: kelreader check "));
    EXPECT_THAT(report.text(), EndsWith("# end of report\n"));

    const CommandOutcome again = runCommand({"check", "--replay", report.path(), "--format", "json"});
    EXPECT_EQ(again.status, 0) << again.output << again.errors;
    EXPECT_EQ(verdictOf(again), verdictOf(outcome));
    EXPECT_EQ(again.errors, "");

    const CommandOutcome session = runCommand({"replay", report.path()});
    EXPECT_EQ(session.status, 0) << session.errors;
    EXPECT_THAT(verdictOf(session), HasSubstr(R"("sheets":2)"));
}

INSTANTIATE_TEST_SUITE_P(Models, HealthyReader, testing::Values("1", "5", "7", "13", "23", "24", "35"),
                         [](const auto& model) { return "Model" + std::string(model.param); });

class FaultOfTheSite : public testing::TestWithParam<std::tuple<const char*, const char*>> {};

TEST_P(FaultOfTheSite, IsNamed)
{
    const auto& [fault, cause] = GetParam();
    const CommandOutcome outcome = CheckInTime("13", {.faults = {fault}}).check({"--format", "json"});
    EXPECT_EQ(outcome.status, 1) << outcome.output;
    EXPECT_THAT(verdictOf(outcome), HasSubstr("\"cause\":\"" + std::string(cause) + "\""));
}

INSTANTIATE_TEST_SUITE_P(Faults, FaultOfTheSite,
                         testing::Values(std::tuple{"echo", "echo"}, std::tuple{"switched-off:0", "no-answer"},
                                         std::tuple{"jam", "jam"}, std::tuple{"empty-feeder", "empty-feeder"}),
                         [](const auto& fault) {
                             std::string name = std::get<0>(fault.param);
                             std::erase_if(name, [](char c) { return c == '-' || c == ':'; });
                             return name;
                         });

TEST(CheckCommand, WaitsLongerForAReaderWithALongTimeOut)
{
    const host::Simulation slow{.settings = {"reply-ms=3000"}};
    EXPECT_EQ(CheckInTime("13", slow).check({}).status, 1);
    const CommandOutcome patient = CheckInTime("13", slow).check({"--set", "Timeout=60"});
    EXPECT_EQ(patient.status, 0) << patient.output;
    EXPECT_THAT(patient.output, HasSubstr("The reader can be used."));
}

TEST(CheckCommand, LeavesTheSheetsOutOfAMaskedReport)
{
    const TextFile report("");
    const CommandOutcome outcome = CheckInTime("24", {}).check({"--report", report.path(), "--mask"});
    EXPECT_EQ(outcome.status, 0) << outcome.output;
    EXPECT_THAT(report.text(), HasSubstr("# masked: true\n"));
    const CommandOutcome session = runCommand({"replay", report.path(), "--format", "csv"});
    EXPECT_THAT(session.output, HasSubstr("\n2,"));
    EXPECT_THAT(session.output, Not(HasSubstr("=241")));
}

TEST(CheckCommandOverAPseudoTerminal, ChecksASimulatedReader)
{
    const CommandOutcome outcome = runCommand({"check", "--model", "13", "--simulate", "--fault", "switched-off:0"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.output, HasSubstr("The reader cannot be used. Nothing answers"));
}

TEST(CheckCommandOverAPseudoTerminal, StopsInOrderAndWritesTheReportAsFarAsItWent)
{
    Pty line; // says nothing
    const TextFile report("");
    RunningCommand check(
        {"check", "--model", "13", "--device", line.name(), "--set", "Timeout=600", "--report", report.path()});
    ASSERT_TRUE(waitUntil([&] { return !line.read().empty(); }));
    check.signal(SIGINT);
    const CommandOutcome outcome = check.finish();
    EXPECT_EQ(outcome.status, 130);
    EXPECT_THAT(outcome.output, HasSubstr("it was stopped here"));
    EXPECT_THAT(report.text(), EndsWith("# end of report\n"));
}

TEST(CheckCommandOverAPseudoTerminal, SaysThatTheReaderHasHungUp)
{
    for (const char* fault : {"unplug@byte=5", "unplug@byte=20", "unplug@byte=300"}) {
        const CommandOutcome outcome = runCommand({"check", "--model", "13", "--simulate", "--sheets", "2", "--fault",
                                                   fault, "--set", "Timeout=600", "--format", "json"});
        EXPECT_EQ(outcome.status, 1) << fault;
        EXPECT_THAT(verdictOf(outcome), HasSubstr(R"("cause":"line-hung-up")")) << fault;
    }
}

TEST(CheckCommand, RefusesWhatMakesNoSense)
{
    const auto refusal = [](const std::vector<std::string>& arguments) {
        std::vector<std::string> all{"check"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        const CommandOutcome outcome = runCommand(all);
        EXPECT_EQ(outcome.status, 2) << outcome.errors;
        EXPECT_EQ(std::ranges::count(outcome.errors, '\n'), 1) << outcome.errors;
        EXPECT_EQ(outcome.output, "");
        return outcome.errors;
    };
    EXPECT_THAT(refusal({}), HasSubstr("--model is required"));
    EXPECT_THAT(refusal({"--model", "30", "--port", "1"}), HasSubstr("A USB model has no line"));
    EXPECT_THAT(refusal({"--model", "13", "--omrapi", "x.so"}), HasSubstr("--omrapi is for USB models"));
    EXPECT_THAT(refusal({"--model", "13"}), HasSubstr("Where is the reader?"));
    EXPECT_THAT(refusal({"--model", "13", "--port", "1", "--fault", "echo"}), HasSubstr("go with --simulate"));
    EXPECT_THAT(refusal({"--model", "13", "--simulate", "--mask"}), HasSubstr("--report FILE"));
    EXPECT_THAT(refusal({"--model", "13", "--simulate", "--fault", "nonsense"}), HasSubstr("nonsense"));
    EXPECT_THAT(refusal({"--model", "13", "--simulate", "--set", "Nothing=1"}), HasSubstr("Nothing"));
    EXPECT_THAT(refusal({"--replay", "/no/such/file"}), HasSubstr("/no/such/file"));
    const TextFile trace("# model: 13\n> 41\n");
    EXPECT_THAT(refusal({"--replay", trace.path()}), HasSubstr("is not a report of 'kelreader check'"));
    EXPECT_THAT(refusal({"--model", "13", "--simulate", "--sheets", "-1"}), HasSubstr("--sheets"));
}

TEST(CheckCommand, SaysWhyALineDoesNotOpen)
{
    const CommandOutcome outcome = runCommand({"check", "--model", "13", "--device", "/dev/no_such_line"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.output, HasSubstr("The line does not exist."));
    EXPECT_THAT(outcome.output, HasSubstr("skipped"));
}

TEST(CheckCommand, ChecksAUsbReader)
{
    const CommandOutcome outcome = runCommand({"check", "--model", "30", "--simulate", "--sheets", "2"});
    EXPECT_EQ(outcome.status, 0) << outcome.output << outcome.errors;
    EXPECT_THAT(outcome.output, HasSubstr("The reader can be used."));
    const CommandOutcome missing = runCommand({"check", "--model", "30", "--omrapi", "/no/such/library.so"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_THAT(missing.output, HasSubstr("The library of the readers' maker cannot be loaded."));
}

class CheckCommandUsb : public testing::TestWithParam<const char*> {};

TEST_P(CheckCommandUsb, ComesToTheSameVerdictsFromItsReport)
{
    const TextFile report("");
    std::vector<std::string> words{"check", "--model", "30", "--simulate", "--sheets", "2", "--report", report.path()};
    if (*GetParam() != '\0')
        words.insert(words.end(), {"--fault", GetParam()});
    const CommandOutcome check = runCommand(words);
    EXPECT_THAT(report.text(), HasSubstr("# section: library\n"));
    const CommandOutcome again = runCommand({"check", "--replay", report.path()});
    EXPECT_EQ(again.output, check.output);
    EXPECT_EQ(again.errors, "");
    EXPECT_EQ(again.status, check.status);
}

INSTANTIATE_TEST_SUITE_P(Faults, CheckCommandUsb, testing::Values("", "jam@sheet=2", "empty@sheet=1"));

TEST(CheckCommand, LeavesTheSheetsOfAUsbReaderOutOfAMaskedReport)
{
    const TextFile report("");
    const CommandOutcome outcome =
        runCommand({"check", "--model", "30", "--simulate", "--sheets", "1", "--report", report.path(), "--mask"});
    EXPECT_EQ(outcome.status, 0) << outcome.output;
    EXPECT_THAT(report.text(), HasSubstr("@ OMR_GetMarks "));
    EXPECT_THAT(report.text(), Not(testing::ContainsRegex("@ OMR_GetMarks [^\n]* : ")));
}

} // namespace
} // namespace kel::test
