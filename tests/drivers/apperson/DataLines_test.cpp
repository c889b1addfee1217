// SPDX-License-Identifier: MIT
#include "drivers/apperson/DataLines.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kel {
namespace {

using testing::ElementsAre;

const std::string kBenchMarkSheet = "123456789012xxxx00001xxxxxTEST-IDENTIFYSCHOOL-IDENTICLASS-IDENTIFE000"
                                    "xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx"
                                    "A,BC,,D,\r\n";
const std::string kAdvantageSheet = "1234567890Vxxx001200001000000000A,BC,,D,\r\n";

/// How many bytes of `bytes` a BenchMark line takes until one of them ends something, and what that is.
std::pair<std::size_t, LineEndAP> benchMarkEnd(const std::string& bytes, Dictionary* kept = nullptr)
{
    Dictionary dictionary;
    BenchMarkLineAP line(kept ? *kept : dictionary);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const LineEndAP end = line.take(static_cast<Byte>(bytes[i]));
        if (end != LineEndAP::None)
            return {i + 1, end};
    }
    return {bytes.size(), LineEndAP::None};
}

/// The places of the bytes that end a line of an Advantage 1200; the line goes on as it is.
std::vector<std::size_t> advantageEnds(const std::string& bytes)
{
    Dictionary dictionary;
    Advantage1200LineAP line(dictionary);
    std::vector<std::size_t> ends;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (line.take(static_cast<Byte>(bytes[i]), False))
            ends.push_back(i + 1);
    }
    return ends;
}

TEST(BenchMarkLineAP, ALineOfFiveBytesIsASheet)
{
    EXPECT_EQ(benchMarkEnd("abc\r\n"), std::pair(std::size_t{5}, LineEndAP::Sheet));
    EXPECT_EQ(benchMarkEnd("ab\r\n"), std::pair(std::size_t{4}, LineEndAP::None));
}

TEST(BenchMarkLineAP, AWholeSheet)
{
    Dictionary dictionary;
    EXPECT_EQ(benchMarkEnd(kBenchMarkSheet, &dictionary), std::pair(kBenchMarkSheet.size(), LineEndAP::Sheet));
    EXPECT_THAT(dictionary.Keys(), ElementsAre("Student ID", "Page 1 ID", "Test ID", "School ID", "Class ID",
                                               "Error Code", DictionaryKey(1), DictionaryKey(2), DictionaryKey(4)));
    EXPECT_THAT(dictionary.Items(), ElementsAre("123456789012", "00001", "TEST-IDENTIFY", "SCHOOL-IDENTI",
                                                "CLASS-IDENTIF", "E000", "A", "B\tC", "D"));
}

TEST(BenchMarkLineAP, ShortLinesAreDropped)
{
    // The answer to the command that starts the sheets comes before the first of them.
    for (const std::string word : {"OK\r\n", "\r\n", "O\r\n", "Z2\r\n", "1Z\r\n", ",,\r\n"}) {
        Dictionary dictionary;
        EXPECT_EQ(benchMarkEnd(word + kBenchMarkSheet, &dictionary),
                  std::pair(word.size() + kBenchMarkSheet.size(), LineEndAP::Sheet))
            << word;
        EXPECT_EQ(itemText(dictionary.Item("Student ID")), "123456789012") << word;
        EXPECT_EQ(itemText(dictionary.Item(1)), "A") << word;
    }
}

TEST(BenchMarkLineAP, Z1EndsTheSheetsInAnyCase)
{
    for (const std::string word : {"Z1\r\n", "z1\r\n"})
        EXPECT_EQ(benchMarkEnd(word), std::pair(std::size_t{4}, LineEndAP::NoMoreSheets)) << word;
    EXPECT_EQ(benchMarkEnd("OK\r\nZ1\r\n"), std::pair(std::size_t{8}, LineEndAP::NoMoreSheets));
    // A longer line with the same beginning is a sheet.
    EXPECT_EQ(benchMarkEnd("Z1x\r\n"), std::pair(std::size_t{5}, LineEndAP::Sheet));
    EXPECT_EQ(benchMarkEnd("Z1,\r\n"), std::pair(std::size_t{5}, LineEndAP::Sheet));
}

TEST(BenchMarkLineAP, TheCarriageReturnStaysInMind)
{
    EXPECT_EQ(benchMarkEnd("a\rbcdef\nrest"), std::pair(std::size_t{8}, LineEndAP::Sheet));
    EXPECT_EQ(benchMarkEnd("\n\n\n\n\n\n"), std::pair(std::size_t{6}, LineEndAP::None)); // no CR at all
    EXPECT_EQ(benchMarkEnd("abcdef\r\r\n"), std::pair(std::size_t{9}, LineEndAP::Sheet));
    // A dropped line takes its CR with it.
    EXPECT_EQ(benchMarkEnd("OK\r\nabcdef\nx"), std::pair(std::size_t{12}, LineEndAP::None));
}

TEST(BenchMarkLineAP, AShortSheetKeepsItsFieldsSoFar)
{
    Dictionary dictionary;
    EXPECT_EQ(benchMarkEnd("1234567890\r\nmore", &dictionary), std::pair(std::size_t{12}, LineEndAP::Sheet));
    EXPECT_THAT(dictionary.Items(), ElementsAre("1234567890\r\n"));
}

TEST(Advantage1200LineAP, EveryCrLfEndsALine)
{
    EXPECT_THAT(advantageEnds("\r\n"), ElementsAre(2));
    EXPECT_THAT(advantageEnds("OK\r\nabc\r\n"), ElementsAre(4, 9));
    EXPECT_THAT(advantageEnds("ab\r\r\n"), ElementsAre(5));
}

TEST(Advantage1200LineAP, CrAndLfHaveToStandTogether)
{
    EXPECT_THAT(advantageEnds("a\rb\nc\n\rd\n"), ElementsAre());
    EXPECT_THAT(advantageEnds("a\r\r\rb\n"), ElementsAre());
    EXPECT_THAT(advantageEnds("\n\r"), ElementsAre());
}

TEST(Advantage1200LineAP, AWholeSheet)
{
    Dictionary dictionary;
    Advantage1200LineAP line(dictionary);
    for (std::size_t i = 0; i < kAdvantageSheet.size(); ++i)
        EXPECT_EQ(line.take(static_cast<Byte>(kAdvantageSheet[i]), True), i + 1 == kAdvantageSheet.size()) << i;
    EXPECT_THAT(dictionary.Keys(), ElementsAre("Student ID", "Test Version", "Essay Score", "Page 1 ID", "Page 2 ID",
                                               DictionaryKey(1), DictionaryKey(2), DictionaryKey(4)));
    EXPECT_THAT(dictionary.Items(), ElementsAre("1234567890", "V", "0012", "00001", "00000", "A", "B\tC", "D"));
}

TEST(Advantage1200LineAP, AFurtherLineBeginsWithWhatStoodBehindTheLastComma)
{
    Dictionary dictionary;
    Advantage1200LineAP line(dictionary);
    for (const char byte : kAdvantageSheet)
        static_cast<void>(line.take(static_cast<Byte>(byte), False));
    line.next();
    EXPECT_EQ(dictionary.Count(), 0);

    for (const char byte : kAdvantageSheet)
        static_cast<void>(line.take(static_cast<Byte>(byte), False));
    EXPECT_EQ(itemText(dictionary.Item("Student ID")), "\r\n1234567890");
    EXPECT_EQ(itemText(dictionary.Item("Page 1 ID")), "00001"); // the places count from the new line
    EXPECT_EQ(itemText(dictionary.Item(1)), "A");               // and the questions from 1
    EXPECT_EQ(dictionary.Exists(5), False);
}

TEST(Advantage1200LineAP, AfterALineAnotherLfIsALineOfItsOwn)
{
    Dictionary dictionary;
    Advantage1200LineAP line(dictionary);
    EXPECT_FALSE(line.take('\r', False));
    EXPECT_TRUE(line.take('\n', False));
    line.next();
    EXPECT_TRUE(line.take('\n', False));
    EXPECT_FALSE(line.take('a', False));
    EXPECT_FALSE(line.take('\n', False));
}

} // namespace
} // namespace kel
