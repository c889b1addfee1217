// SPDX-License-Identifier: MIT
#include "cli/JsonLines.h"
#include "host/Reader.h"
#include "host/SimulatorParts.h"
#include "simulators/SimulatorTable.h"
#include "simulators/framework/SiteFault.h"
#include "simulators/platform/SimulatedPlatform.h"
#include "tests/cli/CommandRun.h"

#include <gmock/gmock.h>

#include <algorithm>

// A scan of a simulated reader needs no form: without one the component gets that of the sheets in the feeder.

namespace kel::test {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

using Words = std::vector<std::string>;

/// A scan that loses no time and in which nothing goes wrong; the lines of its sheets.
std::vector<Json> sheetsOf(kelReaderType model, const Words& more)
{
    const CommandOutcome outcome = runCommand(simulatedScan(more, std::to_string(model)));
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.status, 0);
    std::vector<Json> sheets;
    for (const std::string& line : outcome.lines()) {
        if (line.starts_with(R"({"event":"sheet")"))
            sheets.push_back(Json::parse(line));
    }
    return sheets;
}

class ScanWithoutForm : public testing::TestWithParam<kelReaderType> {};

TEST_P(ScanWithoutForm, ReadsMadeUpSheets)
{
    const std::vector<Json> sheets = sheetsOf(GetParam(), {"--seed", "5", "--count", "1000000", "--max-sheets", "2"});
    ASSERT_EQ(sheets.size(), 2U);
    const SheetShape shape = sheetShape(GetParam());
    EXPECT_GE(sheets[0]["side1"].size(), static_cast<std::size_t>(shape.side1Rows));
}

INSTANTIATE_TEST_SUITE_P(Models, ScanWithoutForm,
                         testing::Values(kelReaderTypeAppersonAdvantageLink, kelReaderTypeAppersonGradeMaster,
                                         kelReaderTypeAppersonBenchMark3000, kelReaderTypeScantronScanMark2500,
                                         kelReaderTypeNCSOpScan5),
                         [](const auto& model) { return "Model" + std::to_string(model.param); });

/// The same for readers whose dialogue has pauses, under a virtual clock.
class ReadWithoutForm : public testing::TestWithParam<kelReaderType> {};

TEST_P(ReadWithoutForm, ReadsMadeUpSheets)
{
    const host::Simulation simulation{.seed = 5, .count = 1'000'000'000'000}; // no memory holds so many
    host::Request request{.model = std::to_string(GetParam()), .port = Int16{1}};
    request.form = host::formOfSheets(simulation, GetParam());
    request.maxSheets = 2;
    const std::unique_ptr<Simulator> device = host::makeSimulator(simulation, GetParam(), request.form);
    SimulatedPlatform machine;
    const PlatformScope scope(machine);
    machine.attach(1, *device);
    host::Reader reader(request);
    int sheets = 0;
    for (const host::Sheet& sheet : reader.sheets()) {
        EXPECT_GE(sheet.side1.rows(), sheetShape(GetParam()).side1Rows);
        ++sheets;
    }
    EXPECT_EQ(sheets, 2);
    EXPECT_THAT(device->errors(), testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Models, ReadWithoutForm,
                         testing::Values(kelReaderTypeAppersonAdvantage1200, kelReaderTypeScanningSystemsSR607,
                                         kelReaderTypeSekonicSR430, kelReaderTypeNCSEZData, kelReaderTypePDIVMR138),
                         [](const auto& model) { return "Model" + std::to_string(model.param); });

TEST(SimulatedScan, GivesTheMarksOfRawReadersAsTheyAre)
{
    const std::vector<Json> link = sheetsOf(kelReaderTypeAppersonAdvantageLink, {"--seed", "5", "--max-sheets", "1"});
    EXPECT_EQ(link.at(0)["side1"], Json(randomSheet(sheetShape(kelReaderTypeAppersonAdvantageLink), 5, 0).side1));
    // The threshold of a GradeMaster, which is the value of its marks, is 1.
    const std::vector<Json> grade = sheetsOf(kelReaderTypeAppersonGradeMaster, {"--seed", "5", "--max-sheets", "1"});
    const SimulatedSheet sheet = randomSheet(sheetShape(kelReaderTypeAppersonGradeMaster), 5, 0);
    EXPECT_EQ(grade.at(0)["side1"], Json(sheet.side1));
    EXPECT_EQ(grade.at(0)["barcodes"], Json(sheet.barcodes));
}

TEST(SimulatedScan, HasTheFormOfTheLargestSheet)
{
    const TextFile sheets(R"([{"side1":[[1,2,3]]},{"side1":[[4],[5,0,0,199]]},{"side1":[]}])");
    const std::vector<Json> read =
        sheetsOf(kelReaderTypeAppersonAdvantageLink, {"--sheets", sheets.path(), "--max-sheets", "3"});
    ASSERT_EQ(read.size(), 3U);
    EXPECT_EQ(read[0]["side1"], Json::parse("[[1,2,3,0],[0,0,0,0]]"));
    EXPECT_EQ(read[1]["side1"], Json::parse("[[4,0,0,0],[5,0,0,199]]"));
    EXPECT_EQ(read[2]["side1"], Json::parse("[[0,0,0,0],[0,0,0,0]]"));
}

TEST(SimulatedScan, SeesADirtyHead)
{
    const Words more = {"--seed", "5", "--max-sheets", "1"};
    Words dirty = more;
    dirty.insert(dirty.end(), {"--fault", "dirty-head:2"});
    Json rows = sheetsOf(kelReaderTypeScantronScanMark2500, more).at(0)["side1"];
    for (Json& row : rows)
        row[1] = std::min(row[1].get<int>() + 3, 9);
    EXPECT_EQ(sheetsOf(kelReaderTypeScantronScanMark2500, dirty).at(0)["side1"], rows);
}

TEST(SimulatedScan, HearsRubbishFromAReaderOfAnotherSpeed)
{
    const CommandOutcome outcome =
        runCommand({"scan", "--simulate", "--model", "13", "--set", "Timeout=1", "--fault", "wrong-speed:9600"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.output, HasSubstr(R"("event":"failure")"));
}

TEST(SimulatedScan, RefusesFaultsThatDoNotHappenToTheModel)
{
    const auto refusal = [](const char* model, const char* fault) {
        return runCommand({"scan", "--simulate", "--model", model, "--fault", fault}).errors;
    };
    EXPECT_EQ(refusal("13", "not-connected"),
              "kelreader: fault \"not-connected\": does not happen to Scanmark readers.\n");
    EXPECT_EQ(refusal("30", "echo"), "kelreader: fault \"echo\": does not happen to Sekonic USB readers.\n");
    EXPECT_EQ(refusal("13", "wrong-speed:fast"), "kelreader: fault \"wrong-speed:fast\": BAUD is a number.\n");
}

TEST(SimulateCommand, ListsTheFaultsOfTheSite)
{
    const CommandOutcome all = runCommand({"simulate", "--list-faults"});
    EXPECT_EQ(all.status, 0);
    for (const SiteFaultEntry& entry : siteFaults()) {
        EXPECT_THAT(all.output, HasSubstr(std::string(entry.name)));
        EXPECT_THAT(all.output, HasSubstr(std::string(entry.sentence)));
    }
    EXPECT_THAT(all.output, HasSubstr("\ndirty-head[:COLUMN]         all\n"));
    EXPECT_THAT(all.output, HasSubstr("\necho                        all on a serial line\n"));
    EXPECT_THAT(all.output, HasSubstr("\nnot-connected               Sekonic USB\n"));
    const CommandOutcome usb = runCommand({"simulate", "--list-faults", "--model", "30"});
    EXPECT_THAT(usb.output, HasSubstr("not-connected"));
    EXPECT_THAT(usb.output, testing::Not(HasSubstr("echo")));
    EXPECT_EQ(runCommand({"simulate"}).errors,
              "kelreader: --model is required; 'kelreader simulate --help' shows the usage.\n");
}

TEST(SimulatedScan, IsHeldAgainFromItsTrace)
{
    const TextFile trace("");
    const CommandOutcome scan = runCommand(simulatedScan({"--max-sheets", "2", "--trace", trace.path()}, "18"));
    EXPECT_EQ(scan.status, 0);
    EXPECT_THAT(trace.text(), HasSubstr("# form: {\"side1Rows\":[100],\"side1Cols\":[5],\"side2Rows\":[0],"
                                        "\"side2Cols\":[0]}\n"));
    const CommandOutcome replay = runCommand({"replay", trace.path()});
    EXPECT_EQ(replay.errors, "");
    EXPECT_EQ(replay.output, scan.output);
    EXPECT_THAT(replay.output, StartsWith(R"({"event":"sheet","sheet":1,)"));
}

} // namespace
} // namespace kel::test
