// SPDX-License-Identifier: MIT
#include "stream/StreamSender.h"

#include "platform/posix/Sqlite.h"
#include "store/OldSheets.h"
#include "store/SheetStore.h"
#include "store/StoreProblem.h"
#include "store/StoredSheets.h"
#include "stream/EntryMessage.h"
#include "tests/support/Patience.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <deque>
#include <map>
#include <random>
#include <set>

namespace kel::test {
namespace {

using namespace std::chrono_literals;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

/// A stream that loses connections, before it has a message or after, answers in any order, takes no large messages and
/// may be full.
class UnreliableStream final : public StreamOpener {
public:
    std::unique_ptr<StreamPublisher> publisher(const StreamAddress&) override
    {
        const std::lock_guard lock(mutex_);
        if (!isThere)
            throw StreamProblem("Nobody is there.");
        ++connections;
        return std::make_unique<Publisher>(*this);
    }

    std::unique_ptr<StreamConsumer> consumer(const StreamAddress&, const std::string&) override { return nullptr; }

    [[nodiscard]] std::vector<StreamMessage> messages() const
    {
        const std::lock_guard lock(mutex_);
        return messages_;
    }

    std::atomic<bool> isThere = true;
    std::atomic<int> connections = 0;
    std::atomic<int> losesEach = 0; ///< so many messages after its beginning a connection is lost; 0 for never
    std::atomic<int> most = 0;      ///< messages that were under way at once
    std::atomic<int> largest = 0;   ///< bytes of a message that it takes; 0 for any
    std::atomic<bool> isFull = false;

private:
    class Publisher final : public StreamPublisher {
    public:
        explicit Publisher(UnreliableStream& stream) : stream_(stream) {}

        void send(const StreamMessage& message, std::int64_t ticket) override
        {
            const std::lock_guard lock(stream_.mutex_);
            if (stream_.largest > 0 && message.content.size() > static_cast<std::size_t>(stream_.largest)) {
                answers_.push_back({.ticket = ticket, .refusal = "it is too large"});
                return;
            }
            if (stream_.losesEach > 0 && ++sent_ > stream_.losesEach) {
                if (stream_.connections % 2 == 0)
                    stream_.take(message); // the answer is lost, and not the message
                throw StreamProblem("The connection is lost.");
            }
            stream_.take(message);
            answers_.push_back({.ticket = ticket});
            stream_.most = std::max(stream_.most.load(), static_cast<int>(answers_.size()));
        }

        std::optional<StreamAnswer> answer(std::chrono::milliseconds) override
        {
            if (answers_.empty())
                return std::nullopt;
            if (stream_.isFull)
                throw StreamProblem("There is no room.");
            const auto any = answers_.begin() + static_cast<std::ptrdiff_t>(stream_.chance_() % answers_.size());
            StreamAnswer answer = *any;
            answers_.erase(any);
            return answer;
        }

        void check() override {}

    private:
        UnreliableStream& stream_;
        std::deque<StreamAnswer> answers_;
        int sent_ = 0;
    };

    void take(const StreamMessage& message)
    {
        if (identities_.insert(message.identity).second)
            messages_.push_back(message);
    }

    mutable std::mutex mutex_;
    std::vector<StreamMessage> messages_;
    std::set<std::string> identities_;
    std::minstd_rand chance_{1};
};

class ASender : public testing::Test {
protected:
    void feedOne(const std::string& reader, const std::string& barcode)
    {
        Entry entry{.origin = {.station = "hall", .reader = reader, .batch = "monday"},
                    .what = ReadSheetEntry{.sheet = {.barcodes = TextArray::of(1, {barcode})}}};
        store_.add(entry);
    }

    void feed(int sheets, const std::vector<std::string>& readers)
    {
        for (int sheet = 0; sheet < sheets; ++sheet) {
            for (const std::string& reader : readers)
                feedOne(reader, "x");
        }
    }

    [[nodiscard]] std::unique_ptr<StreamSender> sender()
    {
        return std::make_unique<StreamSender>(
            file_, StreamAddress{}, Pauses(1ms, 10ms),
            [this](const std::string& sentence) {
                const std::lock_guard lock(mutex_);
                told_.push_back(sentence);
            },
            [this]() -> StreamOpener& { return stream_; });
    }

    /// Whether a store knows that a stream is to have its sheets.
    [[nodiscard]] static bool wants(const std::filesystem::path& store)
    {
        SqliteDatabase database(store, SqliteDatabase::Mode::Shared, 0);
        SqliteStatement query(database, "SELECT sends FROM store");
        SqliteStatement::Run row(query);
        return row.next() && row.numberAt(0) != 0;
    }

    [[nodiscard]] bool waitSent() const
    {
        return waitUntil([&] { return SentMark(file_).unsent() == 0; });
    }

    [[nodiscard]] std::map<std::string, std::vector<Int32>> numbers() const
    {
        std::map<std::string, std::vector<Int32>> found;
        for (const StreamMessage& message : stream_.messages()) {
            const Entry entry = entryIn(message.content);
            found[entry.origin.reader].push_back(entry.sheet()->sheet.number);
        }
        return found;
    }

    std::vector<std::string> told() const
    {
        const std::lock_guard lock(mutex_);
        return told_;
    }

    TemporaryFolder folder_;
    std::filesystem::path file_ = folder_.path() / "hall.db";
    SheetStore store_{file_, "a test"};
    UnreliableStream stream_;
    mutable std::mutex mutex_;
    std::vector<std::string> told_;
};

TEST_F(ASender, SendsWhatIsThereAndWhatComes)
{
    feed(2, {"left"});
    const auto sender = this->sender();
    ASSERT_TRUE(waitSent());
    feed(1, {"left", "right"});
    ASSERT_TRUE(waitSent());
    EXPECT_THAT(numbers()["left"], ElementsAre(1, 2, 3));
    EXPECT_THAT(numbers()["right"], ElementsAre(1));
    EXPECT_THAT(told(), ElementsAre("The stream KELREADER takes sheets."));
    EXPECT_TRUE(sender->state().isUp);
    EXPECT_EQ(sender->state().unsent, 0);
}

TEST_F(ASender, KeepsTheOrderOfEachReaderWhateverIsLost)
{
    constexpr int kSheets = 15;
    const std::vector<std::string> readers = {"a", "b", "c", "d", "e"};
    feed(kSheets, readers);
    stream_.losesEach = 7;
    {
        const auto sender = this->sender();
        ASSERT_TRUE(waitSent());
    }
    std::vector<Int32> expected;
    for (int sheet = 1; sheet <= kSheets; ++sheet)
        expected.push_back(sheet);
    for (const std::string& reader : readers)
        EXPECT_EQ(numbers()[reader], expected) << reader;
    EXPECT_GT(stream_.connections, 10);
    EXPECT_EQ(stream_.most, 5);
}

TEST_F(ASender, GoesOnWhereTheLastOneEnded)
{
    feed(3, {"left"});
    {
        const auto sender = this->sender();
        ASSERT_TRUE(waitSent());
    }
    stream_.losesEach = 1; // nothing is sent again, or it would be lost again and again
    feed(1, {"left"});
    const auto sender = this->sender();
    ASSERT_TRUE(waitSent());
    EXPECT_EQ(stream_.connections, 2);
    EXPECT_THAT(numbers()["left"], ElementsAre(1, 2, 3, 4));
}

TEST_F(ASender, TellsEachChangeOnce)
{
    stream_.isThere = false;
    feed(1, {"left"});
    const auto sender = this->sender();
    ASSERT_TRUE(waitUntil([&] { return !told().empty(); }));
    EXPECT_FALSE(sender->state().isUp);
    EXPECT_EQ(sender->state().problem, "Nobody is there.");
    EXPECT_EQ(sender->state().unsent, 1);
    stream_.isThere = true;
    ASSERT_TRUE(waitSent());
    EXPECT_THAT(told(), ElementsAre("Nobody is there. The store keeps the sheets meanwhile.",
                                    "The stream KELREADER takes sheets."));
    EXPECT_THAT(sender->state().problem, IsEmpty());
}

TEST_F(ASender, LeavesOutWhatTheStreamDoesNotTake)
{
    constexpr int kLarge = 5000;
    const std::string large(kLarge, 'A');
    feed(1, {"left", "right"});
    for (const char* reader : {"left", "left", "right"})
        feedOne(reader, large);
    feed(2, {"left", "right"});
    stream_.largest = kLarge;
    {
        const auto sender = this->sender();
        ASSERT_TRUE(waitUntil([&] { return stream_.messages().size() == 6 && SentMark(file_).last() == 9; }));
        EXPECT_EQ(sender->state().unsent, 3);
        EXPECT_TRUE(sender->state().isUp);
        EXPECT_EQ(sender->state().problem,
                  "Sheet 2 of the batch monday of the reader right does not go into the stream: it is too large.");
    }
    EXPECT_THAT(numbers()["left"], ElementsAre(1, 4, 5));
    EXPECT_THAT(numbers()["right"], ElementsAre(1, 3, 4));
    const std::string end =
        " does not go into the stream: it is too large. The store keeps it, and the others are sent.";
    EXPECT_THAT(told(), UnorderedElementsAre("The stream KELREADER takes sheets.",
                                             "Sheet 2 of the batch monday of the reader left" + end,
                                             "Sheet 2 of the batch monday of the reader right" + end));

    // Nothing is forgotten that the stream does not have.
    SentMark(file_).want(true);
    const Forgotten forgotten = forgetOldSheets(file_, "2999-01-01", Forget::SentAlone);
    EXPECT_EQ(forgotten.sheets, 6);
    EXPECT_EQ(forgotten.kept, 3);

    stream_.largest = 0;
    const auto sender = this->sender();
    ASSERT_TRUE(waitSent());
    EXPECT_THAT(numbers()["left"], ElementsAre(1, 4, 5, 2, 3));
    EXPECT_THAT(numbers()["right"], ElementsAre(1, 3, 4, 2));
    EXPECT_THAT(sender->state().problem, IsEmpty());
}

TEST_F(ASender, TriesInVainWhatIsForgottenMeanwhile)
{
    stream_.largest = 1;
    feed(2, {"left"});
    {
        const auto sender = this->sender();
        ASSERT_TRUE(waitUntil([&] { return SentMark(file_).last() == 2; }));
    }
    EXPECT_EQ(forgetOldSheets(file_, "2999-01-01", Forget::All).sheets, 2);
    const auto sender = this->sender();
    ASSERT_TRUE(waitSent());
    EXPECT_THAT(stream_.messages(), IsEmpty());
}

TEST_F(ASender, LeavesOutADamagedRow)
{
    feed(5, {"left"});
    SqliteDatabase(file_, SqliteDatabase::Mode::Shared, 0).run("UPDATE sheet SET side1 = '{' WHERE id = 2");
    const auto sender = this->sender();
    ASSERT_TRUE(waitUntil([&] { return SentMark(file_).last() == 5; }));
    EXPECT_THAT(numbers()["left"], ElementsAre(1, 3, 4, 5));
    EXPECT_THAT(SentMark(file_).held(), ElementsAre(2));
    EXPECT_EQ(sender->state().unsent, 1);
    EXPECT_TRUE(sender->state().isUp);
    EXPECT_THAT(sender->state().problem, HasSubstr("is damaged at sheet 2: "));
    EXPECT_THAT(told(), UnorderedElementsAre("The stream KELREADER takes sheets.",
                                             AllOf(HasSubstr("is damaged at sheet 2: "),
                                                   HasSubstr("The store keeps it, and the others are sent."))));

    // It is put right.
    SqliteDatabase(file_, SqliteDatabase::Mode::Shared, 0).run("UPDATE sheet SET side1 = NULL WHERE id = 2");
    stream_.losesEach = 1; // so that there is another connection
    feed(2, {"left"});
    ASSERT_TRUE(waitSent());
    EXPECT_THAT(SentMark(file_).held(), IsEmpty());
}

TEST_F(ASender, SendsFromAStoreThatIsMadeMeanwhile)
{
    stream_.isThere = false;
    feed(2, {"left"});
    const auto sender = this->sender();
    ASSERT_TRUE(waitUntil([&] { return !told().empty(); }));
    std::filesystem::rename(file_, folder_.path() / "away.db");
    EXPECT_THROW(feed(1, {"left"}), StoreProblem);
    feed(3, {"left"});
    // It knows that a stream is wanted although that cannot be reached.
    ASSERT_TRUE(waitUntil([&] { return wants(file_); }));
    EXPECT_EQ(forgetOldSheets(file_, "2999-01-01", Forget::SentAlone).kept, 3);
    stream_.isThere = true;
    ASSERT_TRUE(waitSent());
    EXPECT_THAT(numbers()["left"], ElementsAre(1, 2, 3));
    EXPECT_EQ(SentMark(folder_.path() / "away.db").unsent(), 2);
    for (const std::string& sentence : told())
        EXPECT_THAT(sentence, testing::Not(HasSubstr("There is no store")));
}

TEST_F(ASender, TellsOnceThatTheStreamIsFull)
{
    feed(2, {"left"});
    stream_.isFull = true;
    const auto sender = this->sender();
    ASSERT_TRUE(waitUntil([&] { return stream_.connections > 5; }));
    EXPECT_FALSE(sender->state().isUp);
    EXPECT_EQ(sender->state().problem, "There is no room.");
    EXPECT_EQ(sender->state().unsent, 2);
    EXPECT_THAT(told(), ElementsAre("There is no room. The store keeps the sheets meanwhile."));
    stream_.isFull = false;
    ASSERT_TRUE(waitSent());
    EXPECT_THAT(told(), ElementsAre("There is no room. The store keeps the sheets meanwhile.",
                                    "The stream KELREADER takes sheets."));
    EXPECT_THAT(numbers()["left"], ElementsAre(1, 2));
}

} // namespace
} // namespace kel::test
