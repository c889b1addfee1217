// SPDX-License-Identifier: MIT
#include "formats/JsonValue.h"
#include "simulators/pseudo_terminal/Pty.h"
#include "tests/cli/CommandRun.h"
#include "tests/support/BuiltFiles.h"
#include "tests/support/TemporaryFolder.h"
#include "types/Enumerations.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <regex>
#include <set>
#include <sstream>

namespace kel::test {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

TEST(ModelsCommand, JsonHasAllRecordsInTheOrderOfTheCatalogue)
{
    const CommandOutcome outcome = runCommand({"models", "--format", "json"});
    EXPECT_EQ(outcome.status, 0);
    const Json models = Json::parse(outcome.output);
    ASSERT_EQ(models.size(), std::size_t{kReaderTypeCount});
    EXPECT_EQ(models[0]["ReaderType"], 0);
    EXPECT_EQ(models[1]["ReaderType"], 40);
    EXPECT_EQ(models.back()["ReaderName"], "Sekonic SR6500 (USB)");
    EXPECT_EQ(models.back()["InterfaceType"], 2);
}

TEST(ModelsCommand, MakersModelsComeWithoutTheEmptyRecord)
{
    const CommandOutcome outcome = runCommand({"models", "--maker", "Apperson", "--format", "json"});
    const Json models = Json::parse(outcome.output);
    std::vector<int> types;
    for (const Json& model : models)
        types.push_back(model["ReaderType"]);
    EXPECT_THAT(types, ElementsAre(40, 1, 39, 18));
}

TEST(ModelsCommand, TableIsTheUsualForm)
{
    const CommandOutcome outcome = runCommand({"models", "--maker", "pdi"});
    EXPECT_EQ(outcome.output, "Type  Name                             Line         Threshold  Columns  Options\n"
                              "  24  Peripheral Dynamics Inc. VMR138  9600,N,8,1   192-254    14       rejecter\n");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(runCommand({"models"}).lines().size(), std::size_t{kReaderTypeCount} + 1);
}

TEST(ModelsCommand, CsvHasAHeadingAndARowARecord)
{
    const std::vector<std::string> lines = runCommand({"models", "--format", "csv"}).lines();
    ASSERT_EQ(lines.size(), std::size_t{kReaderTypeCount} + 1);
    EXPECT_THAT(lines[0], StartsWith("ReaderGrade,ReaderGradeEnabled,ReaderGradeVisible,Barcode,"));
    EXPECT_THAT(lines[0], EndsWith(",LocateEnabled,FirmwareEnabled,MaxCols"));
    EXPECT_THAT(lines[1], StartsWith("false,false,true,"));
}

TEST(ModelsCommand, UnknownMakerIsWrongUse)
{
    const CommandOutcome outcome = runCommand({"models", "--maker", "epson"});
    EXPECT_EQ(outcome.errors,
              "kelreader: There is no maker 'epson'; the makers are apperson, chatsworth, pdi, scantron "
              "and sekonic.\n");
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.status, 2);
}

TEST(ModelCommand, JsonIsOneRecord)
{
    const char* expected =
        R"({"ReaderGrade":false,"ReaderGradeEnabled":false,"ReaderGradeVisible":true,"Barcode":false,)"
        R"("BarcodeEnabled":false,"BarcodeVisible":true,"Duplex":false,"DuplexEnabled":false,"DuplexVisible":true,)"
        R"("Feeder":false,"FeederEnabled":false,"FeederVisible":true,"Rejecter":true,"RejecterEnabled":true,)"
        R"("RejecterVisible":true,"Printer":false,"PrinterEnabled":false,"PrinterVisible":true,"InterfaceType":1,)"
        R"("BaudRate":9600,"BaudRateEnabled":true,"BaudRateVisible":true,"DataBits":8,"DataBitsEnabled":true,)"
        R"("DataBitsVisible":true,"FlowControl":0,"FlowControlEnabled":true,"FlowControlVisible":true,"StopBits":1.0,)"
        R"("StopBitsEnabled":true,"StopBitsVisible":true,"ReaderType":24,"MarkCutOff":250,"MarkDiscrimination":5,)"
        R"("MarkDiscriminationEnabled":true,"MarkDiscriminationVisible":true,"RecognitionThreshold":240,)"
        R"("RecognitionThresholdEnabled":true,"RecognitionThresholdVisible":true,"RecognitionThresholdMinimum":192,)"
        R"("RecognitionThresholdMaximum":254,"SleepTime":50,"SleepTimeEnabled":true,"SleepTimeVisible":true,)"
        R"("Timeout":10,"TimeOutEnabled":true,"TimeOutVisible":true,"ReaderName":"Peripheral Dynamics Inc. VMR138",)"
        R"("Parity":"N","ParityEnabled":true,"ParityVisible":true,"PortEnabled":true,"PortVisible":true,)"
        R"("Windowing":false,"WindowingEnabled":false,"WindowingVisible":true,"LocateEnabled":false,)"
        R"("FirmwareEnabled":false,"MaxCols":14})"
        "\n";
    for (const char* name : {"24", "vmr138", "kelReaderTypePDIVMR138"}) {
        const CommandOutcome outcome = runCommand({"model", name, "--format", "json"});
        EXPECT_EQ(outcome.output, expected) << name;
        EXPECT_EQ(outcome.status, 0);
    }
}

TEST(ModelCommand, TableIsALineAProperty)
{
    const std::vector<std::string> lines = runCommand({"model", "39"}).lines();
    ASSERT_EQ(lines.size(), 59U);
    EXPECT_EQ(lines[0], "ReaderGrade                  false");
    EXPECT_THAT(lines, testing::Contains("ReaderName                   Apperson BenchMark 3000"));
}

TEST(ModelCommand, UnknownModelIsWrongUse)
{
    const CommandOutcome outcome = runCommand({"model", "Scanmark 2501"});
    EXPECT_EQ(outcome.errors, "kelreader: There is no model 'Scanmark 2501'; the nearest are Scantron Scanmark 2500 "
                              "(13), Scantron Scanmark 2000 (11) and Scantron Scanmark 2250 (12) ('kelreader models' "
                              "lists all).\n");
    EXPECT_EQ(outcome.status, 2);
}

TEST(CommandLine, UnknownCommandIsWrongUse)
{
    const CommandOutcome outcome = runCommand({"scna"});
    EXPECT_THAT(outcome.errors, StartsWith("kelreader: There is no command 'scna'; the nearest is scan"));
    EXPECT_EQ(outcome.status, 2);
}

TEST(CommandLine, NoCommandIsWrongUse)
{
    const CommandOutcome outcome = runCommand({});
    EXPECT_EQ(outcome.errors, "kelreader: A subcommand is required; 'kelreader --help' shows the usage.\n");
    EXPECT_EQ(outcome.status, 2);
}

TEST(CommandLine, HelpGoesToStandardOutput)
{
    const CommandOutcome outcome = runCommand({"scan", "--help"});
    EXPECT_THAT(outcome.output, HasSubstr("--reject-sheets"));
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(runCommand({"--version"}).output, StartsWith("kelreader "));
}

TEST(HelpCommand, TellsWhatAnyCommandTakes)
{
    EXPECT_EQ(runCommand({"help"}).output, runCommand({"--help"}).output);
    EXPECT_EQ(runCommand({"help", "scan"}).output, runCommand({"scan", "--help"}).output);
    EXPECT_EQ(runCommand({"help", "ports", "set"}).output, runCommand({"ports", "set", "--help"}).output);
    EXPECT_EQ(runCommand({"help", "ports set"}).output, runCommand({"ports", "set", "--help"}).output);
}

TEST(HelpCommand, UnknownCommandIsWrongUse)
{
    const CommandOutcome outcome = runCommand({"help", "scn"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.errors, HasSubstr("There is no command 'scn'; the nearest is scan"));
    EXPECT_THAT(runCommand({"help", "scan", "x"}).errors, HasSubstr("'scan' has no commands of its own."));
}

/// All options that a command's help tells, as "--name".
std::set<std::string> optionsIn(const std::string& help)
{
    std::set<std::string> options;
    const std::regex option("--[a-z][a-z0-9-]*");
    for (auto found = std::sregex_iterator(help.begin(), help.end(), option); found != std::sregex_iterator(); ++found)
        options.insert(found->str());
    return options;
}

TEST(ManualPage, TellsEveryCommandAndOption)
{
    std::string page = fileText(std::filesystem::path(testData()).parent_path() / "docs" / "kelreader.1");
    ASSERT_FALSE(page.empty());
    page = std::regex_replace(page, std::regex("\\\\-"), "-");

    std::istringstream program(runCommand({"help"}).output);
    std::string line;
    while (std::getline(program, line) && line != "Subcommands:") {
    }
    int commands = 0;
    for (std::string name; std::getline(program, line) && std::istringstream(line) >> name; ++commands) {
        EXPECT_THAT(page, testing::ContainsRegex("[.\"]" + name + "|[A-Z] \"?" + name)) << name;
        for (const std::string& option : optionsIn(runCommand({"help", name}).output)) {
            if (option != "--help") {
                EXPECT_THAT(page, HasSubstr(option)) << name;
            }
        }
    }
    EXPECT_GE(commands, 10);
}

TEST(PortsCommand, NumbersAreMappedAndTaken)
{
    Pty line;
    EXPECT_EQ(runCommand({"ports", "set", "3", line.name()}).status, 0);
    const Json ports = Json::parse(runCommand({"ports", "--format", "json"}).output);
    ASSERT_GE(ports.size(), 16U);
    EXPECT_EQ(jsonText(ports[2]),
              R"({"port":3,"device":")" + line.name() + R"(","description":"","opens":true,"reason":""})");
    EXPECT_EQ(jsonText(ports[3]), R"({"port":4,"device":null,"description":"","opens":false,"reason":""})");
    EXPECT_THAT(runCommand({"ports"}).output, HasSubstr("\n   3  " + line.name() + "  "));

    const CommandOutcome clear = runCommand({"ports", "clear", "3"});
    EXPECT_EQ(clear.status, 0);
    EXPECT_EQ(clear.errors, "");
    EXPECT_TRUE(Json::parse(runCommand({"ports", "--format", "json"}).output)[2]["device"].is_null());
    EXPECT_EQ(runCommand({"ports", "clear", "3"}).errors, "kelreader: Port 3 has no device.\n");
}

TEST(PortsCommand, DeviceThatIsNotThereIsKeptAndTold)
{
    const CommandOutcome set = runCommand({"ports", "set", "5", "/dev/no-such-reader"});
    EXPECT_EQ(set.errors, "kelreader: /dev/no-such-reader is not there now.\n");
    EXPECT_EQ(set.status, 0);
    const Json port = Json::parse(runCommand({"ports", "--format", "json"}).output)[4];
    EXPECT_EQ(port["opens"], false);
    EXPECT_THAT(
        port["reason"].get<std::string>(),
        StartsWith("Invalid port number: Port 5 (/dev/no-such-reader) is not there: No such file or directory."));
    EXPECT_EQ(runCommand({"ports", "clear", "5"}).status, 0);
}

TEST(PortsCommand, NumberOutsideTheRangeIsWrongUse)
{
    for (const char* number : {"0", "17"}) {
        const CommandOutcome outcome = runCommand({"ports", "set", number, "/dev/null"});
        EXPECT_EQ(outcome.errors, "kelreader: Port numbers are 1 to 16, not " + std::string(number) + ".\n");
        EXPECT_EQ(outcome.status, 2);
    }
    EXPECT_EQ(runCommand({"ports", "set", "1", ""}).status, 2);
    EXPECT_EQ(runCommand({"ports", "set", "1"}).status, 2);
    EXPECT_EQ(runCommand({"ports", "clear", "x"}).status, 2);
}

TEST(SimulateCommand, TwoProcessesReadABatch)
{
    const std::string link = TextFile("").path();
    RunningCommand simulator({"simulate", "--model", "AccelScan", "--link", link, "--seed", "5", "--count", "2",
                              "--rate", "unlimited", "--setting", "feed-ms=0"});
    const std::string ready = simulator.readLine();
    EXPECT_THAT(ready, testing::MatchesRegex(R"(\{"event":"ready","device":"/dev/pts/[0-9]+"\})"));
    EXPECT_EQ(std::filesystem::read_symlink(link).string(), Json::parse(ready)["device"]);

    const CommandOutcome scan =
        runCommand({"scan", "--model", "AccelScan", "--device", link, "--set", "Timeout=600", "--max-sheets", "2"});
    EXPECT_EQ(scan.status, 0) << scan.errors;
    EXPECT_EQ(scan.lines().size(), 3U);

    std::vector<std::string> log;
    while (log.empty() || log.back() != R"({"event":"ejected","sheet":2})")
        log.push_back(simulator.readLine());
    EXPECT_THAT(log, ElementsAre(R"({"event":"fed","sheet":1})", R"({"event":"read","sheet":1})",
                                 R"({"event":"fed","sheet":2})", R"({"event":"read","sheet":2})",
                                 R"({"event":"ejected","sheet":2})"));
    simulator.signal(SIGINT);
    const CommandOutcome outcome = simulator.finish();
    EXPECT_THAT(outcome.output, Not(HasSubstr("error")));
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.status, 130);
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(link)));
}

TEST(SimulateCommand, EndsWhenTheReaderIsUnplugged)
{
    RunningCommand simulator({"simulate", "--model", "13", "--fault", "unplug@byte=1"});
    const std::string device = Json::parse(simulator.readLine())["device"];
    EXPECT_EQ(runCommand({"scan", "--model", "13", "--device", device, "--set", "Timeout=600"}).status, 1);
    const CommandOutcome outcome = simulator.finish();
    EXPECT_EQ(outcome.errors, "kelreader: The simulated reader was unplugged.\n");
    EXPECT_EQ(outcome.status, 0);
}

TEST(SimulateCommand, TellsWhatTheHostDoesWrongly)
{
    RunningCommand simulator({"simulate", "--model", "24", "--setting", "line=1200,E,7,1"});
    const std::string device = Json::parse(simulator.readLine())["device"];
    RunningCommand scan({"scan", "--model", "24", "--device", device});
    EXPECT_THAT(simulator.readLine(), StartsWith(R"({"event":"error","text":")"));
    scan.signal(SIGINT);
    scan.finish();
    simulator.signal(SIGINT);
    EXPECT_EQ(simulator.finish().status, 130);
}

TEST(SimulateCommand, WrongUseIsRefused)
{
    const CommandOutcome both = runCommand({"simulate", "--model", "24", "--sheets", "x", "--seed", "1"});
    EXPECT_EQ(both.status, 2);
    const TextFile sheets(R"([{"side1":[["x"]]}])");
    const CommandOutcome broken = runCommand({"simulate", "--model", "24", "--sheets", sheets.path()});
    EXPECT_EQ(broken.status, 2);
    EXPECT_THAT(broken.errors, HasSubstr("sheet 1, side1, row 1, column 1"));
    const TextFile taken("no link");
    const CommandOutcome link = runCommand({"simulate", "--model", "24", "--link", taken.path()});
    EXPECT_EQ(link.errors, "kelreader: The link " + taken.path() + " cannot be made: File exists.\n");
    EXPECT_EQ(link.status, 1);
}

} // namespace
} // namespace kel::test
