// SPDX-License-Identifier: MIT
#include "platform/posix/Sqlite.h"
#include "tests/support/TemporaryFolder.h"

#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>

namespace kel::test {
namespace {

/// As long as it lives, no file of the process grows beyond `bytes`.
class LimitOfFiles {
public:
    explicit LimitOfFiles(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN))
    {
        ::getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{bytes, before_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~LimitOfFiles()
    {
        ::setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }
    LimitOfFiles(const LimitOfFiles&) = delete;
    LimitOfFiles& operator=(const LimitOfFiles&) = delete;

private:
    void (*handler_)(int);
    rlimit before_{};
};

TEST(SqliteFailureTest, AFileThatMayNotGrowIsFull)
{
    const TemporaryFolder folder;
    SqliteDatabase database(folder.write("limited.db", ""), SqliteDatabase::Mode::Shared, 0);
    database.run("CREATE TABLE bytes (content BLOB)");
    bool isFull = false;
    {
        const LimitOfFiles limit(100'000);
        try {
            database.run("INSERT INTO bytes VALUES (zeroblob(1000000))");
        } catch (const SqliteFailure& failure) {
            isFull = failure.isFull();
        }
    }
    EXPECT_TRUE(isFull);
    EXPECT_EQ(database.numberOf("SELECT count(*) FROM bytes"), 0);
    database.run("INSERT INTO bytes VALUES (zeroblob(1000000))");
    EXPECT_EQ(database.numberOf("SELECT count(*) FROM bytes"), 1);
}

} // namespace
} // namespace kel::test
