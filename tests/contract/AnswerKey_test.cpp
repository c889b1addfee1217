// SPDX-License-Identifier: MIT
#include "contract/AnswerKey.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kel {
namespace {

using testing::HasSubstr;

TEST(AnswerList, FindsAnAnswersPlace)
{
    const AnswerList choices({"A", "B", "C"});
    EXPECT_EQ(choices.Count(), 3);
    EXPECT_EQ(choices.Position("A"), 1);
    EXPECT_EQ(choices.Position("C"), 3);
}

TEST(AnswerList, RefusesWhatIsNoChoice)
{
    const AnswerList choices({"A", "B"});
    for (const char* answer : {"C", "a", "", "A "}) {
        try {
            static_cast<void>(choices.Position(answer));
            FAIL() << "took \"" << answer << '"';
        } catch (const RuntimeFailure& failure) {
            EXPECT_EQ(failure.code(), FailureCode::InvalidProcedureCall);
            EXPECT_THAT(failure.text(), HasSubstr('"' + std::string(answer) + '"'));
            EXPECT_THAT(failure.text(), HasSubstr("A, B"));
        }
    }
}

TEST(AnswerKey, GivesBackWhatWasFilledIn)
{
    AnswerKey key;
    EXPECT_EQ(key.NumberOfPages(), 1);
    EXPECT_EQ(key.FormIDs(), "");
    EXPECT_EQ(key.QuestionsCount(), 0);

    key.FormIDs("0001,0002");
    key.NumberOfPages(2);
    key.AddQuestion("Question 1", {"A", "B", "C", "D", "E"}, {"A", "B,C"});
    key.AddQuestion("Question 2", {"A", "B", "C"}, {"C"}, 4);
    key.AddQuestion("Essay Score", {}, {"25"});

    EXPECT_EQ(key.FormIDs(), "0001,0002");
    EXPECT_EQ(key.NumberOfPages(), 2);
    ASSERT_EQ(key.QuestionsCount(), 3);
    EXPECT_EQ(key.Questions(1)->Name(), "Question 1");
    EXPECT_EQ(key.Questions(1)->Choices()->Position("E"), 5);
    EXPECT_EQ(key.Questions(1)->ChoiceColumns()->Count(), 5);
    EXPECT_EQ(key.Questions(1)->CorrectAnswersCount(), 2);
    EXPECT_EQ(key.Questions(1)->CorrectAnswers(2), "B,C");
    EXPECT_EQ(key.Questions(2)->ChoiceColumns()->Count(), 4);
    EXPECT_EQ(key.Questions(2)->Choices()->Count(), 3);
    EXPECT_EQ(key.Questions(3)->Name(), "Essay Score");
    EXPECT_EQ(key.Questions(3)->CorrectAnswers(1), "25");
    EXPECT_EQ(key.Questions(3)->ChoiceColumns()->Count(), 0);
}

TEST(AnswerKey, NumbersThatAreNotThereFail)
{
    AnswerKey key;
    key.AddQuestion("Question 1", {"A"}, {"A"});
    for (const Int32 number : {0, 2, -1}) {
        EXPECT_THROW(static_cast<void>(key.Questions(number)), RuntimeFailure) << number;
        EXPECT_THROW(static_cast<void>(key.Questions(1)->CorrectAnswers(number)), RuntimeFailure) << number;
    }
}

} // namespace
} // namespace kel
