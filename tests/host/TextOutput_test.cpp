// SPDX-License-Identifier: MIT
#include "host/TextOutput.h"

#include "cli/Progress.h"
#include "cli/UsageError.h"
#include "tests/cli/CommandRun.h"

#include <gtest/gtest.h>

#include <csignal>
#include <sys/resource.h>

namespace kel::test {
namespace {

/// While one exists, no file of this process grows beyond a size.
class SizeLimit {
public:
    explicit SizeLimit(rlim_t bytes) : former_(std::signal(SIGXFSZ, SIG_IGN))
    {
        ::getrlimit(RLIMIT_FSIZE, &limits_);
        const rlimit limits{bytes, limits_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limits);
    }
    ~SizeLimit()
    {
        ::setrlimit(RLIMIT_FSIZE, &limits_);
        std::signal(SIGXFSZ, former_);
    }
    SizeLimit(const SizeLimit&) = delete;
    SizeLimit& operator=(const SizeLimit&) = delete;

private:
    rlimit limits_{};
    void (*former_)(int);
};

TEST(TextOutput, WritesLinesIntoAFileMadeNew)
{
    const TextFile file("a long text that was there before");
    host::TextOutput output(file.path());
    EXPECT_TRUE(output.write("one\n"));
    EXPECT_EQ(file.text(), "one\n") << "a line is there at once";
    EXPECT_TRUE(output.write("two\n"));
    EXPECT_EQ(file.text(), "one\ntwo\n");
    EXPECT_FALSE(output.failed());
}

TEST(TextOutput, LineThatFindsNoRoomIsTakenBackAsAWhole)
{
    const TextFile file("");
    host::TextOutput output(file.path());
    {
        const SizeLimit limit(10);
        EXPECT_TRUE(output.write("seven.\n"));
        EXPECT_FALSE(output.write("ten more..\n"));
        EXPECT_EQ(file.text(), "seven.\n");
    }
    EXPECT_FALSE(output.write("no\n")) << "nothing comes behind a gap";
    EXPECT_EQ(file.text(), "seven.\n");
    EXPECT_EQ(output.problem(), file.path() + " cannot be written: File too large.");
    EXPECT_THROW(output.writeOrFail("no\n"), CommandFailure);
}

TEST(TextOutput, FullDiskSaysWhatToDo)
{
    host::TextOutput output("/dev/full");
    EXPECT_FALSE(output.write("x\n"));
    EXPECT_EQ(output.problem(), "/dev/full cannot be written: no space is left. Free some, or name another file with "
                                "--out.");
}

TEST(TextOutput, FileThatCannotBeMadeIsAFailure)
{
    EXPECT_THROW(host::TextOutput("/nonexistent/file"), CommandFailure);
}

TEST(Progress, TellsSheetsAMinute)
{
    using Seconds = std::chrono::duration<double>;
    EXPECT_EQ(progressText(1, Seconds(0)), "1 sheet");
    EXPECT_EQ(progressText(12, Seconds(18)), "12 sheets, 40 a minute");
    EXPECT_EQ(progressText(1, Seconds(7)), "1 sheet, 9 a minute");
}

} // namespace
} // namespace kel::test
