// SPDX-License-Identifier: MIT
#include "platform/posix/Sqlite.h"
#include "store/SentMark.h"
#include "tests/store/StoreTest.h"

#include <gmock/gmock.h>

namespace kel::store_test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::SizeIs;

using StoreVersions = StoreTest;

TEST_F(StoreVersions, BringsAStoreOfTheFirstVersionUpToDate)
{
    {
        SheetStore store(file_, "a test");
        Entry entry = entryWith("x");
        store.add(entry);
        SqliteDatabase(file_, SqliteDatabase::Mode::Shared, 0)
            .run("ALTER TABLE store DROP COLUMN sends; ALTER TABLE store DROP COLUMN sent; DROP TABLE unread; DROP "
                 "TABLE held; "
                 "PRAGMA user_version = 1");
    }
    EXPECT_THAT(problemOf([&] { StoredSheets{file_}; }), HasSubstr("has version 1, which a scan or a station brings"));
    SheetStore store(file_, "a test");
    Entry next = entryWith("y");
    store.add(next);
    EXPECT_THAT(numbers("left"), ElementsAre(1, 2));
    EXPECT_EQ(SentMark(file_).unsent(), 2);
}

TEST_F(StoreVersions, BringsAStoreOfTheSecondVersionUpToDateWithItsMark)
{
    {
        SheetStore store(file_, "a test");
        for (const char* barcode : {"1", "2", "3"}) {
            Entry entry = entryWith(barcode);
            store.add(entry);
        }
        SqliteDatabase(file_, SqliteDatabase::Mode::Shared, 0)
            .run("UPDATE store SET sends = 1, sent = 2; DROP TABLE held; PRAGMA user_version = 2; "
                 "UPDATE sheet SET identity = (SELECT identity FROM store) || '-' || id");
    }
    EXPECT_THAT(problemOf([&] { StoredSheets{file_}; }), HasSubstr("has version 2, which a scan or a station brings"));
    SheetStore store(file_, "a test");
    Entry next = entryWith("4");
    store.add(next);
    EXPECT_THAT(numbers("left"), ElementsAre(1, 2, 3, 4));
    EXPECT_EQ(entries()[2].identity, next.origin.store + "-3"); // as it was
    EXPECT_EQ(SentMark(file_).last(), 2);
    EXPECT_EQ(SentMark(file_).unsent(), 2);
    EXPECT_EQ(forgetOldSheets(file_, "2999-01-01", Forget::SentAlone).kept, 2);
}

TEST_F(StoreVersions, RefusesAStoreOfANewerVersionAndLeavesItAlone)
{
    {
        const SheetStore store(file_, "a test");
    }
    SqliteDatabase(file_, SqliteDatabase::Mode::Shared, 0).run("PRAGMA user_version = 99");
    const std::string sentence = "has version 99, and this program knows versions up to";
    EXPECT_THAT(problemOf([&] { SheetStore(file_, "a test"); }), HasSubstr(sentence));
    EXPECT_THAT(problemOf([&] { StoredSheets{file_}; }), HasSubstr(sentence));
    SqliteDatabase database(file_, SqliteDatabase::Mode::Shared, 0);
    SqliteStatement version(database, "PRAGMA user_version");
    SqliteStatement::Run run(version);
    ASSERT_TRUE(run.next());
    EXPECT_EQ(run.numberAt(0), 99);
}

TEST_F(StoreVersions, OfAnOlderVersionIsBroughtUpToDateByAWriter)
{
    folder_.write("hall.db", "");
    const std::string sentence = "has version 0, which a scan or a station brings up to date when it opens it";
    EXPECT_THAT(problemOf([&] { StoredSheets{file_}; }), HasSubstr(sentence));
    EXPECT_EQ(std::filesystem::file_size(file_), 0U);
    SheetStore store(file_, "a test");
    Entry entry = entryWith("x");
    store.add(entry);
    EXPECT_THAT(entries(), SizeIs(1));
}

} // namespace
} // namespace kel::store_test
