// SPDX-License-Identifier: MIT
#include "strings/ProfileSection.h"
#include "tests/strings/LanguageFileMaker.h"

#include <gtest/gtest.h>

namespace kel::test {
namespace {

class ProfileSectionTest : public testing::Test {
protected:
    ProfileSection section(const std::string& content, const std::string& name = "VBLM")
    {
        return {folder.write("profile.txt", content), name};
    }

    std::string value(const std::string& content, const std::string& key)
    {
        return section(content).value(key, "?", 64);
    }

    TemporaryFolder folder;
};

TEST_F(ProfileSectionTest, ComparesNamesWithoutRegardToCase)
{
    EXPECT_EQ(value("[vBLm]\r\nKEY=1\r\n", "Key"), "1");
}

TEST_F(ProfileSectionTest, TrimsBlanksAndTabsAroundKeyAndValue)
{
    EXPECT_EQ(value(" \t[VBLM]\t\r\n \tKey\t = \t a b \t\r\n", "Key"), "a b");
}

TEST_F(ProfileSectionTest, DropsOnePairOfQuotes)
{
    EXPECT_EQ(value("[VBLM]\nKey=\" a \"\n", "Key"), " a ");
    EXPECT_EQ(value("[VBLM]\nKey=' a '\n", "Key"), " a ");
    EXPECT_EQ(value("[VBLM]\nKey=\"\"a\"\"\n", "Key"), "\"a\"");
    EXPECT_EQ(value("[VBLM]\nKey=\"a'\n", "Key"), "\"a'");
    EXPECT_EQ(value("[VBLM]\nKey=\"a\n", "Key"), "\"a");
    EXPECT_EQ(value("[VBLM]\nKey=\"\n", "Key"), "\"");
}

TEST_F(ProfileSectionTest, TakesTheFirstMatch)
{
    EXPECT_EQ(value("[VBLM]\nKey=1\nKey=2\n[VBLM]\nKey=3\nOther=4\n", "Key"), "1");
    EXPECT_EQ(value("[VBLM]\nKey=1\n[VBLM]\nOther=4\n", "Other"), "?");
}

TEST_F(ProfileSectionTest, EndsAtTheNextSection)
{
    EXPECT_EQ(value("[VBLM]\nKey=1\n[English]\nNumStrings=5\n", "NumStrings"), "?");
}

TEST_F(ProfileSectionTest, IsFoundBehindOthers)
{
    EXPECT_EQ(value("Key=0\n[Other]\nKey=1\n[VBLM]\nKey=2\n", "Key"), "2");
}

TEST_F(ProfileSectionTest, GivesTheDefaultForWhatIsMissing)
{
    EXPECT_EQ(value("[VBLM]\nKey=1\n", "Ke"), "?");
    EXPECT_EQ(value("[VBLM]\nKey\n", "Key"), "?");
    EXPECT_EQ(value("[Other]\nKey=1\n", "Key"), "?");
    EXPECT_EQ(value("[VBLM\nKey=1\n", "Key"), "?");
    EXPECT_EQ(value("", "Key"), "?");
    EXPECT_EQ(ProfileSection(folder.file("none.txt"), "VBLM").value("Key", "?", 64), "?");
    EXPECT_EQ(ProfileSection(folder.path().string(), "VBLM").value("Key", "?", 64), "?");
}

TEST_F(ProfileSectionTest, GivesAnEmptyTextForAnEmptyValue)
{
    EXPECT_EQ(value("[VBLM]\nKey=\n", "Key"), "");
    EXPECT_EQ(value("[VBLM]\nKey=\"\"\n", "Key"), "");
}

TEST_F(ProfileSectionTest, PassesOverComments)
{
    EXPECT_EQ(value("[VBLM]\n;Key=1\n ; [Other]\nKey=2;3\n", "Key"), "2;3");
}

TEST_F(ProfileSectionTest, TakesWhatStandsBehindTheFirstEqualsSign)
{
    EXPECT_EQ(value("[VBLM]\nKey=a=b\n", "Key"), "a=b");
}

TEST_F(ProfileSectionTest, CutsAValueToTheBuffer)
{
    const std::string content = "[VBLM]\nKey=\"" + std::string(70, 'x') + "\"\n";
    EXPECT_EQ(value(content, "Key"), std::string(63, 'x'));
    EXPECT_EQ(section(content).value("Key", "?", 4), "xxx");
}

TEST_F(ProfileSectionTest, CountsCharactersAndNotBytes)
{
    std::string umlauts;
    for (int i = 0; i < 63; ++i)
        umlauts += "\xC3\xA4";
    EXPECT_EQ(value("[VBLM]\nKey=" + umlauts + "\n", "Key"), umlauts);
    EXPECT_EQ(value("[VBLM]\nKey=" + umlauts + "\xC3\xA4\n", "Key"), umlauts);
}

TEST_F(ProfileSectionTest, PassesOverTheMarkOfAnEditor)
{
    EXPECT_EQ(value("\xEF\xBB\xBF[VBLM]\nKey=1\n", "Key"), "1");
}

} // namespace
} // namespace kel::test
