// SPDX-License-Identifier: MIT
#include "stream/Collector.h"

#include "platform/posix/Sqlite.h"
#include "store/StoredSheets.h"
#include "stream/EntryMessage.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <deque>

namespace kel::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;
using testing::StartsWith;

/// A stream that hands out what it is given until that is acknowledged, and loses the connection when it is told to.
class GivenStream final : public StreamOpener {
public:
    std::unique_ptr<StreamPublisher> publisher(const StreamAddress&) override { return nullptr; }

    std::unique_ptr<StreamConsumer> consumer(const StreamAddress&, const std::string& durable) override
    {
        EXPECT_EQ(durable, "all");
        if (absences-- > 0)
            throw StreamProblem("Nobody is there.");
        return std::make_unique<Consumer>(*this);
    }

    std::deque<StreamDelivery> waiting;
    int absences = 0;
    bool losesAcknowledgements = false;
    std::function<void()> acknowledged = [] {};

private:
    class Consumer final : public StreamConsumer {
    public:
        explicit Consumer(GivenStream& stream) : stream_(stream) {}

        std::vector<StreamDelivery> next(int most, std::chrono::milliseconds) override
        {
            taken_ = std::min(stream_.waiting.size(), static_cast<std::size_t>(most));
            return {stream_.waiting.begin(), stream_.waiting.begin() + static_cast<std::ptrdiff_t>(taken_)};
        }

        void acknowledge() override
        {
            stream_.acknowledged();
            if (std::exchange(stream_.losesAcknowledgements, false))
                throw StreamProblem("The connection is lost.");
            stream_.waiting.erase(stream_.waiting.begin(),
                                  stream_.waiting.begin() + static_cast<std::ptrdiff_t>(taken_));
        }

    private:
        GivenStream& stream_;
        std::size_t taken_ = 0;
    };
};

class ACollector : public testing::Test {
protected:
    static StreamDelivery sheet(Int32 number, const std::string& identity)
    {
        const Entry entry{.identity = identity,
                          .origin = {.store = "abc", .station = "hall", .reader = "left", .batch = "monday"},
                          .time = "2024-01-31T12:00:00.000Z",
                          .what = ReadSheetEntry{.sheet = {.number = number}}};
        StreamMessage message = messageOf(entry, "k");
        return {.subject = message.subject, .content = message.content};
    }

    /// Collects until nothing waits any more.
    void collect()
    {
        CollectorCalls calls{.tell = [this](const std::string& sentence) { told_.push_back(sentence); },
                             .pause =
                                 [this](std::chrono::milliseconds) {
                                     paused_();
                                     return !stream_.waiting.empty();
                                 }};
        Collector(store_, StreamAddress{}, "all", Pauses(Pauses::Time(1), Pauses::Time(2)), calls, stream_).run();
    }

    [[nodiscard]] std::vector<Int32> numbers() const
    {
        std::vector<Int32> found;
        StoredSheets(file_).read({}, 0, [&](const Entry& entry) {
            found.push_back(entry.sheet()->sheet.number);
            return true;
        });
        return found;
    }

    TemporaryFolder folder_;
    std::filesystem::path file_ = folder_.path() / "all.db";
    SheetStore store_{file_, "a test"};
    GivenStream stream_;
    std::function<void()> paused_ = [] {};
    std::vector<std::string> told_;
};

TEST_F(ACollector, AcknowledgesWhatIsInTheStore)
{
    std::size_t stored = 0;
    stream_.acknowledged = [&] { stored = numbers().size(); };
    stream_.waiting = {sheet(1, "abc-1"), sheet(2, "abc-2")};
    collect();
    EXPECT_EQ(stored, 2U);
    EXPECT_THAT(numbers(), ElementsAre(1, 2));
    EXPECT_THAT(told_, ElementsAre("Collecting from the stream KELREADER."));
}

TEST_F(ACollector, KeepsOnceWhatComesTwice)
{
    stream_.waiting = {sheet(1, "abc-1"), sheet(1, "abc-1"), sheet(2, "abc-2")};
    stream_.losesAcknowledgements = true;
    collect();
    EXPECT_THAT(numbers(), ElementsAre(1, 2));
    EXPECT_THAT(told_, ElementsAre("Collecting from the stream KELREADER.",
                                   "The connection is lost. The stream keeps the sheets meanwhile.",
                                   "Collecting from the stream KELREADER."));
}

TEST_F(ACollector, SetsAsideWhatHoldsNoSheetAndGoesOn)
{
    stream_.waiting = {sheet(1, "abc-1"), {.subject = "k.x", .content = "{}"}, sheet(1, "abc-9"), sheet(2, "abc-2")};
    collect();
    EXPECT_THAT(numbers(), ElementsAre(1, 2));
    EXPECT_THAT(told_,
                ElementsAre("Collecting from the stream KELREADER.",
                            StartsWith("A message of k.x is set aside: The message cannot be read: "),
                            StartsWith("A message of k.sheet.hall.left is set aside: Sheet 1 of the batch monday "
                                       "of the reader left already exists, as another sheet.")));
}

TEST_F(ACollector, TellsOfAStoreThatWasRestoredAndKeepsItsSheets)
{
    const std::filesystem::path hall = folder_.path() / "hall.db";
    const std::filesystem::path backup = folder_.path() / "backup.db";
    const auto feed = [&](const char* barcode) {
        Entry entry{.origin = {.station = "hall", .reader = "left", .batch = "monday"},
                    .what = ReadSheetEntry{.sheet = {.barcodes = TextArray::of(1, {barcode})}}};
        SheetStore(hall, "a test").add(entry);
        const StreamMessage message = messageOf(entry, "k");
        stream_.waiting.push_back({.subject = message.subject, .content = message.content});
    };
    feed("1");
    std::filesystem::copy_file(hall, backup);
    feed("2");
    std::filesystem::copy_file(backup, hall, std::filesystem::copy_options::overwrite_existing);
    feed("another 2");
    collect();
    EXPECT_THAT(numbers(), ElementsAre(1, 2));
    EXPECT_THAT(told_, ElementsAre("Collecting from the stream KELREADER.",
                                   StartsWith("A message of k.sheet.hall.left is set aside: Sheet 2 of the batch "
                                              "monday of the reader left already exists, as another sheet.")));
    SqliteDatabase database(file_, SqliteDatabase::Mode::Shared, 0);
    SqliteStatement query(database, "SELECT content FROM unread");
    SqliteStatement::Run row(query);
    ASSERT_TRUE(row.next());
    EXPECT_THAT(row.textAt(0), HasSubstr("another 2"));
}

TEST_F(ACollector, WaitsForAStreamThatIsNotThere)
{
    stream_.absences = 3;
    stream_.waiting = {sheet(1, "abc-1")};
    collect();
    EXPECT_THAT(numbers(), ElementsAre(1));
    EXPECT_THAT(told_, ElementsAre("Nobody is there. The stream keeps the sheets meanwhile.",
                                   "Collecting from the stream KELREADER."));
}

TEST_F(ACollector, WaitsForAStoreThatTakesNothing)
{
    auto other = std::make_unique<SqliteDatabase>(file_, SqliteDatabase::Mode::Shared, 0);
    other->run("BEGIN IMMEDIATE");
    stream_.waiting = {sheet(1, "abc-1")};
    stream_.acknowledged = [&] { EXPECT_FALSE(other); };
    paused_ = [&] {
        if (told_.size() > 1)
            other.reset();
    };
    collect();
    EXPECT_THAT(numbers(), ElementsAre(1));
    EXPECT_THAT(told_, ElementsAre("Collecting from the stream KELREADER.", HasSubstr("is locked by another program"),
                                   HasSubstr("takes sheets again")));
}

} // namespace
} // namespace kel::test
