// SPDX-License-Identifier: MIT
#include "tests/strings/LanguageDatabaseTest.h"

namespace kel::test {
namespace {

/// Loads that fail on a statement, and what each answer to the box does.
class LanguageLoadFailures : public LanguageDatabaseTest {
protected:
    /// Does something between the look at the languages and the opening of the file.
    void atHourglass(std::function<void()> action)
    {
        platform.screen_.onPointer = [action](Int32 shape) {
            if (shape == kMousePointerHourglass)
                action();
        };
    }
};

TEST_F(LanguageLoadFailures, EndWithAbort)
{
    with(oneLanguage({"S0=zero", "S5=five"}, {"NumStrings=2"}));
    platform.screen_.answers = {BoxAnswer::Abort};
    EXPECT_EQ(database().RTString(0), kNoText);
    EXPECT_EQ(boxes(), (std::vector{loadBox("Subscript out of range(Code9)")}));
    EXPECT_EQ(platform.screen_.pointer, 3);
    EXPECT_FALSE(database().state().mbCriticalError);
}

TEST_F(LanguageLoadFailures, LeaveNoTableAndAreRepeatedByTheNextCall)
{
    with(oneLanguage({"S0=zero", "S5=five"}, {"NumStrings=2"}));
    EXPECT_EQ(database().RTString(0), kNoText);
    EXPECT_EQ(database().RTString(0), kNoText);
    EXPECT_EQ(boxes().size(), 2U);
    folder.write(kLanguageFileName, twoLanguages().text());
    EXPECT_EQ(database().RTString(0), "zero");
    EXPECT_EQ(boxes().size(), 2U);
}

TEST_F(LanguageLoadFailures, OfAnIndexOutsideTheTableCanBeIgnored)
{
    with(oneLanguage({"S0=zero", "S3=three", "S1=one"}, {"NumStrings=2"}));
    platform.screen_.answers = {BoxAnswer::Ignore};
    EXPECT_EQ(database().RTString(0), "zero");
    EXPECT_EQ(database().RTString(1), "");
    EXPECT_EQ(boxes(), (std::vector{loadBox("Subscript out of range(Code9)")}));
}

TEST_F(LanguageLoadFailures, OfANegativeIndexAreOutsideTheTable)
{
    with(oneLanguage({"S-1=minus", "S0=zero"}, {"NumStrings=2"}));
    platform.screen_.answers = {BoxAnswer::Ignore};
    EXPECT_EQ(database().RTString(0), "zero");
    EXPECT_EQ(boxes(), (std::vector{loadBox("Subscript out of range(Code9)")}));
}

TEST_F(LanguageLoadFailures, RepeatTheStatementWithRetryAsOftenAsItTakes)
{
    with(oneLanguage({"S0=zero", "S5=five"}, {"NumStrings=2"}));
    platform.screen_.answers = {BoxAnswer::Retry, BoxAnswer::Retry, BoxAnswer::Retry, BoxAnswer::Ignore};
    EXPECT_EQ(database().RTString(0), "zero");
    EXPECT_EQ(boxes(), std::vector(4, loadBox("Subscript out of range(Code9)")));
}

TEST_F(LanguageLoadFailures, OfAFileThatEndsEarlyAre62)
{
    with(oneLanguage({"S0=zero"}, {"NumStrings=2"}));
    EXPECT_EQ(database().RTString(0), kNoText);
    EXPECT_EQ(boxes(), (std::vector{loadBox("Input past end of file(Code62)")}));
}

TEST_F(LanguageLoadFailures, OfAFileThatEndsEarlyCanBeIgnored)
{
    with(oneLanguage({"S0=zero", "S1=one"}, {"NumStrings=3"}));
    platform.screen_.answers = {BoxAnswer::Ignore};
    EXPECT_EQ(database().RTString(0), "zero");
    EXPECT_EQ(database().RTString(1), "one");
    EXPECT_EQ(boxes().size(), 1U);
}

TEST_F(LanguageLoadFailures, OfAFileThatEndsEarlyGoOnOnceThereIsMore)
{
    with(oneLanguage({"S0=zero"}, {"NumStrings=2"}));
    platform.screen_.answers = {BoxAnswer::Retry};
    platform.screen_.onBox = [&] {
        std::ofstream(folder.file(kLanguageFileName), std::ios::binary | std::ios::app) << "S1=one\r\n";
    };
    EXPECT_EQ(database().RTString(1), "one");
    EXPECT_EQ(boxes().size(), 1U);
}

TEST_F(LanguageLoadFailures, OfTheOpeningGoOnWhenTheFileIsBack)
{
    with(twoLanguages());
    atHourglass([&] { std::filesystem::remove(folder.file(kLanguageFileName)); });
    platform.screen_.answers = {BoxAnswer::Retry, BoxAnswer::Retry};
    platform.screen_.onBox = [&] {
        if (boxes().size() == 2)
            folder.write(kLanguageFileName, twoLanguages().text());
    };
    EXPECT_EQ(database().RTString(1), "one");
    EXPECT_EQ(boxes(), std::vector(2, loadBox("File not found(Code53)")));
    EXPECT_EQ(platform.screen_.pointer, 3);
}

TEST_F(LanguageLoadFailures, OfAnIgnoredOpeningFailAgainWhereTheFileIsUsed)
{
    with(twoLanguages());
    atHourglass([&] { std::filesystem::remove(folder.file(kLanguageFileName)); });
    platform.screen_.answers.assign(10, BoxAnswer::Ignore);
    EXPECT_EQ(database().RTString(1), kNoText);
    // The look at the start, the way back to the beginning, and the question for the end.
    EXPECT_EQ(boxes(),
              (std::vector{loadBox("File not found(Code53)"), loadBox("Bad file name or number(Code52)"),
                           loadBox("Bad file name or number(Code52)"), loadBox("Bad file name or number(Code52)")}));
}

TEST_F(LanguageLoadFailures, OfReadingAre57)
{
    with(twoLanguages());
    atHourglass([&] {
        // A folder can be opened, but not read.
        std::filesystem::remove(folder.file(kLanguageFileName));
        std::filesystem::create_directory(folder.file(kLanguageFileName));
    });
    EXPECT_EQ(database().RTString(1), kNoText);
    EXPECT_EQ(boxes(), (std::vector{loadBox("Device I/O error(Code57)")}));
    EXPECT_EQ(platform.screen_.pointer, 3);
}

TEST_F(LanguageLoadFailures, OfAnIndexTooLargeKeepTheIndexOfTheLineBefore)
{
    with(oneLanguage({"S0=zero", "S99999999999=far"}, {"NumStrings=2"}));
    platform.screen_.answers = {BoxAnswer::Ignore};
    EXPECT_EQ(database().RTString(0), "far");
    EXPECT_EQ(boxes(), (std::vector{loadBox("Overflow(Code6)")}));
}

TEST_F(LanguageLoadFailures, OfALineThatBeginsWithTheEqualsSignAre5)
{
    with(oneLanguage({"S0=zero", "=nothing"}, {"NumStrings=2"}));
    EXPECT_EQ(database().RTString(0), kNoText);
    EXPECT_EQ(boxes(), (std::vector{loadBox("Invalid procedure call or argument(Code5)")}));
}

TEST_F(LanguageLoadFailures, OfSizesTooLargeAre6)
{
    with(oneLanguage({"S0=zero"}, {"NumStrings=65536", "StringIndexStep=65536"}));
    EXPECT_EQ(database().RTString(0), kNoText);
    EXPECT_EQ(boxes(), (std::vector{loadBox("Overflow(Code6)")}));
    boxes().clear();
    with(oneLanguage({"S0=zero"}, {"NumStrings=1", "StringIndexBase=2147483647"}));
    EXPECT_EQ(database().RTString(0), kNoText);
    EXPECT_EQ(boxes(), (std::vector{loadBox("Overflow(Code6)")}));
}

TEST_F(LanguageLoadFailures, OfANumberTooLargeInTheHeadAre6)
{
    with(oneLanguage({"S0=zero"}, {"NumStrings=99999999999"}));
    EXPECT_EQ(database().RTString(0), kNoText);
    EXPECT_EQ(boxes(), (std::vector{loadBox("Overflow(Code6)")}));
    EXPECT_FALSE(database().state().mbCriticalError);
}

TEST_F(LanguageLoadFailures, OfANumberTooLargeInTheHeadLeaveTheDefaultWhenIgnored)
{
    with(oneLanguage({"S0=zero"}, {"NumStrings=1", "StringIndexBase=99999999999"}));
    platform.screen_.answers = {BoxAnswer::Ignore};
    EXPECT_EQ(database().RTString(0), "zero");
    EXPECT_EQ(database().RTString(2), "Invalid Index");
}

TEST_F(LanguageLoadFailures, OfALanguagesNameThatIsANumberTooLargeLeaveTheName)
{
    LanguageFileMaker maker = oneLanguage({"S0=zero"}, {"NumStrings=1"});
    maker.sections[0].name = "1e999";
    maker.sections[0].heading = "[1e999]";
    with(maker);
    platform.screen_.answers = {BoxAnswer::Ignore};
    EXPECT_EQ(database().RTString(0), "zero");
    EXPECT_EQ(boxes(), (std::vector{loadBox("Overflow(Code6)")}));
}

TEST_F(LanguageLoadFailures, OfATableThatEndsBelowZeroAre9)
{
    with(oneLanguage({"S0=zero"}, {"NumStrings=1", "StringIndexStep=-5"}));
    EXPECT_EQ(database().RTString(0), kNoText);
    EXPECT_EQ(boxes(), (std::vector{loadBox("Subscript out of range(Code9)")}));
}

TEST_F(LanguageLoadFailures, OfATableWithoutBoundsLeaveNoneWhenIgnored)
{
    with(oneLanguage({"S0=zero"}, {"NumStrings=1", "StringIndexStep=-5"}));
    platform.screen_.answers.assign(2, BoxAnswer::Ignore);
    EXPECT_EQ(database().RTString(0), "Invalid Index");
    EXPECT_EQ(boxes(), std::vector(2, loadBox("Subscript out of range(Code9)"))) << "its size, and the text to store";
    platform.screen_.answers.assign(4, BoxAnswer::Ignore);
    EXPECT_EQ(database().RTString(-1), "") << "it loads again";
    EXPECT_EQ(boxes().size(), 4U);

    folder.write(kLanguageFileName, oneLanguage({"S0=zero"}, {"NumStrings=1"}).text());
    EXPECT_EQ(database().RTString(0), "zero");
    EXPECT_EQ(boxes().size(), 4U);
}

TEST_F(LanguageLoadFailures, OfAHeadWithoutLanguagesAre9)
{
    withContent("[VBLM]\r\nNumLanguages=0\r\nNumStrings=1\r\n[English]\r\nS0=zero\r\n");
    EXPECT_EQ(database().RTString(0), kNoText);
    EXPECT_EQ(boxes(), (std::vector{loadBox("Subscript out of range(Code9)")}));
}

TEST_F(LanguageLoadFailures, AreNoMatterOfAHugeTableThatHoldsLittle)
{
    with(oneLanguage({"S0=zero", "S2000000000=far"}, {"NumStrings=2", "StringIndexStep=1000000000"}));
    EXPECT_EQ(database().RTString(2000000000), "far");
    EXPECT_EQ(database().RTString(1999999999), "");
    EXPECT_TRUE(boxes().empty());
}

} // namespace
} // namespace kel::test
