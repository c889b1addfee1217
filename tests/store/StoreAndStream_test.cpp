// SPDX-License-Identifier: MIT
#include "platform/posix/Sqlite.h"
#include "store/SentMark.h"
#include "tests/store/StoreTest.h"

#include <gmock/gmock.h>

namespace kel::store_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

using StoreAndStream = StoreTest;

TEST_F(StoreAndStream, KeepsASheetOfAnotherStoreOnceAndAsItWas)
{
    Entry entry = entryWith("x");
    {
        SheetStore first(folder_.path() / "first.db", "a test");
        first.add(entry);
        first.add(entry = entryWith("y"));
    }
    SheetStore store(file_, "a test");
    Entry own = entryWith("z");
    store.add(own);
    Entry again = entry;
    store.add(entry);
    store.add(again);
    const std::vector<Entry> found = entries();
    ASSERT_THAT(found, SizeIs(2));
    EXPECT_EQ(found[1].identity, again.identity);
    EXPECT_EQ(found[1].time, again.time);
    EXPECT_EQ(found[1].origin, again.origin);
    EXPECT_EQ(found[1].sheet()->sheet.number, 2);
}

TEST_F(StoreAndStream, SheetsOfACopiedStoreAreOthers)
{
    const std::filesystem::path copy = folder_.path() / "copy.db";
    {
        const SheetStore first(folder_.path() / "first.db", "a test");
    }
    std::filesystem::copy_file(folder_.path() / "first.db", copy);
    SheetStore first(folder_.path() / "first.db", "a test");
    SheetStore second(copy, "a test");
    Entry here = entryWith("x");
    Entry there = entryWith("x");
    there.origin.station = "yard";
    first.add(here);
    second.add(there);
    EXPECT_EQ(here.origin.store, there.origin.store);
    EXPECT_NE(here.identity, there.identity);
    SheetStore all(file_, "a test");
    all.add(here);
    all.add(there);
    EXPECT_THAT(entries(), SizeIs(2));
}

TEST_F(StoreAndStream, RefusesASheetOfAnotherStoreThatContradictsOneThatIsThere)
{
    Entry entry = entryWith("x");
    SheetStore(folder_.path() / "first.db", "a test").add(entry);
    SheetStore store(file_, "a test");
    std::vector<Entry> both = {entry, entry};
    both[1].identity += "0";
    EXPECT_THROW(store.add(both), EntryRefused);
    EXPECT_THAT(entries(), IsEmpty());
    store.add(entry);
    EXPECT_THROW(store.add(both[1]), EntryRefused);
    Entry own = entryWith("y");
    store.add(own);
    EXPECT_THAT(entries(), SizeIs(2));
}

TEST_F(StoreAndStream, KeepsAMessageThatHoldsNoSheetOnce)
{
    const UnreadMessage message{.subject = "k.sheet.a.b", .reason = "no\xFF", .content = std::string("\0\xFF{", 3)};
    {
        SheetStore store(file_, "a test");
        store.setAside({&message, 1});
        store.setAside({&message, 1});
    }
    SqliteDatabase database(file_, SqliteDatabase::Mode::Shared, 0);
    SqliteStatement query(database, "SELECT subject, reason, content FROM unread");
    SqliteStatement::Run row(query);
    ASSERT_TRUE(row.next());
    EXPECT_EQ(row.textAt(0), message.subject);
    EXPECT_EQ(row.textAt(1), "no\xC3\xBF");
    EXPECT_EQ(row.textAt(2), message.content);
    EXPECT_FALSE(row.next());
}

TEST_F(StoreAndStream, ForgetsNothingThatTheStreamDoesNotHave)
{
    {
        SheetStore store(file_, "a test");
        for (const char* barcode : {"1", "2", "3"}) {
            Entry entry = entryWith(barcode);
            store.add(entry);
        }
    }
    SentMark mark(file_);
    EXPECT_EQ(mark.unsent(), 3);
    mark.want(true);
    mark.move(1);
    EXPECT_EQ(mark.last(), 1);
    EXPECT_EQ(mark.unsent(), 2);
    auto forgotten = forgetOldSheets(file_, "2999-01-01", Forget::SentAlone);
    EXPECT_EQ(forgotten.sheets, 1);
    EXPECT_EQ(forgotten.kept, 2);
    EXPECT_THAT(numbers("left"), ElementsAre(2, 3));
    mark.want(false);
    mark.want(true);
    EXPECT_EQ(forgetOldSheets(file_, "2999-01-01", Forget::SentAlone).sheets, 0);
    forgotten = forgetOldSheets(file_, "2999-01-01", Forget::All);
    EXPECT_EQ(forgotten.sheets, 2);
    EXPECT_EQ(forgotten.kept, 0);
    EXPECT_EQ(mark.unsent(), 0);
}

TEST_F(StoreAndStream, CountsWhatIsNotSentYetAndStillThere)
{
    SheetStore store(file_, "a test");
    SentMark mark(file_);
    EXPECT_EQ(mark.unsent(), 0);
    for (const char* barcode : {"1", "2", "3", "4"}) {
        Entry entry = entryWith(barcode);
        store.add(entry);
    }
    EXPECT_EQ(mark.unsent(), 4);
    mark.hold(2, "it is too large");
    EXPECT_EQ(mark.unsent(), 4);
    mark.move(3);
    EXPECT_EQ(mark.unsent(), 2);
    SqliteDatabase(file_, SqliteDatabase::Mode::Shared, 0).run("DELETE FROM sheet WHERE id = 2");
    EXPECT_EQ(mark.unsent(), 1);
}

} // namespace
} // namespace kel::store_test
