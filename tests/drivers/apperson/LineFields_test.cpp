// SPDX-License-Identifier: MIT
#include "drivers/apperson/LineFields.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

namespace kel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// What is in a dictionary after a line: key (numbers as "#1") and text.
using Entries = std::map<std::string, std::string>;

Entries entriesOf(const Dictionary& dictionary)
{
    Entries entries;
    const auto keys = dictionary.Keys();
    const auto items = dictionary.Items();
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const auto* number = std::get_if<Int32>(&keys[i]);
        entries[number ? "#" + std::to_string(*number) : std::get<std::string>(keys[i])] = itemText(items[i]);
    }
    return entries;
}

Entries parse(const LineLayoutAP& layout, const std::string& bytes, Boolean bReaderGrade = False)
{
    Dictionary dictionary;
    LineFieldsAP fields(layout, dictionary);
    for (const char byte : bytes)
        fields.take(static_cast<Byte>(byte), bReaderGrade);
    return entriesOf(dictionary);
}

/// A line in which every byte up to `length` says its own place: byte n is the character n.
std::string placeBytes(std::size_t length)
{
    std::string line;
    for (std::size_t n = 1; n <= length; ++n)
        line += static_cast<char>(n == ',' ? '\x01' : static_cast<char>(n));
    return line;
}

/// The bytes `from` to `to` of such a line.
std::string places(std::size_t from, std::size_t to)
{
    return placeBytes(to).substr(from - 1);
}

TEST(LineFieldsAP, BenchMarkFieldsEndAtTheirBytes)
{
    struct Field {
        std::size_t from;
        std::size_t to;
        std::string key;
    };
    const std::vector<Field> fields = {{1, 12, "Student ID"}, {17, 21, "Page 1 ID"}, {27, 39, "Test ID"},
                                       {40, 52, "School ID"}, {53, 65, "Class ID"},  {66, 69, "Error Code"}};
    // At every length of the line exactly those fields are there whose last byte has come.
    for (std::size_t length = 0; length <= 125; ++length) {
        Entries expected;
        for (const Field& field : fields) {
            if (field.to <= length)
                expected[field.key] = places(field.from, field.to);
        }
        EXPECT_EQ(parse(kLayoutBenchMark3000AP, placeBytes(length)), expected) << "length " << length;
    }
}

TEST(LineFieldsAP, Advantage1200FieldsEndAtTheirBytes)
{
    struct Field {
        std::size_t from;
        std::size_t to;
        std::string key;
    };
    const std::vector<Field> fields = {
        {1, 10, "Student ID"}, {11, 11, "Test Version"}, {19, 23, "Page 1 ID"}, {24, 28, "Page 2 ID"}};
    for (std::size_t length = 0; length <= 40; ++length) {
        Entries expected;
        for (const Field& field : fields) {
            if (field.to <= length)
                expected[field.key] = places(field.from, field.to);
        }
        EXPECT_EQ(parse(kLayoutAdvantage1200AP, placeBytes(length)), expected) << "length " << length;
        if (length >= 18)
            expected["Essay Score"] = places(15, 18);
        EXPECT_EQ(parse(kLayoutAdvantage1200AP, placeBytes(length), True), expected) << "graded, length " << length;
    }
}

TEST(LineFieldsAP, FieldsHaveTheirOrderInTheDictionary)
{
    Dictionary dictionary;
    LineFieldsAP fields(kLayoutBenchMark3000AP, dictionary);
    for (const char byte : std::string(119, 'x') + "A,")
        fields.take(static_cast<Byte>(byte), False);
    EXPECT_THAT(dictionary.Keys(), ElementsAre("Student ID", "Page 1 ID", "Test ID", "School ID", "Class ID",
                                               "Error Code", DictionaryKey(1)));
}

TEST(LineFieldsAP, TheStudentIsTrimmedOnTheAdvantage1200Only)
{
    EXPECT_EQ(parse(kLayoutAdvantage1200AP, "  12 34   ").at("Student ID"), "12 34");
    EXPECT_EQ(parse(kLayoutAdvantage1200AP, "\t12      \t").at("Student ID"), "\t12      \t"); // blanks alone
    EXPECT_EQ(parse(kLayoutBenchMark3000AP, "  12 34     ").at("Student ID"), "  12 34     ");
}

TEST(LineFieldsAP, CommasCountAndAreNotKept)
{
    EXPECT_EQ(parse(kLayoutAdvantage1200AP, "12,45,78,0").at("Student ID"), "1245780");
    const Entries entries = parse(kLayoutAdvantage1200AP, "1234567890,,,,,,,,,,,,,");
    EXPECT_EQ(entries.at("Test Version"), "");
    EXPECT_EQ(entries.at("Page 1 ID"), "");
}

TEST(LineFieldsAP, AllZerosAreNoSecondPage)
{
    const std::string start(23, 'x');
    EXPECT_FALSE(parse(kLayoutAdvantage1200AP, start + "0000,").contains("Page 2 ID"));
    EXPECT_FALSE(parse(kLayoutAdvantage1200AP, start + ",0000").contains("Page 2 ID"));
    EXPECT_EQ(parse(kLayoutAdvantage1200AP, start + "00000").at("Page 2 ID"), "00000");
    EXPECT_EQ(parse(kLayoutAdvantage1200AP, start + "0002,").at("Page 2 ID"), "0002");
    EXPECT_EQ(parse(kLayoutAdvantage1200AP, start + "000,,").at("Page 2 ID"), "000");
    // The zeros are dropped with the field: nothing of them is left in the first answer.
    EXPECT_EQ(parse(kLayoutAdvantage1200AP, start + "0000,xxxxBC,").at("#1"), "B\tC");
}

struct Model {
    const char* name;
    const LineLayoutAP& layout;
    std::size_t firstAnswer; // the first byte at which a comma ends an answer
};

class LineAnswersAP : public testing::TestWithParam<Model> {
protected:
    /// A line whose byte `firstAnswer` - 1 is the first of `answers`.
    [[nodiscard]] Entries answers(const std::string& answers) const
    {
        Entries entries = parse(GetParam().layout, std::string(GetParam().firstAnswer - 2, 'x') + answers);
        std::erase_if(entries, [](const auto& entry) { return !entry.first.starts_with('#'); });
        return entries;
    }
};

TEST_P(LineAnswersAP, OneLetterStandsByItself)
{
    EXPECT_EQ(answers("A,"), (Entries{{"#1", "A"}}));
    EXPECT_EQ(answers("A,B,C,"), (Entries{{"#1", "A"}, {"#2", "B"}, {"#3", "C"}}));
}

TEST_P(LineAnswersAP, SeveralLettersAreKeptApartByTabs)
{
    EXPECT_EQ(answers("AB,"), (Entries{{"#1", "A\tB"}}));
    EXPECT_EQ(answers("A,BCDE,F,"), (Entries{{"#1", "A"}, {"#2", "B\tC\tD\tE"}, {"#3", "F"}}));
}

TEST_P(LineAnswersAP, AQuestionWithoutAnswerLeavesAGap)
{
    EXPECT_EQ(answers("A,B,,D,"), (Entries{{"#1", "A"}, {"#2", "B"}, {"#4", "D"}}));
    EXPECT_EQ(answers("A,,,,E,"), (Entries{{"#1", "A"}, {"#5", "E"}}));
}

TEST_P(LineAnswersAP, TheLastFieldIsNeverAdded)
{
    EXPECT_THAT(answers("A"), IsEmpty());
    EXPECT_EQ(answers("A,B\r\n"), (Entries{{"#1", "A"}}));
}

TEST_P(LineAnswersAP, ACommaTooEarlyClosesNoField)
{
    EXPECT_THAT(answers(","), IsEmpty());
    // It is the first of all commas that counts as an answer's end only at the next byte.
    EXPECT_EQ(answers(",A,"), (Entries{{"#1", "A"}}));
    EXPECT_EQ(answers(",,B,"), (Entries{{"#2", "B"}}));
}

TEST_P(LineAnswersAP, QuestionsAreNumberedOn)
{
    std::string all;
    for (int question = 1; question <= 300; ++question)
        all += question % 7 == 0 ? "," : "C,";
    const Entries entries = answers(all);
    EXPECT_EQ(entries.size(), 300U - 300U / 7U);
    EXPECT_EQ(entries.at("#300"), "C");
    EXPECT_FALSE(entries.contains("#294"));
}

INSTANTIATE_TEST_SUITE_P(Models, LineAnswersAP,
                         testing::Values(Model{"BenchMark3000", kLayoutBenchMark3000AP, 120},
                                         Model{"Advantage1200", kLayoutAdvantage1200AP, 34}),
                         [](const auto& model) { return std::string(model.param.name); });

TEST(LineFieldsAP, ALineWithoutEndFails)
{
    const auto failureAt = [](const LineLayoutAP& layout) {
        Dictionary dictionary;
        LineFieldsAP fields(layout, dictionary);
        for (int byte = 1;; ++byte) {
            try {
                fields.take('x', False);
            } catch (const RuntimeFailure& failure) {
                return std::pair(byte, failure.number());
            }
        }
    };
    EXPECT_EQ(failureAt(kLayoutAdvantage1200AP), std::pair(10001, 9));
    EXPECT_EQ(failureAt(kLayoutBenchMark3000AP), std::pair(32768, 6));
}

} // namespace
} // namespace kel
