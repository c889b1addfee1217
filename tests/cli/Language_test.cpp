// SPDX-License-Identifier: MIT
#include "tests/cli/CommandRun.h"

#include <gmock/gmock.h>

// In which language the command tells what the component has to say.

namespace kel::test {
namespace {

using testing::HasSubstr;
using testing::Not;

using Words = std::vector<std::string>;

constexpr const char* kGerman = "Bibliothek";
constexpr const char* kEnglish = "Library";

/// What a scan with a missing library of the maker says, with these words in front of the command and after it.
std::string told(const Words& before, const Words& behind)
{
    Words words = before;
    words.insert(words.end(), {"scan", "--model", "SR3500", "--omrapi", "/nowhere/libOMRAPI.so"});
    words.insert(words.end(), behind.begin(), behind.end());
    return runCommand(words).errors;
}

TEST(LanguageOption, IsTakenInEverySpellingAndPlace)
{
    EXPECT_THAT(told({}, {}), HasSubstr(kEnglish));
    for (const Words& option : {Words{"--language", "German"}, Words{"--language=german"}, Words{"/L=German"},
                                Words{"/l=gERMAN"}, Words{"--language", "Germany"}}) {
        EXPECT_THAT(told({}, option), HasSubstr(kGerman)) << testing::PrintToString(option);
        EXPECT_THAT(told(option, {}), HasSubstr(kGerman)) << testing::PrintToString(option);
    }
}

TEST(LanguageOption, IsTakenByEveryCommand)
{
    const Words commands = {"models",   "model",  "ports",  "ports set", "scan",    "simulate",
                            "settings", "replay", "locate", "firmware",  "options", "settings show"};
    for (const std::string& command : commands)
        EXPECT_THAT(runCommand({"help", command}).output, HasSubstr("--language")) << command;
    EXPECT_EQ(runCommand({"models", "/L=French"}).status, 0);
    EXPECT_EQ(runCommand({"settings", "list", "HKCU", "--language", "Spanish"}).status, 0);
}

TEST(LanguageOption, OfALanguageThatIsNotThereIsWrongUsage)
{
    for (const Words& words : {Words{"models", "--language", "Klingon"}, Words{"models", "/L=Klingon"}}) {
        const CommandOutcome outcome = runCommand(words);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.output, "");
        EXPECT_EQ(
            outcome.errors,
            "kelreader: There is no language 'Klingon'; the languages are English, German, French and Spanish.\n");
    }
    EXPECT_EQ(runCommand({"models", "/L="}).status, 2);
    EXPECT_EQ(runCommand({"models", "/L=French", "--language", "German"}).status, 2);
}

TEST(LanguageOption, CanBeSetForTheMachineAndOverruled)
{
    const std::string key = R"(HKLM\Software\WhippleWare\VBLM)";
    EXPECT_EQ(runCommand({"settings", "set", key, "LastLanguage", "german"}).status, 0);
    EXPECT_THAT(told({}, {}), HasSubstr(kGerman));
    EXPECT_THAT(told({}, {"--language", "English"}), HasSubstr(kEnglish));
    EXPECT_EQ(runCommand({"settings", "delete", key, "LastLanguage"}).status, 0);
    EXPECT_THAT(told({}, {}), Not(HasSubstr(kGerman)));
}

} // namespace
} // namespace kel::test
