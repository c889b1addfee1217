// SPDX-License-Identifier: MIT
// A station and its store: another one's, an older one, one that is locked.
#include "platform/posix/Sqlite.h"
#include "store/SentMark.h"
#include "store/SheetStore.h"
#include "store/StoreSchema.h"
#include "tests/cli/StationCommandTest.h"
#include "tests/support/Patience.h"

#include <gmock/gmock.h>

#include <csignal>
#include <optional>

namespace kel::test {
namespace {

using testing::HasSubstr;

using StationStore = StationCommand;

TEST_F(StationStore, IsRefusedOnTheStoreOfAnother)
{
    RunningCommand station({"station", file(simulated("left", 2))});
    ASSERT_TRUE(station.waitForError("left: has no more sheets"));
    const std::string other = folder_.write("other.json", R"({"station": "other", "store": "hall.db", "readers": [)" +
                                                              simulated("right", 5) + "]}");
    const CommandOutcome second = runCommand({"station", other});
    EXPECT_EQ(second.status, 1);
    EXPECT_EQ(second.errors, "kelreader: The store " + store_ + " is in use by station hall, process " +
                                 std::to_string(station.process()) +
                                 ", and a store has one writer; end that one, or name another store.\n");
    EXPECT_THAT(numbers("right"), testing::IsEmpty());
    // The first one's socket, lock and sheets are as they were.
    EXPECT_EQ(state()["readers"][0]["sheets"], 2);
    station.signal(SIGTERM);
    EXPECT_EQ(station.finish().status, 0);
    EXPECT_THAT(numbers("left"), testing::ElementsAre(1, 2));
}

TEST_F(StationStore, LeavesAStoreOfANewerVersionAlone)
{
    {
        const SheetStore store(store_, "a test");
    }
    SqliteDatabase(store_, SqliteDatabase::Mode::Shared, 0).run("PRAGMA user_version = 99");
    const CommandOutcome refused = runCommand({"station", file(simulated("left", 2))});
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(countOf(refused.errors, "\n"), 1U);
    EXPECT_THAT(refused.errors, HasSubstr("has version 99, and this program knows versions up to"));
    EXPECT_FALSE(std::filesystem::exists(store_ + "-socket"));
    SqliteDatabase(store_, SqliteDatabase::Mode::Shared, 0)
        .run(("PRAGMA user_version = " + std::to_string(kStoreVersion)).c_str());
    EXPECT_THAT(numbers("left"), testing::IsEmpty());
}

TEST_F(StationStore, ForgetsWhatItsStreamDoesNotHaveByForceAlone)
{
    RunningCommand station({"station", file(simulated("left", 2))});
    ASSERT_TRUE(station.waitForError("left: has no more sheets"));
    station.signal(SIGTERM);
    EXPECT_EQ(station.finish().status, 0);
    SentMark(store_).want(true);
    EXPECT_EQ(runCommand({"sheets", store_, "--forget", "--before", "2999-01-01"}).errors,
              "kelreader: 0 sheets forgotten.\n"
              "kelreader: 2 sheets and reports stay: the stream does not have them yet. Let the station send them "
              "first, or use --force.\n");
    EXPECT_THAT(numbers("left"), testing::ElementsAre(1, 2));
    EXPECT_EQ(runCommand({"sheets", store_, "--forget", "--before", "2999-01-01", "--force"}).errors,
              "kelreader: 2 sheets forgotten.\n");
    EXPECT_THAT(numbers("left"), testing::IsEmpty());
    EXPECT_EQ(runCommand({"sheets", store_, "--force"}).status, 2);
}

TEST_F(StationStore, BringsAStoreOfAnOlderVersionUpToDate)
{
    folder_.write("hall.db", "");
    RunningCommand station({"station", file(simulated("left", 2))});
    ASSERT_TRUE(station.waitForError("left: has no more sheets"));
    EXPECT_THAT(numbers("left"), testing::ElementsAre(1, 2));
    station.signal(SIGTERM);
    EXPECT_EQ(station.finish().status, 0);
}

TEST_F(StationStore, PrintsTheNumbersThatTheStoreHasAfterARestartToo)
{
    const std::string path = file(R"({"name": "left", "batch": "monday", "model": 13, "print1": "no {sheet}",
        "simulate": {"unlimited": true, "count": 2}, "set": {"SleepTime": 1, "Timeout": 600, "Printer.Enabled": true}})");
    for (int run = 0; run < 2; ++run) {
        RunningCommand station({"station", path});
        ASSERT_TRUE(station.waitForError("left: has no more sheets"));
        station.signal(SIGTERM);
        EXPECT_EQ(station.finish().status, 0);
    }
    std::vector<std::string> printed;
    StoredSheets(store_).read({.failures = false}, 0, [&](const Entry& entry) {
        const host::Sheet& sheet = entry.sheet()->sheet;
        printed.push_back(std::to_string(sheet.number) + ": " + sheet.printedLines.at(0));
        return true;
    });
    EXPECT_THAT(printed, testing::ElementsAre("1: no 1", "2: no 2", "3: no 3", "4: no 4"));
}

TEST_F(StationStore, WaitsAtItsStartForAStoreThatIsLocked)
{
    {
        const SheetStore store(store_, "a test");
    }
    SqliteDatabase other(store_, SqliteDatabase::Mode::Shared, 0);
    other.run("BEGIN IMMEDIATE");
    RunningCommand station({"station", file(simulated("left", 2))});
    ASSERT_TRUE(station.waitForError("is locked by another program"));
    ASSERT_TRUE(waitUntil([&] { return state()["readers"][0]["state"] == "storing"; }));
    EXPECT_THAT(state()["storeProblem"].get<std::string>(), HasSubstr("is locked by another program"));
    EXPECT_EQ(state()["readers"][0]["sheets"], 0);
    other.run("COMMIT");
    ASSERT_TRUE(station.waitForError("takes sheets again."));
    ASSERT_TRUE(station.waitForError("left: has no more sheets"));
    EXPECT_EQ(state()["storeProblem"], "");
    station.signal(SIGTERM);
    const CommandOutcome outcome = station.finish();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(countOf(outcome.errors, "is locked by another program"), 1U);
    EXPECT_THAT(numbers("left"), testing::ElementsAre(1, 2));
}

TEST_F(StationStore, EndsWhileItWaitsForItsStore)
{
    {
        const SheetStore store(store_, "a test");
    }
    SqliteDatabase other(store_, SqliteDatabase::Mode::Shared, 0);
    other.run("BEGIN IMMEDIATE");
    RunningCommand station({"station", file(simulated("left", 2))});
    ASSERT_TRUE(station.waitForError("is locked by another program"));
    station.signal(SIGTERM);
    const CommandOutcome outcome = station.finish();
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.errors, HasSubstr("left: is stopped."));
}

} // namespace
} // namespace kel::test
