// SPDX-License-Identifier: MIT
#include "platform/posix/Sqlite.h"
#include "store/SheetStore.h"
#include "store/StoredSheets.h"
#include "tests/cli/CommandRun.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <csignal>
#include <sys/resource.h>

namespace kel::test {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;
using Json = nlohmann::json;
using Words = std::vector<std::string>;

class StoreCommand : public testing::Test {
protected:
    [[nodiscard]] CommandOutcome scan(int sheets, const Words& more = {}) const
    {
        const std::string count = std::to_string(sheets);
        Words words = simulatedScan({"--count", count, "--max-sheets", count, "--store", store_}, "13");
        words.insert(words.end(), more.begin(), more.end());
        return runCommand(words);
    }

    [[nodiscard]] CommandOutcome sheets(const Words& more = {}) const
    {
        Words words = {"sheets", store_};
        words.insert(words.end(), more.begin(), more.end());
        return runCommand(words);
    }

    TemporaryFolder folder_;
    std::string store_ = folder_.file("hall.db");
};

TEST_F(StoreCommand, HasWhatTheScanHasWritten)
{
    const CommandOutcome scanned = scan(3, {"--reader", "left", "--batch", "monday", "--reject-sheets", "2"});
    ASSERT_EQ(scanned.status, 0) << scanned.errors;
    const CommandOutcome shown = sheets();
    ASSERT_EQ(shown.status, 0) << shown.errors;
    ASSERT_THAT(shown.lines(), SizeIs(3));
    for (int i = 0; i < 3; ++i) {
        const Json line = Json::parse(shown.lines()[i]);
        EXPECT_EQ(line["reader"], "left");
        EXPECT_EQ(line["batch"], "monday");
        const Json written = Json::parse(scanned.lines()[i]);
        for (const auto& [name, value] : written.items())
            EXPECT_EQ(line[name], value) << name;
    }
}

TEST_F(StoreCommand, NumbersOfABatchRunOnInTheNextScan)
{
    ASSERT_EQ(scan(2, {"--batch", "monday"}).status, 0);
    ASSERT_EQ(scan(1, {"--batch", "monday"}).status, 0);
    ASSERT_EQ(scan(1, {"--batch", "tuesday"}).status, 0);
    std::vector<int> numbers;
    for (const std::string& line : sheets().lines())
        numbers.push_back(Json::parse(line)["sheet"]);
    EXPECT_THAT(numbers, ElementsAre(1, 2, 3, 1));
    EXPECT_THAT(sheets({"--batch", "tuesday"}).lines(), SizeIs(1));
    EXPECT_THAT(sheets({"--reader", "nobody"}).lines(), IsEmpty());
    EXPECT_THAT(sheets({"--since", "2999-01-01"}).lines(), IsEmpty());
}

TEST_F(StoreCommand, SheetsHaveTheSameNumberOnPaperInTheOutputAndInTheStore)
{
    const Words printing = {"--batch", "monday", "--set", "Printer.Enabled=true", "--print1", "no {sheet}"};
    for (const std::string trace : {"first", "second"}) {
        Words words = printing;
        words.insert(words.end(), {"--trace", folder_.file(trace)});
        ASSERT_EQ(scan(2, words).status, 0);
    }
    Words words = printing;
    words.insert(words.end(), {"--reject-sheets", "2"}); // counts the sheets of this scan
    std::vector<std::string> scanned;
    for (const std::string& line : scan(2, words).lines()) {
        const Json event = Json::parse(line);
        if (event["event"] == "sheet")
            scanned.push_back(event["sheet"].dump() + " rejected " + event["rejected"].dump());
    }
    EXPECT_THAT(scanned, ElementsAre("5 rejected false", "6 rejected true"));
    std::vector<std::string> printed;
    StoredSheets(store_).read({.failures = false}, 0, [&](const Entry& entry) {
        for (const std::string& text : entry.sheet()->sheet.printedLines)
            printed.push_back(std::to_string(entry.sheet()->sheet.number) + ": " + text);
        return true;
    });
    EXPECT_THAT(printed, ElementsAre("1: no 1", "2: no 2", "3: no 3", "4: no 4", "5: no 5"));
    // A replay prints the same.
    const CommandOutcome replay = runCommand({"replay", folder_.file("second")});
    EXPECT_EQ(replay.status, 0) << replay.output << replay.errors;
}

TEST_F(StoreCommand, WritesRowsForSpreadsheetsAndForTheEye)
{
    ASSERT_EQ(scan(1, {"--reader", "left", "--batch", "monday"}).status, 0);
    EXPECT_THAT(sheets({"--format", "csv"}).lines(),
                ElementsAre("station,reader,batch,time,sheet,rejected,printed,side1TimingMarks,side2TimingMarks,"
                            "barcodes,side1,side2,record",
                            HasSubstr(",left,monday,")));
    EXPECT_THAT(sheets({"--format", "table"}).lines(),
                ElementsAre(StartsWith("TIME "), AllOf(HasSubstr(" left "), HasSubstr(" monday "))));
}

TEST_F(StoreCommand, DrawsTheSheetsOnTheirForms)
{
    ASSERT_EQ(scan(2, {"--reader", "../left", "--batch", "monday"}).status, 0);
    ASSERT_EQ(sheets({"--pictures", folder_.file("pictures")}).status, 0);
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.path() / "pictures"))
        names.push_back(entry.path().filename().string());
    EXPECT_THAT(names, testing::UnorderedElementsAre("___left-monday-000001.svg", "___left-monday-000002.svg"));
}

TEST_F(StoreCommand, ForgetsWhatIsOlder)
{
    ASSERT_EQ(scan(2).status, 0);
    EXPECT_EQ(sheets({"--forget", "--before", "2001-01-01"}).errors, "kelreader: 0 sheets forgotten.\n");
    EXPECT_EQ(sheets().lines().size(), 2U);
    EXPECT_EQ(sheets({"--forget", "--before", "2999-01-01"}).errors, "kelreader: 2 sheets forgotten.\n");
    EXPECT_EQ(sheets().lines().size(), 0U);
    EXPECT_EQ(sheets({"--forget"}).status, 2);
}

TEST_F(StoreCommand, FollowsWhatIsWrittenUntilCtrlC)
{
    ASSERT_EQ(scan(1, {"--batch", "first"}).status, 0);
    RunningCommand following({"sheets", store_, "--follow"});
    EXPECT_EQ(Json::parse(following.readLine())["batch"], "first");
    ASSERT_EQ(scan(2, {"--batch", "second"}).status, 0);
    EXPECT_EQ(Json::parse(following.readLine())["batch"], "second");
    EXPECT_EQ(Json::parse(following.readLine())["sheet"], 2);
    following.signal(SIGINT);
    EXPECT_EQ(following.finish().status, 130);
}

TEST_F(StoreCommand, FollowsOnWhenAnotherStoreTakesThePlace)
{
    ASSERT_EQ(scan(1, {"--batch", "first"}).status, 0);
    RunningCommand following({"sheets", store_, "--follow"});
    EXPECT_EQ(Json::parse(following.readLine())["batch"], "first");
    std::filesystem::rename(store_, folder_.file("away.db"));
    ASSERT_EQ(scan(2, {"--batch", "second"}).status, 0);
    const Json line = Json::parse(following.readLine());
    EXPECT_EQ(line["batch"], "second");
    EXPECT_EQ(line["sheet"], 1);
    EXPECT_EQ(Json::parse(following.readLine())["sheet"], 2);
    following.signal(SIGINT);
    EXPECT_EQ(following.finish().status, 130);
}

TEST_F(StoreCommand, ShowsWhatIsLeftOfADamagedStore)
{
    ASSERT_EQ(scan(4).status, 0);
    SqliteDatabase(store_, SqliteDatabase::Mode::Shared, 0).run("UPDATE sheet SET side1 = '{' WHERE id = 2");
    const CommandOutcome shown = sheets();
    EXPECT_EQ(shown.status, 1);
    ASSERT_THAT(shown.lines(), SizeIs(3));
    EXPECT_EQ(Json::parse(shown.lines()[1])["sheet"], 3);
    EXPECT_THAT(shown.errors, AllOf(HasSubstr("is damaged at sheet 2: "), HasSubstr("1 row could not be read")));
}

TEST_F(StoreCommand, RefusesASecondWriterBeforeAnythingIsRead)
{
    const SheetStore writing(store_, "station hall");
    const CommandOutcome second = scan(1);
    EXPECT_EQ(second.status, 1);
    EXPECT_EQ(second.output, "");
    EXPECT_THAT(second.errors, HasSubstr("is in use by station hall, process "));
}

/// A limit on the size of files is a disk that is full, and one that can be given more room.
void limitFiles(pid_t process, rlim_t bytes)
{
    rlimit limit{};
    ASSERT_EQ(::prlimit(process, RLIMIT_FSIZE, nullptr, &limit), 0);
    limit.rlim_cur = bytes;
    ASSERT_EQ(::prlimit(process, RLIMIT_FSIZE, &limit, nullptr), 0);
}

TEST_F(StoreCommand, FeedsNoSheetWhileTheDiskTakesNone)
{
    constexpr int kSheets = 12;
    const std::string device = folder_.file("reader");
    RunningCommand simulated(
        {"simulate", "--model", "13", "--link", device, "--count", std::to_string(kSheets), "--rate", "unlimited"});
    ASSERT_THAT(simulated.readLine(), HasSubstr("ready"));
    const TextFile form(R"({"side1Rows": [63], "side1Cols": [48]})");
    RunningCommand scanning({"scan", "--model", "13", "--device", device, "--form", form.path(), "--set", "SleepTime=1",
                             "--set", "Timeout=600", "--max-sheets", std::to_string(kSheets), "--store", store_});
    ASSERT_THAT(scanning.readLine(), StartsWith(R"({"event":"sheet")"));
    constexpr rlim_t kRoom = 30'000; // for a few sheets
    limitFiles(scanning.process(), std::filesystem::file_size(store_ + "-wal") + kRoom);
    ASSERT_TRUE(scanning.waitForError("is full: "));
    const std::size_t stored = sheets().lines().size();
    EXPECT_LT(stored, kSheets);
    limitFiles(scanning.process(), RLIM_INFINITY);
    ASSERT_TRUE(scanning.waitForError("takes sheets again"));
    const CommandOutcome outcome = scanning.finish();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(sheets().lines().size(), kSheets);
    // What the scan has written is what the store took, and nothing went on before.
    EXPECT_EQ(outcome.lines().size(), kSheets); // all but the first, which was taken, and the end
}

} // namespace
} // namespace kel::test
