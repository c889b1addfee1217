// SPDX-License-Identifier: MIT
#include "store/StoreReserve.h"
#include "tests/store/StoreTest.h"

#include <sys/stat.h>

namespace kel::store_test {
namespace {

constexpr std::int64_t kReserve = std::int64_t{8} << 20;

/// How much of the disk a file takes.
std::int64_t roomOf(const std::filesystem::path& file)
{
    constexpr std::int64_t kBlock = 512;
    struct stat status {};
    return ::stat(file.c_str(), &status) == 0 ? status.st_blocks * kBlock : -1;
}

class Reserve : public StoreTest {
protected:
    /// More often than a writer goes without a look at it.
    static void feed(SheetStore& store)
    {
        for (int sheet = 0; sheet < 101; ++sheet) {
            Entry entry = entryWith("x");
            store.add(entry);
        }
    }

    [[nodiscard]] std::int64_t room() const { return roomOf(file_.string() + "-reserve"); }
};

TEST_F(Reserve, TakesRoomBesideAStoreThatIsWritten)
{
    SheetStore store(file_, "a test");
    EXPECT_EQ(room(), -1);
    store.open();
    EXPECT_GE(room(), kReserve);
}

TEST_F(Reserve, IsMadeAgainByWhoWrites)
{
    SheetStore store(file_, "a test");
    store.open();
    std::filesystem::remove(file_.string() + "-reserve");
    feed(store);
    EXPECT_GE(room(), kReserve);
}

TEST_F(Reserve, IsNotMadeAgainWhileSomebodyNeedsItsRoom)
{
    SheetStore store(file_, "a test");
    EXPECT_FALSE(ReleasedReserve(file_));
    store.open();
    {
        const ReleasedReserve reserve(file_);
        EXPECT_TRUE(reserve);
        EXPECT_EQ(room(), 0);
        feed(store);
        EXPECT_EQ(room(), 0);
        EXPECT_FALSE(ReleasedReserve(file_));
    }
    EXPECT_GE(room(), kReserve);
}

TEST_F(Reserve, IsBesideTheFileForWhichALinkStands)
{
    std::filesystem::create_directory(folder_.path() / "disk");
    std::filesystem::create_symlink("disk/all.db", file_);
    SheetStore(file_, "a test").open();
    EXPECT_EQ(room(), -1);
    EXPECT_GE(roomOf(folder_.path() / "disk" / "all.db-reserve"), kReserve);
}

} // namespace
} // namespace kel::store_test
