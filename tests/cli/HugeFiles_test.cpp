// SPDX-License-Identifier: MIT
#include "tests/cli/CommandRun.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

// Files that are huge, deep or broken, as somebody hostile writes them: the command ends with one sentence, and nothing
// is kept of half a file.

namespace kel::test {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::SizeIs;

std::string repeated(const std::string& text, std::size_t count)
{
    std::string all;
    all.reserve(text.size() * count);
    for (std::size_t i = 0; i < count; ++i)
        all += text;
    return all;
}

/// A file of nothing but zeros that takes no room.
void expand(const TextFile& file, std::uintmax_t megabytes)
{
    std::filesystem::resize_file(file.path(), megabytes << 20);
}

/// One sentence on standard error, and no more of it than somebody reads.
void expectRefused(const CommandOutcome& outcome, const std::string& sentence)
{
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.errors, AllOf(HasSubstr(sentence), EndsWith(".\n")));
    EXPECT_LT(outcome.errors.size(), 500U);
}

CommandOutcome imported(const std::string& text)
{
    return runCommand({"settings", "import", TextFile(kRegistryHeading + text).path()});
}

CommandOutcome scanned(const std::string& form)
{
    return runCommand({"scan", "--model", "13", "--simulate", "--max-sheets", "1", "--form", TextFile(form).path()});
}

TEST(HugeRegistryFile, AKeyMayLie512NamesDeep)
{
    const std::string deepest = "HKEY_CURRENT_USER\\Deep" + repeated("\\a", 511);
    EXPECT_EQ(imported("[" + deepest + "]\r\n\"x\"=\"1\"\r\n").errors, "");
    EXPECT_EQ(runCommand({"settings", "get", deepest, "x"}).output, "1\n");
    expectRefused(imported("[" + deepest + "\\a]\r\n\"x\"=\"1\"\r\n"), "Line 3: the key is longer than 2,048 bytes");
    expectRefused(imported("[" + deepest + repeated("\\a", 100'000) + "]\r\n"), "more than 512 names deep.");
    expectRefused(runCommand({"settings", "set", deepest + "\\a", "x", "1"}), "512 names deep.");

    const TextFile exported("");
    EXPECT_EQ(runCommand({"settings", "export", "HKCU\\Deep", exported.path()}).errors, "");
    EXPECT_EQ(runCommand({"settings", "delete", "HKCU\\Deep"}).errors, "");
    EXPECT_EQ(runCommand({"settings", "import", exported.path()}).errors, "");
    EXPECT_EQ(runCommand({"settings", "get", deepest, "x"}).output, "1\n");
    EXPECT_EQ(runCommand({"settings", "delete", "HKCU\\Deep"}).errors, "");
}

TEST(HugeRegistryFile, OfManyValuesIsTakenAsAWhole)
{
    std::string text = "[HKEY_CURRENT_USER\\Many]\r\n";
    for (int i = 0; i < 20'000; ++i)
        text += "\"v" + std::to_string(i) + "\"=\"" + std::to_string(i) + "\"\r\n";
    EXPECT_EQ(imported(text).errors, "");
    EXPECT_THAT(runCommand({"settings", "list", "HKCU\\Many"}).lines(), SizeIs(20'000));
    EXPECT_EQ(runCommand({"settings", "get", "HKCU\\Many", "v19999"}).output, "19999\n");
    EXPECT_EQ(runCommand({"settings", "delete", "HKCU\\Many"}).status, 0);
    expectRefused(imported("[HKCU\\Many]\r\n" + repeated("\"x\"=\"1\"\r\n", 50'000)),
                  "more than 50,000 keys and values");
    EXPECT_EQ(runCommand({"settings", "list", "HKCU\\Many"}).status, 1); // nothing of it was taken
}

TEST(HugeRegistryFile, IsRefusedBeyondItsLargestSize)
{
    const TextFile file(kRegistryHeading);
    expand(file, 9);
    expectRefused(runCommand({"settings", "import", file.path()}), "is larger than 8 MB, the limit");
}

TEST(HugeForm, HasPagesAndWindowsForAReader)
{
    const std::string many = "[1" + repeated(",1", 99'999) + "]";
    expectRefused(scanned("{\"side1Rows\":" + many + "}"), "side1Rows has 100000 pages; the limit is 1000.");
    expectRefused(scanned("{\"windows\":" + many + "}"), "windows has 100000 windows; the limit is 1000.");
    expectRefused(scanned("{\"barcodes\":" + many + "}"), "has 100000 barcode zones; the limit is 1000.");
}

TEST(HugeForm, IsRefusedWhenItIsDeepOrLarge)
{
    expectRefused(scanned(repeated("[", 500'000)), "nested more than 64 deep.");
    expectRefused(scanned(repeated("{\"a\":", 100'000)), "nested more than 64 deep.");
    const TextFile file("{}");
    expand(file, 2);
    expectRefused(runCommand({"scan", "--model", "13", "--simulate", "--form", file.path()}),
                  "is larger than 1 MB, the limit");
}

TEST(HugeForm, BracketsWithinTextsAreNoNesting)
{
    expectRefused(scanned("{\"recognitionMode\":\"" + repeated("[\\\"", 80) + "\"}"), "has to be \"page\"");
}

TEST(HugeSheets, AreRefused)
{
    const TextFile file("[]");
    expand(file, 33);
    expectRefused(runCommand({"scan", "--model", "13", "--simulate", "--sheets", file.path()}),
                  "is larger than 32 MB, the limit");
}

TEST(HugeAnswerKey, IsRefused)
{
    const TextFile file("{}");
    expand(file, 5);
    expectRefused(runCommand({"scan", "--model", "40", "--simulate", "--answer-key", file.path()}),
                  "is larger than 4 MB, the limit");
}

TEST(HugeTranscript, OfOneLongLineIsReplayedAndToldShort)
{
    const TextFile file("# model: 13\n# max-sheets: 1\n> " + repeated("41 ", 1'000'000) + "\n< 0D\n");
    const CommandOutcome replay = runCommand({"replay", file.path()});
    EXPECT_EQ(replay.status, 1);
    EXPECT_THAT(replay.errors, HasSubstr("The session differs from its transcript. Line 3: the host sent"));
    EXPECT_LT(replay.errors.size(), 2000U);
}

TEST(HugeTranscript, OfOneLongReplyIsTakenByteByByte)
{
    const TextFile file("# model: 24\n# max-sheets: 1\n< " + repeated("FF ", 500'000) + "\n> 52\n");
    const CommandOutcome replay = runCommand({"replay", file.path()});
    EXPECT_EQ(replay.status, 1);
    EXPECT_THAT(replay.output, HasSubstr("{\"event\":\"end\""));
}

TEST(HugeTranscript, IsRefusedBeyondItsLargestSize)
{
    expectRefused(runCommand({"replay", TextFile("# model: 13\n" + repeated("+ 1\n", 1'000'000)).path()}),
                  "line 1000001: a transcript of more than a million lines; replay it in parts.");
    const TextFile file("# model: 13\n");
    expand(file, 33);
    expectRefused(runCommand({"replay", file.path()}), "is larger than 32 MB, the limit");
    expectRefused(runCommand({"replay", TextFile("# model: 13\n# form: " + repeated("[", 500'000) + "\n").path()}),
                  "line 2: the form is not JSON: its arrays and objects are nested more than 64 deep.");
}

TEST(HugePortName, IsRefused)
{
    expectRefused(runCommand({"ports", "set", "14", std::string(70'000, 'x')}),
                  "The name of the device is 70000 bytes long; the limit is 4096.");
    EXPECT_EQ(runCommand({"settings", "get", R"(HKCU\Software\KELReader81U\Ports)", "14"}).status, 1);
}

/// A registry file can say what the command would not.
TEST(HugePortName, InTheRegistryOpensNothing)
{
    const std::string key = R"(HKEY_CURRENT_USER\Software\KELReader81U\Ports)";
    EXPECT_EQ(imported("[" + key + "]\r\n\"3\"=\"" + std::string(1'000'000, 'x') + "\"\r\n").errors, "");
    const std::string sentence = "Port 3 has a device whose name is 1000000 bytes long; the limit is 4096. "
                                 "Assign it to another one: kelreader ports set 3 DEVICE";

    const CommandOutcome scan = runCommand({"scan", "--model", "13", "--port", "3"});
    EXPECT_EQ(scan.status, 1);
    EXPECT_THAT(scan.output, HasSubstr(sentence));
    EXPECT_LT(scan.output.size() + scan.errors.size(), 2000U);

    const CommandOutcome ports = runCommand({"ports"});
    EXPECT_THAT(ports.output, HasSubstr(std::string(40, 'x') + "...  Invalid port number: " + sentence));
    EXPECT_LT(ports.output.size(), 10'000U);
    EXPECT_EQ(runCommand({"ports", "clear", "3"}).status, 0);
    EXPECT_EQ(runCommand({"settings", "delete", key}).status, 0);
}

TEST(HugePrintText, IsRefused)
{
    const auto printed = [](const std::string& text) {
        return runCommand(simulatedScan({"--count", "1", "--max-sheets", "1", "--print1", text}, "13"));
    };
    expectRefused(printed(repeated("{barcode}", 10'000)), "A text to print has 90000 characters; the limit is 1000.");
    expectRefused(printed(repeated("\u20ac", 10'000)), "the limit is 1000.");
    EXPECT_THAT(printed(repeated("\u00e4", 1000)).output, HasSubstr("{\"event\":\"end\""));
}

} // namespace
} // namespace kel::test
