// SPDX-License-Identifier: MIT
#include "store/SheetStore.h"

#include "platform/posix/Sqlite.h"
#include "tests/store/StoreTest.h"

#include <gmock/gmock.h>

#include <fstream>
#include <optional>
#include <set>
#include <thread>

namespace kel::store_test {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;

using Store = StoreTest;

TEST_F(Store, GivesASheetBackAsItCame)
{
    Entry entry = entryWith("\xE9\"<script>\x01");
    host::Sheet& sheet = std::get<ReadSheetEntry>(entry.what).sheet;
    sheet.rejected = true;
    sheet.printed = true;
    sheet.printedLines = {"caf\xE9", "2"};
    sheet.record.emplace();
    sheet.record->Add("Name", std::string("Zo\xEB"));
    sheet.record->Add(12, Int32{3});
    sheet.record->Add("Blank", std::monostate());
    SheetStore(file_, "a test").add(entry);

    const std::vector<Entry> found = entries();
    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ(found[0].id, 1);
    EXPECT_EQ(found[0].identity, entry.identity);
    EXPECT_EQ(found[0].origin, entry.origin);
    EXPECT_EQ(found[0].time, entry.time);
    const ReadSheetEntry& read = *found[0].sheet();
    EXPECT_EQ(read.setup.model, kelReaderTypeScantronScanMark2500);
    EXPECT_EQ(read.setup.threshold, 7);
    EXPECT_EQ(read.setup.form, "{}");
    EXPECT_EQ(read.sheet.number, 1);
    EXPECT_EQ(read.sheet.side1, sheet.side1);
    EXPECT_FALSE(read.sheet.side2.isDimensioned());
    EXPECT_EQ(read.sheet.side1TimingMarks, 3);
    EXPECT_EQ(read.sheet.side2TimingMarks, -1);
    EXPECT_EQ(read.sheet.barcodes, sheet.barcodes);
    EXPECT_TRUE(read.sheet.rejected);
    EXPECT_TRUE(read.sheet.printed);
    EXPECT_EQ(read.sheet.printedLines, sheet.printedLines);
    ASSERT_TRUE(read.sheet.record);
    EXPECT_EQ(read.sheet.record->Keys(), sheet.record->Keys());
    EXPECT_EQ(read.sheet.record->Items(), sheet.record->Items());
}

TEST_F(Store, HasTheReportsBetweenTheSheets)
{
    SheetStore store(file_, "a test");
    Entry first = entryWith("1");
    store.add(first);
    Entry report{.origin = first.origin,
                 .what = ReportEntry{.failure = {.line = 3,
                                                 .number = 8020,
                                                 .type = 2,
                                                 .description = "no answer",
                                                 .source = "basScantron.X",
                                                 .title = "Read Error"}}};
    store.add(report);
    Entry second = entryWith("2");
    store.add(second);

    const std::vector<Entry> found = entries();
    ASSERT_THAT(found, SizeIs(3));
    ASSERT_NE(found[1].report(), nullptr);
    EXPECT_EQ(found[1].report()->afterSheet, 1);
    EXPECT_EQ(found[1].report()->failure.number, 8020);
    EXPECT_EQ(found[1].report()->failure.description, "no answer");
    EXPECT_EQ(found[1].report()->failure.source, "basScantron.X");
    EXPECT_EQ(found[1].report()->failure.title, "Read Error");
    EXPECT_EQ(found[2].sheet()->sheet.number, 2);
    EXPECT_THAT(entries({.failures = false}), SizeIs(2));
}

TEST_F(Store, NumbersRunOnWithinABatchWhateverEndsMeanwhile)
{
    for (int session = 0; session < 2; ++session) {
        SheetStore store(file_, "a test");
        Entry left = entryWith("x");
        Entry right = entryWith("x", "right");
        store.add(left);
        store.add(right);
    }
    EXPECT_EQ(forgetOldSheets(file_, "2999-01-01", Forget::SentAlone).sheets, 4);
    SheetStore store(file_, "a test");
    Entry later = entryWith("x");
    store.add(later);
    EXPECT_THAT(numbers("left"), ElementsAre(3));
    EXPECT_EQ(later.id, 5);
    Entry otherBatch = entryWith("x", "left", "tuesday");
    store.add(otherBatch);
    EXPECT_THAT(numbers("left"), ElementsAre(3, 1));
}

TEST_F(Store, TakesSheetsOfManyThreadsAtOnce)
{
    constexpr int kReaders = 16;
    constexpr int kSheets = 40;
    {
        SheetStore store(file_, "a test");
        std::vector<std::jthread> readers;
        for (int reader = 0; reader < kReaders; ++reader) {
            readers.emplace_back([&store, reader] {
                for (int sheet = 0; sheet < kSheets; ++sheet) {
                    Entry entry = entryWith(std::to_string(sheet), std::to_string(reader));
                    store.add(entry);
                }
            });
        }
    }
    std::vector<Int32> expected;
    for (int sheet = 1; sheet <= kSheets; ++sheet)
        expected.push_back(sheet);
    for (int reader = 0; reader < kReaders; ++reader)
        EXPECT_EQ(numbers(std::to_string(reader)), expected) << reader;
    std::set<std::string> identities;
    for (const Entry& entry : entries())
        identities.insert(entry.identity);
    EXPECT_THAT(identities, SizeIs(kReaders * kSheets));
}

TEST_F(Store, IsThereOnlyWhenOthersMayReadItWhileItIsWritten)
{
    // The mode in which SQLite writes stands in the file's head: 1 is an exclusive one.
    constexpr std::size_t kMode = 18;
    std::string head;
    std::thread other([&] {
        while (head.size() <= kMode)
            head = test::fileText(file_).substr(0, kMode + 1);
    });
    Entry entry = entryWith("a");
    SheetStore(file_, "a test").add(entry);
    other.join();
    EXPECT_EQ(head[kMode], '\2');
}

TEST_F(Store, HandsOutWhatIsWrittenUnlessItIsDamaged)
{
    Entry entry = entryWith("x");
    SheetStore(file_, "a test").add(entry);
    std::vector<EntryTexts> found;
    const auto take = [&](const EntryTexts& texts) {
        found.push_back(texts);
        return true;
    };
    EXPECT_EQ(StoredSheets(file_).readTexts(0, take), 1);
    ASSERT_THAT(found, SizeIs(1));
    EXPECT_EQ(found[0].identity, entry.identity);
    ASSERT_TRUE(found[0].sheet());
    EXPECT_EQ(found[0].sheet()->barcodes, R"(["x",""])");

    for (const char* damage :
         {"UPDATE sheet SET side1 = '{\"rows\":'", "UPDATE sheet SET side1 = NULL, barcodes = ''"}) {
        SqliteDatabase(file_, SqliteDatabase::Mode::Shared, 0).run(damage);
        EXPECT_THAT(problemOf([&] { StoredSheets(file_).readTexts(0, take); }),
                    HasSubstr("is damaged at sheet 1: the text is not JSON"))
            << damage;
    }
    EXPECT_THAT(found, SizeIs(1));
}

TEST_F(Store, HasOneWriter)
{
    const SheetStore store(file_, "station hall");
    EXPECT_THAT(problemOf([&] { SheetStore(file_, "another"); }),
                AllOf(StartsWith("The store " + file_.string() + " is in use by station hall, process "),
                      HasSubstr("a store has one writer")));
}

TEST_F(Store, HoldsOrderAndNumbersWhenTheClockIsSetBack)
{
    const auto noon = std::chrono::system_clock::now();
    auto clock = noon;
    SheetStore store(file_, "a test", [&] { return clock; });
    for (const auto hours : {0, 1, -1, -2, 2}) {
        clock = noon + std::chrono::hours(hours);
        Entry entry = entryWith("x");
        store.add(entry);
        EXPECT_EQ(entry.time, storeTime(clock));
    }
    EXPECT_THAT(numbers("left"), ElementsAre(1, 2, 3, 4, 5));
    const std::vector<Entry> found = entries();
    for (std::size_t i = 0; i < found.size(); ++i)
        EXPECT_EQ(found[i].id, static_cast<std::int64_t>(i) + 1);
    // Whoever follows the store gets what comes, whatever the time says.
    std::vector<std::int64_t> following;
    EXPECT_EQ(StoredSheets(file_).read({}, 2,
                                       [&](const Entry& entry) {
                                           following.push_back(entry.id);
                                           return true;
                                       }),
              5);
    EXPECT_THAT(following, ElementsAre(3, 4, 5));
    // Who asks for a time gets all that bears it.
    EXPECT_THAT(entries({.since = storeTime(noon)}), SizeIs(3));
}

TEST_F(Store, IsSearchedFromTheNewestOn)
{
    SheetStore store(file_, "a test");
    for (const char* barcode : {"EXAM-1", "EXAM-2", "\"quoted\"", "EXAM-3"}) {
        Entry entry = entryWith(barcode, barcode == std::string("EXAM-3") ? "right" : "left");
        std::get<ReadSheetEntry>(entry.what).sheet.rejected = barcode == std::string("EXAM-2");
        store.add(entry);
    }
    Entry report{.origin = {.station = "hall", .reader = "left", .batch = "failed"}, .what = ReportEntry{}};
    store.add(report);
    Entry blank = entryWith("");
    std::get<ReadSheetEntry>(blank.what).sheet.side1.ReDim(3, 4);
    store.add(blank);

    StoredSheets stored(file_);
    const auto ids = [](const FoundSheets& found) {
        std::vector<std::int64_t> all;
        for (const Entry& entry : found.sheets)
            all.push_back(entry.id);
        return all;
    };
    const FoundSheets first = stored.find({}, 0, 2);
    EXPECT_THAT(ids(first), ElementsAre(6, 4));
    const FoundSheets second = stored.find({}, first.next, 2);
    EXPECT_THAT(ids(second), ElementsAre(3, 2));
    const FoundSheets third = stored.find({}, second.next, 2);
    EXPECT_THAT(ids(third), ElementsAre(1));
    EXPECT_EQ(third.next, 0);
    EXPECT_THAT(ids(stored.find({.reader = "right"}, 0, 10)), ElementsAre(4));
    EXPECT_THAT(ids(stored.find({.batch = "tuesday"}, 0, 10)), IsEmpty());
    EXPECT_THAT(ids(stored.find({.barcode = "EXAM"}, 0, 10)), ElementsAre(4, 2, 1));
    EXPECT_THAT(ids(stored.find({.barcode = "\"quoted"}, 0, 10)), ElementsAre(3));
    EXPECT_THAT(ids(stored.find({.rejected = true}, 0, 10)), ElementsAre(2));
    EXPECT_THAT(ids(stored.find({.blank = true}, 0, 10)), ElementsAre(6));
    EXPECT_THAT(ids(stored.find({.since = "2999-01-01"}, 0, 10)), IsEmpty());
    EXPECT_EQ(stored.lastId(), 6);
    EXPECT_EQ(stored.sheet(4)->sheet()->sheet.barcodes(1), "EXAM-3");
    EXPECT_FALSE(stored.sheet(5));
    const std::vector<StoredBatch> batches = stored.batches(10);
    ASSERT_THAT(batches, SizeIs(2));
    EXPECT_EQ(batches[0].reader, "right");
    EXPECT_EQ(batches[1].sheets, 4);
}

TEST_F(Store, RefusesWhatIsNoStore)
{
    const std::filesystem::path text = folder_.write("text", "no database, but long enough to be looked at as one");
    EXPECT_THAT(problemOf([&] { SheetStore(text, "a test"); }), HasSubstr("is damaged"));
    folder_.write("other.db", "");
    SqliteDatabase(folder_.file("other.db"), SqliteDatabase::Mode::Shared, 0).run("CREATE TABLE theirs (x)");
    EXPECT_THAT(problemOf([&] { SheetStore(folder_.file("other.db"), "a test"); }), HasSubstr("no store of sheets"));
    EXPECT_THAT(problemOf([&] { StoredSheets(folder_.file("none.db")); }), StartsWith("There is no store "));
    EXPECT_THAT(problemOf([&] { SheetStore("/nowhere/x.db", "a test"); }), HasSubstr("cannot be written"));
}

TEST_F(Store, IsWrittenWhileOldSheetsAreForgotten)
{
    constexpr int kSheets = 450;
    const auto now = std::chrono::system_clock::now();
    auto clock = now - std::chrono::hours(1);
    SheetStore store(file_, "a test", [&] { return clock; });
    std::vector<Entry> old(kSheets, entryWith(std::string(10'000, 'x')));
    store.add(old);
    clock = now;
    int pauses = 0;
    const auto forgotten = forgetOldSheets(file_, storeTime(now), Forget::All, [&](std::chrono::nanoseconds) {
        ++pauses;
        Entry entry = entryWith("y");
        store.add(entry);
    });
    EXPECT_EQ(forgotten.sheets, kSheets);
    EXPECT_GT(pauses, 8); // five for the sheets, one for no reports, and several for their pages
    EXPECT_THAT(entries(), SizeIs(pauses));
    EXPECT_LT(std::filesystem::file_size(file_), 1'000'000U);
}

/// A store whose file goes away while it is at work.
class StoreThatLeaves : public StoreTest {
protected:
    static void feed(SheetStore& store, int sheets)
    {
        for (int sheet = 0; sheet < sheets; ++sheet) {
            Entry entry = entryWith("x");
            store.add(entry);
        }
    }

    /// The numbers of the sheets in a file.
    [[nodiscard]] static std::vector<Int32> numbersIn(const std::filesystem::path& file)
    {
        std::vector<Int32> found;
        StoredSheets(file).read({}, 0, [&](const Entry& entry) {
            found.push_back(entry.sheet()->sheet.number);
            return true;
        });
        return found;
    }

    [[nodiscard]] std::vector<std::filesystem::path> rescued() const
    {
        std::vector<std::filesystem::path> found;
        for (const auto& entry : std::filesystem::directory_iterator(folder_.path())) {
            if (entry.path().filename().string().starts_with("hall.db-2"))
                found.push_back(entry.path());
        }
        return found;
    }

    std::filesystem::path away_ = folder_.path() / "away.db";
};

TEST_F(StoreThatLeaves, TakesItsSheetsAlongAndTheOthersAreInANewOne)
{
    SheetStore store(file_, "a test");
    feed(store, 11);
    const std::string first = entries()[0].origin.store;
    // Somebody reads it all the while.
    StoredSheets reader(file_);
    std::filesystem::rename(file_, away_);
    Entry next = entryWith("y");
    EXPECT_THAT(problemOf([&] { store.add(next); }),
                AllOf(HasSubstr("has been moved away, with all its sheets"), HasSubstr("begin at 1 again")));
    store.add(next);
    feed(store, 8);
    EXPECT_THAT(numbersIn(away_), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11));
    EXPECT_THAT(numbersIn(file_), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9));
    EXPECT_EQ(next.origin.store, entries()[0].origin.store);
    EXPECT_NE(next.origin.store, first);
    EXPECT_EQ(reader.lastId(), 11); // as before
}

TEST_F(StoreThatLeaves, HasItsSheetsWhenItsWriterEndsWithoutAnother)
{
    {
        SheetStore store(file_, "a test");
        feed(store, 3);
        std::filesystem::rename(file_, away_);
    }
    EXPECT_THAT(numbersIn(away_), ElementsAre(1, 2, 3));
}

TEST_F(StoreThatLeaves, IsNotMixedUpWithTheOneThatTakesItsPlace)
{
    {
        SheetStore other(away_, "a test");
        feed(other, 2);
    }
    SheetStore store(file_, "a test");
    feed(store, 5);
    std::filesystem::rename(away_, file_); // the open file has no name any more
    Entry next = entryWith("y");
    EXPECT_THAT(problemOf([&] { store.add(next); }), HasSubstr("has been deleted or replaced. All its sheets are in "));
    store.add(next);
    EXPECT_THAT(numbersIn(file_), ElementsAre(1, 2, 3));
    ASSERT_THAT(rescued(), SizeIs(1));
    EXPECT_THAT(numbersIn(rescued()[0]), ElementsAre(1, 2, 3, 4, 5));
}

TEST_F(StoreThatLeaves, IsSavedUnderAnotherNameIfItIsDeleted)
{
    {
        SheetStore store(file_, "a test");
        feed(store, 3);
        std::filesystem::remove(file_);
    }
    ASSERT_THAT(rescued(), SizeIs(1));
    EXPECT_THAT(numbersIn(rescued()[0]), ElementsAre(1, 2, 3));
    SheetStore store(file_, "a test");
    feed(store, 1);
    EXPECT_THAT(numbersIn(file_), ElementsAre(1));
}

TEST_F(StoreThatLeaves, GetsNoOtherInItsPlaceAsLongAsItsLastSheetsAreThere)
{
    const std::filesystem::path log = file_.string() + "-wal";
    {
        // Whoever else has it open keeps the writer from tidying up at its end, as a crash does.
        std::optional<SheetStore> store(std::in_place, file_, "a test");
        feed(*store, 3);
        SqliteDatabase other(file_, SqliteDatabase::Mode::Shared, 0);
        other.run("SELECT * FROM store");
        store.reset();
        std::filesystem::rename(file_, away_);
    }
    ASSERT_GT(std::filesystem::file_size(log), 0U);
    EXPECT_THAT(problemOf([&] { SheetStore(file_, "a test"); }),
                AllOf(HasSubstr(log.string() + " holds sheets of the store that was there"),
                      HasSubstr("give it the name of that store with -wal")));
    std::filesystem::rename(log, away_.string() + "-wal");
    EXPECT_THAT(numbersIn(away_), ElementsAre(1, 2, 3));
    const SheetStore store(file_, "a test");
    EXPECT_THAT(numbersIn(file_), IsEmpty());
}

TEST_F(StoreThatLeaves, IsNoticedIfSomethingElseIsWrittenOverIt)
{
    SheetStore store(file_, "a test");
    feed(store, 3);
    {
        std::fstream over(file_, std::ios::in | std::ios::out | std::ios::binary);
        over << std::string(20'000, '\xA5');
    }
    Entry next = entryWith("y");
    const std::string sentence = "is damaged: it is no database, or something else has been written over it";
    EXPECT_THAT(problemOf([&] { store.add(next); }), HasSubstr(sentence));
    EXPECT_THAT(problemOf([&] { store.add(next); }), HasSubstr("is damaged"));
    std::filesystem::rename(file_, away_);
    std::filesystem::rename(file_.string() + "-wal", away_.string() + "-wal");
    store.add(next);
    EXPECT_THAT(numbersIn(file_), ElementsAre(1));
}

TEST(StoreTime, IsReadAsPeopleWriteIt)
{
    EXPECT_EQ(storeTimeOf("2024-01-31Z"), "2024-01-31T00:00:00.000Z");
    EXPECT_EQ(storeTimeOf("2024-01-31 12:05Z"), "2024-01-31T12:05:00.000Z");
    EXPECT_EQ(storeTimeOf("2024-01-31T12:05:09Z"), "2024-01-31T12:05:09.000Z");
    EXPECT_EQ(storeTimeOf("2024-01-31T12:05:09.250Z"), "2024-01-31T12:05:09.250Z");
    EXPECT_EQ(storeTimeOf("2024-02-29Z"), "2024-02-29T00:00:00.000Z");
    EXPECT_TRUE(storeTimeOf("2024-01-31"));
    for (const char* wrong : {"", "yesterday", "2024-13-01", "2023-02-31", "2023-02-29Z", "2024-04-31 12:00Z",
                              "2024-01-31 12", "2024-01-31T12:05:09.x5Z"})
        EXPECT_FALSE(storeTimeOf(wrong)) << wrong;
}

} // namespace
} // namespace kel::store_test
