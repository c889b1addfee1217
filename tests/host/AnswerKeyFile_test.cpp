// SPDX-License-Identifier: MIT
#include "host/AnswerKeyFile.h"

#include "tests/host/Refusal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace kel {
namespace {

const std::string kWholeKey = R"({
    "formIds": ["0001", "0002"], "pages": 2, "questionsOnPage": [20, 21],
    "questions": [
        {"name": "Question 1", "choices": ["A", "B", "C", "D", "E"], "choiceColumns": 5,
         "correctAnswers": ["A", "B,C"]},
        {"name": "Question 2", "choices": ["T", "F"], "choiceColumns": 4, "correctAnswers": ["", "T,F"]},
        {"name": "Essay Score", "correctAnswers": ["25"]}]})";

/// The sentence that refuses a text; empty if it is taken.
std::string keyRefusal(const std::string& text)
{
    return test::refusalOf([&] { return host::parseAnswerKey(text, "key.json"); });
}

/// The same for a key that is good but for one question.
std::string questionRefusal(const std::string& question)
{
    return keyRefusal(R"({"formIds": ["0001"], "questions": [
        {"name": "Question 1", "choices": ["A"], "correctAnswers": ["A"]}, )" +
                      question + "]}");
}

TEST(AnswerKeyFile, AWholeKey)
{
    const host::GradingKey file = host::parseAnswerKey(kWholeKey, "key.json");
    EXPECT_EQ(file.key->FormIDs(), "0001,0002");
    EXPECT_EQ(file.key->NumberOfPages(), 2);
    EXPECT_EQ(file.questionsOn(1), 20);
    EXPECT_EQ(file.questionsOn(2), 21);
    EXPECT_EQ(file.questionsOn(3), 0);
    EXPECT_EQ(file.questionsOn(0), 0);
    ASSERT_EQ(file.key->QuestionsCount(), 3);
    EXPECT_EQ(file.key->Questions(1)->Name(), "Question 1");
    EXPECT_EQ(file.key->Questions(1)->Choices()->Position("E"), 5);
    EXPECT_EQ(file.key->Questions(1)->CorrectAnswersCount(), 2);
    EXPECT_EQ(file.key->Questions(1)->CorrectAnswers(2), "B,C");
    EXPECT_EQ(file.key->Questions(2)->ChoiceColumns()->Count(), 4);
    EXPECT_EQ(file.key->Questions(2)->CorrectAnswers(1), "");
    EXPECT_EQ(file.key->Questions(3)->Name(), "Essay Score");
    EXPECT_EQ(file.key->Questions(3)->CorrectAnswers(1), "25");
}

TEST(AnswerKeyFile, WhatMayBeLeftOut)
{
    const host::GradingKey file = host::parseAnswerKey(
        R"({"formIds": ["A7"], "questions": [{"name": "Question", "choices": ["1", "2", "3", "4"]}]})", "key.json");
    EXPECT_EQ(file.key->NumberOfPages(), 1);
    EXPECT_EQ(file.key->Questions(1)->ChoiceColumns()->Count(), 4);
    EXPECT_EQ(file.key->Questions(1)->CorrectAnswersCount(), 0);
    EXPECT_EQ(file.questionsOn(1), 0);
    const host::GradingKey twoPages = host::parseAnswerKey(
        R"({"formIds": ["1", "2"], "questionsOnPage": [9], "questions": [{"name": "Question", "choices": ["1"]}]})",
        "key.json");
    EXPECT_EQ(twoPages.key->NumberOfPages(), 2);
}

TEST(AnswerKeyFile, RefusesWhatIsNoKey)
{
    EXPECT_EQ(keyRefusal(""),
              "key.json is not JSON: line 1, column 1: syntax error while parsing value - unexpected end "
              "of input; expected '[', '{', or a literal.");
    EXPECT_EQ(keyRefusal("[]"), "key.json: the file has to be an object, not an array.");
    EXPECT_EQ(keyRefusal("{}"), "key.json: the file has no form identifier: formIds needs one for each page.");
    EXPECT_EQ(keyRefusal(R"({"formIds": []})"),
              "key.json: the file has no form identifier: formIds needs one for each page.");
    EXPECT_EQ(keyRefusal(R"({"formIds": ["1"]})"), "key.json: the file has no questions.");
    EXPECT_EQ(keyRefusal(R"({"formIds": ["1"], "questions": []})"), "key.json: the file has no questions.");
}

TEST(AnswerKeyFile, RefusesUnknownKeys)
{
    EXPECT_EQ(keyRefusal(R"({"formids": ["1"]})"), "key.json: the file has an unknown key \"formids\"; the "
                                                   "nearest is formIds.");
    EXPECT_THAT(questionRefusal(R"({"name": "Question 2", "choises": ["A"]})"),
                testing::StartsWith("key.json: questions[1] has an unknown key \"choises\"; the nearest are "
                                    "choices and choiceColumns."));
}

TEST(AnswerKeyFile, RefusesWrongTypes)
{
    EXPECT_EQ(keyRefusal(R"({"formIds": "1"})"), "key.json: formIds has to be an array, not a text.");
    EXPECT_EQ(keyRefusal(R"({"formIds": [1]})"), "key.json: formIds[0] has to be a text, not a number.");
    EXPECT_EQ(keyRefusal(R"({"formIds": ["1", null]})"), "key.json: formIds[1] has to be a text, not null.");
    EXPECT_EQ(keyRefusal(R"({"pages": "2"})"), "key.json: pages has to be a whole number, not a text.");
    EXPECT_EQ(keyRefusal(R"({"pages": true})"), "key.json: pages has to be a whole number, not a truth value.");
    EXPECT_EQ(keyRefusal(R"({"questions": {}})"), "key.json: questions has to be an array, not an object.");
    EXPECT_EQ(questionRefusal("7"), "key.json: questions[1] has to be an object, not a number.");
    EXPECT_EQ(questionRefusal(R"({"name": 7})"), "key.json: questions[1].name has to be a text, not a number.");
    EXPECT_EQ(questionRefusal(R"({"name": "Question 2", "choices": ["A"], "correctAnswers": "A"})"),
              "key.json: questions[1].correctAnswers has to be an array, not a text.");
}

TEST(AnswerKeyFile, RefusesNumbersThatDoNotFit)
{
    for (const std::string number : {"0", "3", "-1", "1.0", "99999999999999999999", "-9223372036854775808", "1e400"})
        EXPECT_NE(keyRefusal(R"({"formIds": ["1"], "questions": [{"name": "Question", "choices": ["1"]}], "pages": )" +
                             number + "}"),
                  "")
            << number;
    EXPECT_EQ(keyRefusal(R"({"pages": 3})"), "key.json: pages has to be a whole number from 1 to 2, not 3.");
    EXPECT_EQ(keyRefusal(R"({"questionsOnPage": [20, 6554]})"),
              "key.json: questionsOnPage[1] has to be a whole number from 1 to 6553, not 6554.");
    EXPECT_EQ(questionRefusal(R"({"name": "Question 2", "choices": ["A"], "choiceColumns": 0})"),
              "key.json: questions[1].choiceColumns has to be a whole number from 1 to 100, not 0.");
}

TEST(AnswerKeyFile, RefusesFormIdentifiersThatCannotBeSent)
{
    EXPECT_EQ(keyRefusal(R"({"formIds": [""]})"), "key.json: formIds[0] must not be empty.");
    EXPECT_EQ(keyRefusal(R"({"formIds": ["1,2"]})"), "key.json: formIds[0] is \"1,2\"; it must not hold a comma.");
    EXPECT_EQ(keyRefusal(R"({"formIds": ["1\r"]})"),
              R"(key.json: formIds[0] is "1\r"; it may hold only letters, digits and signs of ASCII.)");
    EXPECT_EQ(keyRefusal(R"({"formIds": ["1", "2", "3"]})"),
              "key.json: formIds has more than two identifiers, and a reader takes one a page.");
    EXPECT_EQ(keyRefusal(R"({"formIds": ["1", "2"], "questions": [{"name": "Question", "choices": ["1"]}]})"),
              "key.json: the file has two form identifiers and no questionsOnPage, which has to say where page 2 "
              "begins.");
}

TEST(AnswerKeyFile, RefusesAnAnswerThatIsNoChoice)
{
    EXPECT_EQ(questionRefusal(R"({"name": "Question 2", "choices": ["A", "B", "C"], "correctAnswers": ["A", "B,D"]})"),
              "key.json: questions[1].correctAnswers[1] has the answer \"D\", which is not among the choices A, B and "
              "C.");
    EXPECT_EQ(questionRefusal(R"({"name": "Question 2", "choices": ["A", "B"], "correctAnswers": ["A, B"]})"),
              "key.json: questions[1].correctAnswers[0] has the answer \" B\", which is not among the choices A and "
              "B.");
    EXPECT_EQ(questionRefusal(R"({"name": "Question 2", "choices": ["A", "B"], "correctAnswers": ["A,A"]})"),
              "key.json: questions[1].correctAnswers[0] has the answer \"A\" twice.");
}

TEST(AnswerKeyFile, RefusesMoreThanFourVersions)
{
    EXPECT_EQ(
        questionRefusal(R"({"name": "Question 2", "choices": ["A"], "correctAnswers": ["A", "A", "A", "A", "A"]})"),
        "key.json: questions[1].correctAnswers has 5 versions, and a reader stores at most 4.");
    EXPECT_EQ(questionRefusal(R"({"name": "Question 2", "choices": ["A"], "correctAnswers": ["A", "A", "A", "A"]})"),
              "");
}

TEST(AnswerKeyFile, RefusesChoicesThatDoNotFit)
{
    EXPECT_EQ(questionRefusal(R"({"name": "Question 2"})"), "key.json: questions[1] has no choices.");
    EXPECT_EQ(questionRefusal(R"({"name": "Question 2", "choices": ["A", ""]})"),
              "key.json: questions[1].choices[1] must not be empty.");
    EXPECT_EQ(questionRefusal(R"({"name": "Question 2", "choices": ["A", "B,C"]})"),
              "key.json: questions[1].choices[1] is \"B,C\"; it must not hold a comma.");
    EXPECT_EQ(questionRefusal(R"({"name": "Question 2", "choices": ["A", "B", "A"]})"),
              "key.json: questions[1].choices[2] is the choice \"A\" for the second time.");
    EXPECT_EQ(questionRefusal(R"({"name": "Question 2", "choices": ["A", "B", "C", "D", "E", "F"]})"),
              "key.json: questions[1].choices has 6 choices, and a reader takes at most 5.");
    EXPECT_EQ(questionRefusal(R"({"name": "Question 2", "choices": ["A", "B", "C", "D", "E"], "choiceColumns": 4})"),
              "key.json: questions[1].choices has 5 choices, and in four columns there is room for 4.");
}

TEST(AnswerKeyFile, RefusesNamesThatTheReaderDoesNotKnow)
{
    for (const std::string name : {"", "Q1", "question 1", "Essay"})
        EXPECT_EQ(questionRefusal(R"({"name": ")" + name + R"(", "choices": ["A"]})"),
                  "key.json: questions[1] has to have a name that begins with \"Question\" or \"Essay Score\".")
            << name;
}

TEST(AnswerKeyFile, RefusesEssaysThatAreNone)
{
    for (const std::string points : {"", "12345", "-1", "2.5", "x"})
        EXPECT_EQ(questionRefusal(R"({"name": "Essay Score", "correctAnswers": [")" + points + R"("]})"),
                  "key.json: questions[1].correctAnswers[0] has to be a number of up to four digits.")
            << points;
    EXPECT_EQ(questionRefusal(R"({"name": "Essay Score", "correctAnswers": ["1", "2"]})"),
              "key.json: questions[1] has to have one text in correctAnswers, the points of the essay.");
    EXPECT_EQ(questionRefusal(R"({"name": "Essay Score", "choices": ["A"], "correctAnswers": ["1"]})"),
              "key.json: questions[1].choices belongs to an essay, which has no choices.");
}

class AnswerKeyFileOnDisk : public testing::Test {
protected:
    AnswerKeyFileOnDisk()
        : file_(std::filesystem::temp_directory_path() /
                (std::string("kel_answer_key_") + testing::UnitTest::GetInstance()->current_test_info()->name()))
    {
    }
    ~AnswerKeyFileOnDisk() override { std::filesystem::remove_all(file_); }

    const std::filesystem::path file_;
};

TEST_F(AnswerKeyFileOnDisk, IsRead)
{
    std::ofstream(file_) << kWholeKey;
    EXPECT_EQ(host::readAnswerKeyFile(file_).key->FormIDs(), "0001,0002");
}

TEST_F(AnswerKeyFileOnDisk, SaysWhyItCannotBeRead)
{
    const auto message = [&] {
        try {
            static_cast<void>(host::readAnswerKeyFile(file_));
        } catch (const host::UsageError& error) {
            return std::string(error.what());
        }
        return std::string();
    };
    EXPECT_EQ(message(), "The answer key file " + file_.string() + " cannot be read: No such file or directory.");
    std::filesystem::create_directory(file_);
    EXPECT_EQ(message(), "The answer key file " + file_.string() + " cannot be read: Is a directory.");
    std::filesystem::remove(file_);
    std::ofstream(file_).flush();
    EXPECT_THAT(message(), testing::StartsWith(file_.string() + " is not JSON: "));
}

} // namespace
} // namespace kel
