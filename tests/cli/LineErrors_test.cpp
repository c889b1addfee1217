// SPDX-License-Identifier: MIT
// What a scan says of characters that have gone wrong on the line.

#include "platform/posix/TerminalAttributes.h"
#include "simulators/pseudo_terminal/Pty.h"
#include "tests/cli/CommandRun.h"
#include "tests/support/Patience.h"

#include <gmock/gmock.h>

#include <chrono>
#include <poll.h>

namespace kel::test {
namespace {

using testing::HasSubstr;
using testing::Not;

/// Waits until the host has sent a byte.
bool hostSends(Pty& pty, char byte)
{
    const auto latest = std::chrono::steady_clock::now() + kPatience;
    std::string sent;
    while (sent.find(byte) == std::string::npos) {
        if (std::chrono::steady_clock::now() > latest)
            return false;
        pollfd handle{pty.handle(), POLLIN, 0};
        ::poll(&handle, 1, 100);
        sent += pty.read();
    }
    return true;
}

/// A scan of one sheet of an OMR2000, whose far end says what comes upon the start of the sheet: as a port has it,
/// which puts FF 00 in front of a character with a wrong parity bit.
CommandOutcome scanOneSheet(std::vector<std::string> words, std::string_view sheet)
{
    Pty pty;
    words.insert(words.begin(), {"scan", "--model", "21", "--device", pty.name(), "--set", "Parity=E", "--set",
                                 "Timeout=600", "--max-sheets", "1"});
    RunningCommand scan(words);
    EXPECT_TRUE(hostSends(pty, '\x11'));
    // A pseudo-terminal that is told to mark would mark the marks.
    TerminalAttributes attributes;
    EXPECT_TRUE(attributes.readFrom(pty.handle()));
    attributes.markParity(false);
    EXPECT_TRUE(attributes.writeTo(pty.handle()));
    EXPECT_EQ(pty.write(sheet), sheet.size());
    return scan.finish();
}

constexpr std::string_view kGoodSheet = "  \r";
constexpr std::string_view kSheetWithWrongParity("\xFF\0a \r", 5);
constexpr const char* kSentence =
    "kelreader: The line had 1 parity error (such characters were read as \"?\"); compare speed, parity and data bits "
    "with the reader's, and look at the cable.\n";

TEST(LineErrors, AreToldAtTheEndOfAScan)
{
    const CommandOutcome outcome = scanOneSheet({}, kSheetWithWrongParity);
    EXPECT_EQ(outcome.errors, kSentence);
    EXPECT_EQ(outcome.status, 0) << "the sheet has been read";
    // "?" in the place of the first half of row 1.
    EXPECT_THAT(outcome.output, HasSubstr(R"("side1":[[0,0,0,0,0,0,0,)"));
    EXPECT_THAT(outcome.output, Not(HasSubstr(R"("side1":[[0,0,0,0,0,0,0,0,0,0,0,0])")));
}

TEST(LineErrors, AreToldWithATraceToo)
{
    const TextFile trace("");
    EXPECT_EQ(scanOneSheet({"--trace", trace.path()}, kSheetWithWrongParity).errors, kSentence);
    EXPECT_THAT(trace.text(), HasSubstr("\n# so far 1 parity error\n"));
}

TEST(LineErrors, AreNotToldWhereThereAreNone)
{
    const TextFile trace("");
    EXPECT_EQ(scanOneSheet({"--trace", trace.path()}, kGoodSheet).errors, "");
    EXPECT_THAT(trace.text(), Not(HasSubstr("so far")));
}

} // namespace
} // namespace kel::test
