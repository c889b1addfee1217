// SPDX-License-Identifier: MIT
#include "store/StoringEvents.h"

#include "platform/posix/Sqlite.h"
#include "tests/store/StoreTest.h"

#include <gmock/gmock.h>

#include <chrono>
#include <functional>
#include <optional>

namespace kel::store_test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

using StoringEventsTest = StoreTest;

/// What is told and waited while a store is in trouble.
struct Trouble {
    std::vector<std::string> told{};
    int pauses = 0;
    std::function<bool()> onPause;

    StoreTrouble calls()
    {
        return {.tell = [this](const std::string& problem) { told.push_back(problem); },
                .over = [this](const std::string& sentence) { told.push_back(sentence); },
                .pause =
                    [this](std::chrono::milliseconds) {
                        ++pauses;
                        return onPause();
                    }};
    }
};

struct CountedEvents final : host::Events {
    void sheet(const host::Sheet&) override { ++sheets; }
    int sheets = 0;
};

TEST_F(StoringEventsTest, ASheetDoesNotReturnBeforeALockedStoreHasIt)
{
    SheetStore store(file_, "a test");
    std::optional<SqliteDatabase> other(std::in_place, file_, SqliteDatabase::Mode::Shared, 0);
    other->run("BEGIN IMMEDIATE");
    CountedEvents next;
    Trouble trouble;
    trouble.onPause = [&] {
        EXPECT_EQ(next.sheets, 0);
        if (trouble.pauses == 2)
            other->run("COMMIT");
        return true;
    };
    StoringEvents events(store, {.station = "hall", .reader = "left", .batch = "monday"}, {}, next, trouble.calls());
    events.sheet(sheetWith("x"));
    EXPECT_EQ(trouble.pauses, 2);
    EXPECT_THAT(trouble.told, ElementsAre(HasSubstr("is locked by another program"), HasSubstr("takes sheets again")));
    EXPECT_EQ(next.sheets, 1);
    EXPECT_EQ(events.lost(), 0);
    EXPECT_THAT(numbers("left"), ElementsAre(1));
}

TEST_F(StoringEventsTest, AnOwnerWhoGivesUpLearnsWhatIsLost)
{
    SheetStore store(file_, "a test");
    SqliteDatabase other(file_, SqliteDatabase::Mode::Shared, 0);
    other.run("BEGIN IMMEDIATE");
    CountedEvents next;
    Trouble trouble;
    trouble.onPause = [] { return false; };
    StoringEvents events(store, {}, {}, next, trouble.calls());
    events.failure({});
    EXPECT_EQ(events.lost(), 0); // a report is nothing to feed again
    events.sheet(sheetWith("x"));
    EXPECT_EQ(events.lost(), 1);
    EXPECT_EQ(next.sheets, 1);
    other.run("COMMIT");
    EXPECT_THAT(entries(), IsEmpty());
}

TEST_F(StoringEventsTest, ADamagedStoreIsToldAndAWholeOneInItsPlaceGoesOn)
{
    SheetStore store(file_, "a test");
    CountedEvents next;
    Trouble trouble;
    trouble.onPause = [&] {
        std::filesystem::remove(file_);
        return true;
    };
    StoringEvents events(store, {.reader = "left"}, {}, next, trouble.calls());
    events.sheet(sheetWith("x"));
    std::filesystem::remove(file_.string() + "-wal");
    std::filesystem::remove(file_);
    folder_.write("hall.db", std::string(8192, 'x'));
    events.sheet(sheetWith("y"));
    EXPECT_THAT(trouble.told, ElementsAre(HasSubstr("has been deleted or replaced"), HasSubstr("takes sheets again")));
    EXPECT_EQ(next.sheets, 2);
    EXPECT_THAT(numbers("left"), ElementsAre(1));
}

} // namespace
} // namespace kel::store_test
