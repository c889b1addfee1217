// SPDX-License-Identifier: MIT
#include "platform/posix/PosixProcess.h"

#include "tests/support/UsersLocale.h"
#include "types/Text.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace kel {
namespace {

using namespace std::string_literals;

TEST(PosixProcess, ACommandLineIsItsWordsWithQuotesWhereTheyAreNeeded)
{
    EXPECT_EQ(joinCommandLine("/usr/bin/host\0/L=German\0"s), "/usr/bin/host /L=German");
    EXPECT_EQ(joinCommandLine("/opt/my host\0a\tb\0\0say \"x\"\0"s),
              "\"/opt/my host\" \"a\tb\" \"\" \"say \\\"x\\\"\"");
    EXPECT_EQ(joinCommandLine("without end"s), "\"without end\"");
    EXPECT_EQ(joinCommandLine(""), "");
}

TEST(PosixProcess, TheCommandLineIsThatOfThisProcess)
{
    const std::string line = PosixProcess().CommandLine();
    const std::string program = std::filesystem::read_symlink("/proc/self/exe").filename().string();
    EXPECT_NE(line.find(program), std::string::npos) << line;
}

TEST(PosixProcess, TheComponentIsTheFileThatThisCodeIsIn)
{
    // In these tests it is linked into the program.
    const PosixProcess process;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe");
    EXPECT_EQ(process.ComponentFile(), program);
    EXPECT_EQ(process.ComponentFolder(), program.parent_path());
}

std::string signs()
{
    const NumberSigns found = PosixProcess().numberSigns();
    return found.decimal + ' ' + found.thousands;
}

TEST(PosixProcess, NumbersAreThoseOfTheEnvironmentOrOfAProcessThatHasTakenALocale)
{
    {
        const test::UsersLocale english("en_US.UTF-8");
        EXPECT_EQ(signs(), ". ,");
    }
    {
        test::UsersLocale german;
        EXPECT_EQ(signs(), ", .");
        german.takenByTheProcess();
        ::setenv("LC_ALL", "en_US.UTF-8", 1);
        EXPECT_EQ(signs(), ", .") << "what the process has taken stays";
    }
    const test::UsersLocale nobodys("xx_XX.UTF-8");
    EXPECT_EQ(signs(), ". ");
}

} // namespace
} // namespace kel
