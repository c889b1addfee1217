// SPDX-License-Identifier: MIT
#include "cli/JsonLines.h"
#include "host/Batch.h"
#include "platform/posix/PosixOmrApiLoader.h"
#include "simulators/platform/SimulatedPlatform.h"
#include "simulators/sekonic_usb/OmrApiSimulation.h"
#include "strings/VBLMRTSModule.h"
#include "tests/cli/CommandRun.h"
#include "tests/support/BuiltFiles.h"

#include <gmock/gmock.h>

#include <csignal>
#include <cstdlib>

// The USB readers from the command line, with the simulated library of their maker: within the command, laid out by
// another process, and with a state of one's own.

namespace kel::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

using Words = std::vector<std::string>;

constexpr const char* kBarcodeForm =
    R"({"barcodes":[{"Page":1,"Distance":100,"Length":50},{"Page":1,"Distance":300,"Length":30}]})";

MarkArray cellsOf(const MarkRows& rows)
{
    MarkArray cells(200, 48);
    for (Int32 row = 1; row <= 200; ++row) {
        for (Int32 column = 1; column <= 48; ++column)
            cells(row, column) = markAt(rows, row, column);
    }
    return cells;
}

/// The line that tells a sheet which has been read on one side.
std::string readLine(Int32 number, const SimulatedSheet& sheet)
{
    host::Sheet line;
    line.number = number;
    line.side1 = cellsOf(sheet.side1);
    line.side2 = MarkArray(200, 48);
    line.side1TimingMarks = static_cast<Int16>(sheet.side1.size());
    line.barcodes = TextArray(0, 0);
    return jsonLine(line);
}

SimulatedSheet madeUp(std::uint64_t seed, std::uint64_t place, const FormDescription& form = {})
{
    return randomSheet(omrSheetShape(form), seed, place);
}

std::string endLine(Int32 sheets)
{
    return R"({"event":"end","started":true,"sheets":)" + std::to_string(sheets) +
           R"(,"cancelScan":true,"result":true})";
}

class UsbScan : public testing::TestWithParam<const char*> {};

TEST_P(UsbScan, ReadsMadeUpSheetsUntilThereAreNoMore)
{
    const CommandOutcome outcome =
        runCommand({"scan", "--simulate", "--model", GetParam(), "--seed", "7", "--count", "3"});
    EXPECT_THAT(outcome.lines(), ElementsAre(readLine(1, madeUp(7, 0)), readLine(2, madeUp(7, 1)),
                                             readLine(3, madeUp(7, 2)), endLine(3)));
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.status, 0);
}

INSTANTIATE_TEST_SUITE_P(Models, UsbScan, testing::Values("30", "33", "34", "36"),
                         [](const auto& model) { return "Model" + std::string(model.param); });

TEST(UsbScanCommand, ReadsBothSidesAndBarcodes)
{
    const TextFile form(kBarcodeForm);
    const CommandOutcome outcome = runCommand({"scan", "--simulate", "--model", "SR3500", "--seed", "9", "--count", "4",
                                               "--max-sheets", "2", "--form", form.path(), "--set", "Duplex=true",
                                               "--set", "DuplexForm=true", "--set", "Barcode=true"});
    ASSERT_EQ(outcome.lines().size(), 3U) << outcome.errors;
    for (std::uint64_t place = 0; place < 2; ++place) {
        const SimulatedSheet sheet = madeUp(9, place, {.barcodes = {{}, {}}});
        const Json line = Json::parse(outcome.lines()[place]);
        EXPECT_EQ(line["barcodes"], Json(sheet.barcodes));
        EXPECT_EQ(line["side1TimingMarks"], 60);
        EXPECT_EQ(line["side2TimingMarks"], 60);
        for (std::size_t row = 0; row < 60; ++row)
            EXPECT_EQ(line["side2"][row], Json(sheet.side2[row]));
    }
    EXPECT_EQ(outcome.lines().back(), endLine(2));
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.status, 0);
}

TEST(UsbScanCommand, ReadsTheFirstSheetsOfAHighPile)
{
    const auto scan = [](const char* count) {
        return runCommand(
            {"scan", "--simulate", "--model", "30", "--seed", "7", "--count", count, "--max-sheets", "2"});
    };
    const CommandOutcome outcome = scan("1000000");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.lines().size(), 3U);
    EXPECT_EQ(outcome.output, scan("2").output);
}

TEST(UsbScanCommand, ReadsTheSheetsOfAFile)
{
    const TextFile sheets(R"([{"side1":[[1,0,255]]},{"side1":[],"side2":[[3]]}])");
    const CommandOutcome outcome = runCommand({"scan", "--simulate", "--model", "36", "--sheets", sheets.path()});
    EXPECT_THAT(outcome.lines(), ElementsAre(readLine(1, {.side1 = {{1, 0, 255}}}), readLine(2, {}), endLine(2)));
    EXPECT_EQ(outcome.status, 0);
}

TEST(UsbScanCommand, MeetsWhatCanBeWrongWhereAReaderStands)
{
    struct Meeting {
        const char* fault;
        std::size_t sheets;
        int status;
    };
    const std::string healthy = runCommand({"scan", "--simulate", "--model", "30", "--count", "3"}).output;
    for (const auto& [fault, sheets, status] : {Meeting{"not-connected", 0, 1},
                                                {"switched-off", 0, 1},
                                                {"switched-off:3", 2, 1},
                                                {"switched-off:0", 0, 1},
                                                {"setup-refused", 0, 1},
                                                {"left-in-mode", 3, 0},
                                                {"empty-feeder", 0, 0},
                                                {"jam:2", 1, 1},
                                                {"double-feed:2", 2, 0},
                                                {"dirty-head:40", 3, 0},
                                                {"skewed-sheet:3", 3, 0},
                                                {"barcode-unit-missing", 3, 0}}) {
        SCOPED_TRACE(fault);
        const CommandOutcome outcome =
            runCommand({"scan", "--simulate", "--model", "30", "--count", "3", "--fault", fault});
        EXPECT_EQ(outcome.status, status);
        std::size_t read = 0;
        for (const std::string& line : outcome.lines())
            read += line.starts_with(R"({"event":"sheet")") ? 1 : 0;
        EXPECT_EQ(read, sheets);
        const bool harmless = fault == std::string("left-in-mode") || fault == std::string("barcode-unit-missing");
        EXPECT_EQ(outcome.output == healthy, harmless);
    }
}

TEST(UsbScanCommand, ReportsAJam)
{
    const CommandOutcome outcome =
        runCommand({"scan", "--simulate", "--model", "30", "--count", "3", "--fault", "jam@sheet=2"});
    const std::vector<std::string> lines = outcome.lines();
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_THAT(lines[0], StartsWith(R"({"event":"sheet","sheet":1,)"));
    EXPECT_EQ(lines[1], R"({"event":"failure","line":0,"number":35090000,"type":1,"description":")" +
                            VBLM_RTString(514) + R"(","source":"basSekonicSR.ReturnErrorSR","title":")" +
                            VBLM_RTString(556) + R"("})");
    EXPECT_EQ(lines[2], endLine(1));
    EXPECT_EQ(outcome.status, 1);
}

TEST(UsbScanCommand, RefusesWhatIsOfALineAndWhatIsNoSheet)
{
    const auto refusal = [](const Words& more) {
        Words words = {"scan", "--simulate", "--model", "30"};
        words.insert(words.end(), more.begin(), more.end());
        const CommandOutcome outcome = runCommand(words);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.output, "");
        return outcome.errors;
    };
    EXPECT_EQ(refusal({"--fault", "drop@byte=3"}), "kelreader: no fault drop@byte=3 here; the USB models know jam and "
                                                   "empty at a sheet.\n");
    EXPECT_EQ(refusal({"--setting", "feed-ms=3"}),
              "kelreader: unknown setting feed-ms; this model knows barcodeUnit, columns.\n");
    const TextFile sheets(R"([{"side1":[[1]]},{"side1":[[1],[256]]}])");
    EXPECT_THAT(refusal({"--sheets", sheets.path()}), HasSubstr("sheet 2, side1"));
    EXPECT_THAT(refusal({"--omrapi", "/tmp/never"}), HasSubstr("--simulate excludes --omrapi"));
}

/// A scan with a trace; the trace's text.
std::string traced(const Words& more, CommandOutcome& scan)
{
    const TextFile trace("");
    Words words = {"scan", "--simulate", "--model", "30", "--trace", trace.path()};
    words.insert(words.end(), more.begin(), more.end());
    scan = runCommand(words);
    return trace.text();
}

TEST(UsbScanCommand, IsReplayedFromTheCallsOfItsLibrary)
{
    const TextFile form(kBarcodeForm);
    for (const Words& more : {Words{"--count", "2", "--form", form.path(), "--set", "Barcode=True"},
                              Words{"--count", "9", "--max-sheets", "2", "--print1", "sheet = {sheet}: \"#1\""},
                              Words{"--count", "3", "--fault", "jam@sheet=2"},
                              Words{"--count", "2", "--setting", "columns=40"}, Words{"--count", "0"}}) {
        CommandOutcome scan;
        const TextFile trace(traced(more, scan));
        const CommandOutcome replay = runCommand({"replay", trace.path()});
        EXPECT_EQ(replay.output, scan.output);
        EXPECT_EQ(replay.errors, scan.errors);
        EXPECT_EQ(replay.status, scan.status);
    }
}

TEST(UsbScanCommand, ATraceHasEachCallWithWhatCameOfIt)
{
    CommandOutcome scan;
    const TextFile sheets(R"([{"side1":[[0,0,12]]}])");
    const std::string trace = traced({"--sheets", sheets.path()}, scan);
    EXPECT_THAT(trace, StartsWith("# model: 30\n"));
    EXPECT_THAT(trace, HasSubstr("@ OMR_OpenDeviceUSB = 0\n"));
    EXPECT_THAT(trace, HasSubstr("@ OMR_SetBackSensorUnit 0 = 1\n"));
    EXPECT_THAT(trace, HasSubstr("@ OMR_GetSheetFeedMode = 1 0 0\n"));
    EXPECT_THAT(trace, testing::ContainsRegex("@ OMR_GetMarks 0 [0-9]+ 200 48 = 1 1 48 : 00 00 0C\n"));
    EXPECT_THAT(trace, testing::EndsWith("@ OMR_CloseDevice = 1\n"));
}

TEST(UsbScanCommand, AReplaySaysWhereItLeavesItsTranscript)
{
    CommandOutcome scan;
    std::string text = traced({"--count", "1"}, scan);
    const std::string sensor = "OMR_SetBackSensorUnit 0";
    text.replace(text.find(sensor), sensor.size(), "OMR_SetBackSensorUnit 1");
    const CommandOutcome other = runCommand({"replay", TextFile(text).path()});
    EXPECT_EQ(other.status, 1);
    EXPECT_THAT(other.errors, HasSubstr("the host called OMR_SetBackSensorUnit 0 where the transcript has "
                                        "OMR_SetBackSensorUnit 1.\n"));
    const CommandOutcome broken = runCommand({"replay", TextFile("# model: 30\n@ OMR_FeedSheet\n").path()});
    EXPECT_EQ(broken.status, 2);
    EXPECT_THAT(broken.errors, HasSubstr("line 2: write a call as: OMR_CloseDevice = 0"));
}

TEST(UsbScanSession, AStopThatComesDuringAReadIsKnownWhenTheSheetIsRejected)
{
    SimulatedPlatform machine;
    const PlatformScope scope(machine);
    const OmrApiSimulation simulation(simulatedOmrApi(), {.sheets = {{}, {}}});
    PosixOmrApiLoader loader("/nowhere");
    loader.libraryFile(simulatedOmrApi());
    machine.omrApiLoader().set(&loader.omrApi());
    host::Request request;
    request.model = kelReaderTypeSekonicSR2300;
    request.rejectSheets = {1};
    clsKELReader reader;
    host::prepareReader(reader, request);
    JsonLines sink([](const std::string&) {});
    int asked = 0; // before the sheet, and when it has been read
    const host::Result result = host::runScan(reader, request, sink, [&] { return ++asked >= 2; });
    EXPECT_EQ(result.end.sheets, 1);
    EXPECT_EQ(simulation.report().log.back(), (SheetRecord{SheetEvent::Ejected, 1, "outlet 1", 0, 0}));
    EXPECT_THAT(simulation.report().faults, testing::IsEmpty());
}

TEST(UsbScanCommand, SaysWhatToDoWithoutALibrary)
{
    const CommandOutcome outcome = runCommand({"scan", "--model", "34", "--omrapi", "/nowhere/libOMRAPI.so"});
    EXPECT_THAT(outcome.lines(),
                ElementsAre(HasSubstr(R"("number":53,"type":0,"description":"File not found: OMRAPI.DLL")"),
                            R"({"event":"end","started":false,"sheets":0,"cancelScan":true,"result":false})"));
    EXPECT_THAT(outcome.errors, HasSubstr(VBLM_RTString(488)));
    EXPECT_EQ(outcome.status, 1);
}

TEST(UsbScanCommand, TakesAStateOfOnesOwn)
{
    const TextFile log("");
    const TextFile state(R"({"sheets":[{"side1":[[1]],"barcodes":["47","11"]}],"readingMethod":[1,77],"columns":40,)"
                         R"("feedMode":[2,0],"refusals":[{"function":"OMR_GetBarcodeData","call":1}],"logFile":")" +
                         log.path() + "\"}");
    const TextFile form(kBarcodeForm);
    ::setenv("KEL_OMRAPI_SIMULATION", state.path().c_str(), 1);
    const CommandOutcome outcome = runCommand(
        {"scan", "--model", "33", "--omrapi", simulatedOmrApi(), "--form", form.path(), "--set", "Barcode=true"});
    ::unsetenv("KEL_OMRAPI_SIMULATION");
    ASSERT_EQ(outcome.lines().size(), 2U) << outcome.errors;
    EXPECT_THAT(outcome.lines()[0], HasSubstr(R"("barcodes":["","11"])"));
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(log.text(), HasSubstr(R"({"event":"read","sheet":1,"text":"front"})"));
    EXPECT_THAT(log.text(), testing::Not(HasSubstr("fault")));
}

/// The lines of a simulator up to one that ends a session.
Words linesOfSession(RunningCommand& simulator, std::size_t count)
{
    Words lines;
    while (lines.size() < count)
        lines.push_back(simulator.readLine());
    return lines;
}

TEST(UsbSimulateCommand, LaysALibraryOutAndTellsWhatBecomesOfTheSheets)
{
    RunningCommand simulator({"simulate", "--model", "30", "--seed", "3", "--count", "3"});
    const Json ready = Json::parse(simulator.readLine());
    EXPECT_EQ(ready["event"], "ready");
    const std::string library = ready["library"];

    // As many sessions as one likes, and the whole pile in each.
    for (int session = 0; session < 2; ++session) {
        const CommandOutcome scan =
            runCommand({"scan", "--model", "30", "--omrapi", library, "--max-sheets", "2", "--print1", "Nú {sheet}",
                        "--print-distance", "30", "--reject-sheets", "1", "--set", "Rejecter=true"});
        EXPECT_EQ(scan.errors, "");
        EXPECT_EQ(scan.status, 0);
        ASSERT_EQ(scan.lines().size(), 3U);
        EXPECT_THAT(scan.lines()[0], HasSubstr(R"("rejected":true,"printed":false)"));
        EXPECT_THAT(scan.lines()[1], HasSubstr(R"("rejected":false,"printed":true)"));
        EXPECT_THAT(linesOfSession(simulator, 9),
                    ElementsAre(R"({"event":"fed","sheet":1})", R"({"event":"read","sheet":1,"text":"front"})",
                                R"({"event":"rejected","sheet":1,"text":"outlet 4"})", R"({"event":"fed","sheet":2})",
                                R"({"event":"read","sheet":2,"text":"front"})",
                                R"({"event":"printed","sheet":2,"text":"Nú 2","line":1,"position":30})",
                                R"({"event":"printed","sheet":2,"line":2,"position":30})",
                                R"({"event":"printed","sheet":2,"line":3,"position":30})",
                                R"({"event":"ejected","sheet":2,"text":"outlet 1"})"));
    }
    simulator.signal(SIGINT);
    const CommandOutcome end = simulator.finish();
    EXPECT_EQ(end.output, "");
    EXPECT_EQ(end.errors, "");
    EXPECT_EQ(end.status, 130);
    EXPECT_FALSE(std::filesystem::exists(library));
    EXPECT_FALSE(std::filesystem::exists(std::filesystem::path(library).parent_path()));
}

TEST(UsbSimulateCommand, LaysItOutWhereItIsTold)
{
    const std::string link = (std::filesystem::temp_directory_path() / "kelreader-test-omr.so").string();
    RunningCommand simulator({"simulate", "--model", "36", "--link", link, "--count", "1"});
    EXPECT_EQ(simulator.readLine(), R"({"event":"ready","library":")" + link + R"("})");
    EXPECT_EQ(runCommand({"scan", "--model", "36", "--omrapi", link}).lines().back(), endLine(1));
    simulator.signal(SIGTERM);
    EXPECT_EQ(simulator.finish().status, 130);
    for (const char* ending : {"", ".json", ".log"})
        EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(link + ending))) << ending;
}

TEST(UsbSimulateCommand, WrongUseIsRefused)
{
    const TextFile taken("no link");
    const CommandOutcome link = runCommand({"simulate", "--model", "30", "--link", taken.path()});
    EXPECT_EQ(link.errors, "kelreader: The link " + taken.path() + " cannot be made: File exists.\n");
    EXPECT_EQ(link.status, 1);
    EXPECT_EQ(taken.text(), "no link");
    const CommandOutcome fault = runCommand({"simulate", "--model", "30", "--fault", "unplug@byte=1"});
    EXPECT_THAT(fault.errors, HasSubstr("the USB models know jam and empty at a sheet"));
    EXPECT_EQ(fault.status, 2);
}

} // namespace
} // namespace kel::test
