// SPDX-License-Identifier: MIT
#include "stream/StreamSender.h"

#include "store/SheetStore.h"
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

/// A stream that loses connections, before it has a message or after, and answers in any order.
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

private:
    class Publisher final : public StreamPublisher {
    public:
        explicit Publisher(UnreliableStream& stream) : stream_(stream) {}

        void send(const StreamMessage& message, std::int64_t ticket) override
        {
            const std::lock_guard lock(stream_.mutex_);
            if (stream_.losesEach > 0 && ++sent_ > stream_.losesEach) {
                if (stream_.connections % 2 == 0)
                    stream_.take(message); // the answer is lost, and not the message
                throw StreamProblem("The connection is lost.");
            }
            stream_.take(message);
            answers_.push_back(ticket);
            stream_.most = std::max(stream_.most.load(), static_cast<int>(answers_.size()));
        }

        std::optional<std::int64_t> acknowledged(std::chrono::milliseconds) override
        {
            if (answers_.empty())
                return std::nullopt;
            const auto any = answers_.begin() + static_cast<std::ptrdiff_t>(stream_.chance_() % answers_.size());
            const std::int64_t ticket = *any;
            answers_.erase(any);
            return ticket;
        }

        void check() override {}

    private:
        UnreliableStream& stream_;
        std::deque<std::int64_t> answers_;
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
    void feed(int sheets, const std::vector<std::string>& readers)
    {
        for (int sheet = 0; sheet < sheets; ++sheet) {
            for (const std::string& reader : readers) {
                Entry entry{.origin = {.station = "hall", .reader = reader, .batch = "monday"},
                            .what = ReadSheetEntry{.sheet = {.barcodes = TextArray::of(1, {"x"})}}};
                store_.add(entry);
            }
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

} // namespace
} // namespace kel::test
