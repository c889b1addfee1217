// SPDX-License-Identifier: MIT
#include "station/StationFeed.h"

#include "store/SheetStore.h"
#include "tests/support/Patience.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <atomic>
#include <future>

namespace kel::test {
namespace {

using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr int kMostWatchers = 16;
constexpr int kLastSheets = 24;

/// A client in a thread of its own, who may take nothing for a while.
class Watcher final : public WebClient {
public:
    explicit Watcher(const std::function<void(WebClient&)>& watch)
        : ended_(std::async(std::launch::async, [this, watch] { watch(*this); }))
    {
    }
    ~Watcher() override
    {
        leave();
        take();
    }
    Watcher(const Watcher&) = delete;
    Watcher& operator=(const Watcher&) = delete;

    bool send(std::string_view text) override
    {
        std::unique_lock lock(mutex_);
        isSent_ = true;
        changed_.notify_all();
        changed_.wait(lock, [this] { return takes_; });
        text_ += text;
        isSent_ = false;
        return isThere_;
    }

    [[nodiscard]] bool isThere() const override { return isThere_; }

    void leave() { isThere_ = false; }
    void take()
    {
        const std::lock_guard lock(mutex_);
        takes_ = true;
        changed_.notify_all();
    }
    void takeNothing()
    {
        const std::lock_guard lock(mutex_);
        takes_ = false;
    }
    /// Waits until something lies there that is not taken.
    void waitUntilSent()
    {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return isSent_; });
    }
    void waitForEnd() { ended_.wait(); }

    [[nodiscard]] std::string text() const
    {
        const std::lock_guard lock(mutex_);
        return text_;
    }

    /// The numbers of the sheets that it was told, in their order.
    [[nodiscard]] std::vector<int> sheets() const
    {
        const std::string all = text();
        constexpr std::string_view kNumber = "\"sheet\":";
        std::vector<int> numbers;
        for (std::size_t at = all.find(kNumber); at != std::string::npos; at = all.find(kNumber, at + 1))
            numbers.push_back(std::stoi(all.substr(at + kNumber.size())));
        return numbers;
    }

private:
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::string text_;
    bool takes_ = true;
    bool isSent_ = false;
    std::atomic<bool> isThere_ = true;
    std::future<void> ended_;
};

class Feed : public testing::Test {
protected:
    void read(int sheets)
    {
        for (int sheet = 0; sheet < sheets; ++sheet) {
            Entry entry{.origin = {.station = "hall", .reader = "left", .batch = "monday"}, .what = ReadSheetEntry{}};
            store_.add(entry);
        }
    }

    static std::vector<int> numbers(int first, int last)
    {
        std::vector<int> all;
        for (int number = first; number <= last; ++number)
            all.push_back(number);
        return all;
    }

    TemporaryFolder folder_;
    SheetStore store_{folder_.path() / "hall.db", "a test"};
    std::atomic<int> state_ = 1;
    StationFeed feed_{[this] { return "{\"is\":" + std::to_string(state_) + "}"; }, folder_.path() / "hall.db"};
};

TEST_F(Feed, TellsTheStateAndTheSheetsAsTheyCome)
{
    read(2);
    Watcher watcher(feed_.watch());
    ASSERT_TRUE(waitUntil([&] { return watcher.sheets().size() == 2; }));
    read(1);
    state_ = 2;
    ASSERT_TRUE(waitUntil(
        [&] { return watcher.sheets().size() == 3 && watcher.text().find("{\"is\":2}") != std::string::npos; }));
    EXPECT_THAT(watcher.sheets(), ElementsAreArray({1, 2, 3}));
    EXPECT_THAT(watcher.text(),
                testing::StartsWith("event: state\ndata: {\"is\":1}\n\nevent: sheet\ndata: {\"id\":1,"));
}

TEST_F(Feed, WhoeverIsSlowMissesSheetsAndNobodyWaitsForHim)
{
    Watcher slow(feed_.watch());
    ASSERT_TRUE(waitUntil([&] { return slow.text().find("\"is\":1") != std::string::npos; }));
    slow.takeNothing();
    read(1);
    slow.waitUntilSent();
    // A reader stores as if nobody watched, and somebody else sees it.
    Watcher other(feed_.watch());
    for (int n = 2; n <= 51; ++n) {
        read(1);
        if (n % 10 == 1) {
            ASSERT_TRUE(waitUntil([&] { return !other.sheets().empty() && other.sheets().back() == n; }));
        }
    }
    EXPECT_THAT(slow.sheets(), IsEmpty());
    slow.take();
    ASSERT_TRUE(waitUntil([&] { return !slow.sheets().empty() && slow.sheets().back() == 51; }));
    std::vector<int> told = slow.sheets();
    std::erase(told, 1);
    EXPECT_THAT(told, ElementsAreArray(numbers(51 - kLastSheets + 1, 51)));
}

TEST_F(Feed, TellsNoSheetTwiceHoweverTheyCome)
{
    Watcher watcher(feed_.watch());
    ASSERT_TRUE(waitUntil([&] {
        read(1);
        return watcher.sheets().size() > std::size_t{10} * kLastSheets;
    }));
    std::vector<int> told = watcher.sheets();
    EXPECT_EQ(std::adjacent_find(told.begin(), told.end(), std::greater_equal<>()), told.end());
}

TEST_F(Feed, HasSoManyWatchersAndNoMore)
{
    std::vector<std::unique_ptr<Watcher>> watchers;
    for (int n = 0; n < kMostWatchers; ++n)
        watchers.push_back(std::make_unique<Watcher>(feed_.watch()));
    EXPECT_EQ(feed_.watchers(), kMostWatchers);
    EXPECT_FALSE(feed_.watch());
    watchers.pop_back();
    ASSERT_TRUE(waitUntil([&] { return feed_.watchers() == kMostWatchers - 1; }));
    EXPECT_TRUE(feed_.watch());
}

TEST_F(Feed, TellsALaterWatcherTheLastSheets)
{
    {
        Watcher watcher(feed_.watch());
        ASSERT_TRUE(waitUntil([&] { return !watcher.text().empty(); }));
    }
    ASSERT_TRUE(waitUntil([&] { return feed_.watchers() == 0; }));
    read(30);
    Watcher later(feed_.watch());
    ASSERT_TRUE(waitUntil([&] { return !later.sheets().empty() && later.sheets().back() == 30; }));
    EXPECT_THAT(later.sheets(), ElementsAreArray(numbers(7, 30)));
}

TEST_F(Feed, GoesOnWithAStoreInThePlaceOfTheOldOne)
{
    read(5);
    Watcher watcher(feed_.watch());
    ASSERT_TRUE(waitUntil([&] { return watcher.sheets().size() == 5; }));
    for (const char* end : {"", "-wal", "-shm"})
        std::filesystem::rename(folder_.file(std::string("hall.db") + end), folder_.file(std::string("old.db") + end));
    Entry entry{.origin = {.station = "hall", .reader = "left", .batch = "tuesday"}, .what = ReadSheetEntry{}};
    EXPECT_ANY_THROW(store_.add(entry));
    store_.add(entry);
    ASSERT_TRUE(waitUntil([&] { return watcher.sheets().size() == 6; }));
    EXPECT_THAT(watcher.text(), HasSubstr("\"batch\":\"tuesday\",\"sheet\":1,"));
}

TEST_F(Feed, EndsWithThoseWhoWatch)
{
    {
        Watcher watcher(feed_.watch());
        ASSERT_TRUE(waitUntil([&] { return !watcher.text().empty(); }));
        feed_.end();
        watcher.waitForEnd();
    }
    EXPECT_EQ(feed_.watchers(), 0);
}

} // namespace
} // namespace kel::test
