// SPDX-License-Identifier: MIT
#include "tests/strings/LanguageDatabaseTest.h"

namespace kel::test {
namespace {

using LanguageChoice = LanguageDatabaseTest;

TEST_F(LanguageChoice, IsTheFirstLanguageWhenNothingElseIsSaid)
{
    EXPECT_EQ(with(twoLanguages()).RTString(1), "one");
    EXPECT_EQ(database().state().mlSelectedLanguage, 1);
}

TEST_F(LanguageChoice, OfTheCommandLineWinsInAnyCaseOfLettersWhateverTheRegistrySays)
{
    lastLanguage("English");
    platform.process_.commandLine = "program /l=gERMAN more";
    EXPECT_EQ(with(twoLanguages()).RTString(1), "eins");
    EXPECT_EQ(database().state().mlSelectedLanguage, 2);
}

TEST_F(LanguageChoice, TakesTheLaterOfTwoMatchesOfTheCommandLine)
{
    platform.process_.commandLine = "program /L=German /L=English";
    EXPECT_EQ(with(twoLanguages()).RTString(1), "eins");
}

TEST_F(LanguageChoice, NeedsNothingBehindTheNameInTheCommandLine)
{
    platform.process_.commandLine = "program/L=Germany";
    EXPECT_EQ(with(twoLanguages()).RTString(1), "eins");
}

TEST_F(LanguageChoice, NeedsTheSwitchRightBeforeTheName)
{
    platform.process_.commandLine = "program /L= German L=German";
    EXPECT_EQ(with(twoLanguages()).RTString(1), "one");
}

TEST_F(LanguageChoice, IsThatOfLastTimeInAnyCaseOfLetters)
{
    lastLanguage("GERMAN");
    EXPECT_EQ(with(twoLanguages()).RTString(1), "eins");
}

TEST_F(LanguageChoice, IsInAnyCaseOfTheLettersOfAnyAlphabet)
{
    for (const auto& [name, other] :
         {std::pair("Fran\u00E7ais", "FRAN\u00C7AIS"),
          std::pair("\u0395\u03BB\u03BB\u03B7\u03BD\u03B9\u03BA\u03AC",
                    "\u0395\u039B\u039B\u0397\u039D\u0399\u039A\u0386"),
          std::pair("\u0420\u0443\u0441\u0441\u043A\u0438\u0439", "\u0440\u0423\u0421\u0421\u041A\u0418\u0419"),
          std::pair("Fran\xE7"
                    "ais",
                    "FRAN\xC7"
                    "AIS")}) {
        LanguageFileMaker maker = twoLanguages();
        maker.sections[1].name = name;
        maker.sections[1].heading = std::string("[") + name + "]";
        platform.process_.commandLine = std::string("program /L=") + other;
        lastLanguage("");
        EXPECT_EQ(with(maker).RTString(1), "eins") << other;
        platform.process_.commandLine = "program";
        lastLanguage(other);
        EXPECT_EQ(fresh().RTString(1), "eins") << other;
        lastLanguage(std::string(other) + "x");
        EXPECT_EQ(fresh().RTString(1), "one") << other;
    }
}

TEST_F(LanguageChoice, TakesTheFirstOfTwoLanguagesThatTheRegistryNames)
{
    lastLanguage("german");
    LanguageFileMaker maker = twoLanguages();
    maker.sections[0].name = "GERMAN";
    maker.sections[0].heading = "[GERMAN]";
    EXPECT_EQ(with(maker).RTString(1), "one");
}

TEST_F(LanguageChoice, IsTheFirstLanguageWhenTheRegistryNamesNone)
{
    lastLanguage("Latin");
    EXPECT_EQ(with(twoLanguages()).RTString(1), "one");
    lastLanguage("Germ");
    EXPECT_EQ(fresh().RTString(1), "one");
}

TEST_F(LanguageChoice, IsTheSingleLanguageEvenIfAnotherOneIsNamed)
{
    platform.process_.commandLine = "program /L=German";
    lastLanguage("German");
    EXPECT_EQ(with(oneLanguage({"S0=zero"}, {"NumStrings=1"})).RTString(0), "zero");
    EXPECT_EQ(database().state().mlSelectedLanguage, 1);
}

TEST_F(LanguageChoice, IsMadeOnceForTheLifeOfTheProcess)
{
    EXPECT_EQ(with(twoLanguages()).RTString(1), "one");
    platform.process_.commandLine = "program /L=German";
    EXPECT_EQ(database().RTString(0), "zero");
}

TEST_F(LanguageChoice, DoesNotWriteTheRegistry)
{
    platform.process_.commandLine = "program /L=German";
    EXPECT_EQ(with(twoLanguages()).RTString(1), "eins");
    EXPECT_TRUE(platform.registry_.subKeys(kelReaderRegistryKeyLocalMachine, "").empty());
}

} // namespace
} // namespace kel::test
