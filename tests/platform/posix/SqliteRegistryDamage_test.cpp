// SPDX-License-Identifier: MIT
// What becomes of a file of settings that is damaged: it is set aside, once, and begun anew.

#include "tests/platform/posix/SqliteRegistryTest.h"

#include <algorithm>
#include <sys/stat.h>

namespace kel {
namespace {

using test::OtherProcess;
using test::SqliteRegistryTest;

using Names = std::vector<std::string>;

class DamagedRegistry : public SqliteRegistryTest {
protected:
    void SetUp() override
    {
        SqliteRegistry registry(folders());
        for (int i = 0; i < 200; ++i)
            ASSERT_TRUE(write(registry, "A", "value" + std::to_string(i), std::string(100, 'x')));
    }

    /// Writes something else over a part of the file, without changing its length.
    void overwrite(std::streamoff from, const std::string& bytes) const
    {
        std::fstream stream(file(), std::ios::binary | std::ios::in | std::ios::out);
        stream.seekp(from);
        stream << bytes;
    }
};

TEST_F(DamagedRegistry, IsSetAsideWithAWordAndBegunAnew)
{
    overwrite(0, "this is no database at all");
    const std::string damaged = contents(file());

    ::testing::internal::CaptureStderr();
    SqliteRegistry registry(folders());
    EXPECT_TRUE(write(registry, "B", "y", "2"));
    const std::string told = ::testing::internal::GetCapturedStderr();

    EXPECT_EQ(read(registry, "B", "y"), "2");
    EXPECT_EQ(read(registry, "A", "value1"), "nothing");
    ASSERT_EQ(asideFiles().size(), 1U);
    EXPECT_EQ(contents(asideFiles().front()), damaged);
    EXPECT_NE(told.find(file().string() + " is damaged"), std::string::npos) << told;
    EXPECT_NE(told.find("set aside as " + asideFiles().front()), std::string::npos) << told;
    EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), 1) << told;
}

TEST_F(DamagedRegistry, ShowsWhenItIsRead)
{
    overwrite(0, std::string(100, '\0'));
    ::testing::internal::CaptureStderr();
    SqliteRegistry registry(folders());
    EXPECT_EQ(read(registry, "A", "value1"), "nothing");
    EXPECT_NE(::testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(asideFiles().size(), 1U);
    EXPECT_FALSE(std::filesystem::exists(file()));
}

TEST_F(DamagedRegistry, ThatIsCutShortIsSetAsideToo)
{
    const std::uintmax_t size = std::filesystem::file_size(file());
    std::filesystem::resize_file(file(), size / 2);
    ::testing::internal::CaptureStderr();
    SqliteRegistry registry(folders());
    EXPECT_EQ(read(registry, "A", "value1"), "nothing");
    EXPECT_NE(::testing::internal::GetCapturedStderr(), "");
    ASSERT_EQ(asideFiles().size(), 1U);
    EXPECT_EQ(std::filesystem::file_size(asideFiles().front()), size / 2);
}

TEST_F(DamagedRegistry, ThatTakesThePlaceOfAnOpenOneIsSetAside)
{
    SqliteRegistry registry(folders());
    EXPECT_EQ(read(registry, "A", "value1"), std::string(100, 'x'));
    std::ofstream(folder.path() / "other") << "this is no database at all";
    std::filesystem::rename(folder.path() / "other", file());
    ::testing::internal::CaptureStderr();
    EXPECT_TRUE(write(registry, "A", "value1", "new"));
    EXPECT_NE(::testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(read(registry, "A", "value1"), "new");
    EXPECT_EQ(asideFiles().size(), 1U);
}

TEST_F(DamagedRegistry, ShowsWhereverTheDamageIs)
{
    // The last page, which the value that is asked for has nothing to do with.
    overwrite(static_cast<std::streamoff>(std::filesystem::file_size(file())) - 4096, std::string(4096, '\xEE'));
    ::testing::internal::CaptureStderr();
    SqliteRegistry registry(folders());
    EXPECT_FALSE(registry.exists(kUser, "B"));
    EXPECT_NE(::testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(asideFiles().size(), 1U);
}

TEST_F(DamagedRegistry, IsSetAsideOnceByManyProcesses)
{
    for (int round = 0; round < 8; ++round) {
        for (const std::string& aside : asideFiles())
            std::filesystem::remove(aside);
        std::ofstream(file(), std::ios::trunc) << "this is no database at all";
        std::array<int, 2> gate{};
        ASSERT_EQ(::pipe(gate.data()), 0);
        std::vector<std::unique_ptr<OtherProcess>> others;
        for (int i = 0; i < 6; ++i)
            others.push_back(std::make_unique<OtherProcess>([&, i]() -> std::string {
                ::close(STDERR_FILENO);
                ::close(gate[1]);
                char none = 0;
                if (::read(gate[0], &none, 1) != 0)
                    return "no gate";
                SqliteRegistry registry(folders());
                return write(registry, "B", std::to_string(i), "1") ? "written" : "not written";
            }));
        // All begin when the gate goes.
        ::close(gate[1]);
        for (const auto& other : others)
            EXPECT_EQ(other->answer(), "written");
        ::close(gate[0]);
        EXPECT_EQ(asideFiles().size(), 1U);
        SqliteRegistry registry(folders());
        EXPECT_EQ(registry.valueNames(kUser, "B"), (Names{"0", "1", "2", "3", "4", "5"}));
    }
}

TEST_F(DamagedRegistry, ThatCannotBeSetAsideStaysAsItIs)
{
    overwrite(0, "this is no database at all");
    const std::string damaged = contents(file());
    ASSERT_EQ(::chmod(folder.path().c_str(), 0755), 0);
    ASSERT_EQ(::chmod(file().c_str(), 0666), 0);
    ASSERT_EQ(::chmod(place().c_str(), 0555), 0);
    OtherProcess other([&] {
        test::becomeOrdinaryUser();
        ::testing::internal::CaptureStderr();
        SqliteRegistry registry(folders());
        std::string answer = read(registry, "A", "value1");
        answer += write(registry, "B", "y", "2") ? ", written: " : ", not written: ";
        return answer + ::testing::internal::GetCapturedStderr();
    });
    const std::string answer = other.answer();
    EXPECT_EQ(answer.find("nothing, not written: "), 0U) << answer;
    EXPECT_NE(answer.find("cannot be set aside: Permission denied"), std::string::npos) << answer;
    EXPECT_EQ(std::count(answer.begin(), answer.end(), '\n'), 1) << answer;
    ASSERT_EQ(::chmod(place().c_str(), 0755), 0);
    EXPECT_EQ(contents(file()), damaged);
}

} // namespace
} // namespace kel
