// SPDX-License-Identifier: MIT
#include "drivers/apperson/KeyEncoding.h"

#include "contract/AnswerKey.h"
#include "tests/types/FailureOf.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace kel {
namespace {

using test::failureOf;
using testing::ElementsAre;
using testing::IsEmpty;

const std::vector<std::string> kFive = {"A", "B", "C", "D", "E"};
const std::vector<std::string> kFour = {"A", "B", "C", "D"};

Int32 mask(const std::vector<std::string>& choices, Int32 columns, const std::string& sCorrectAnswers)
{
    const AnswerKeyEntry question("Question 1", choices, columns, {});
    RightAnswersAP answers;
    return answerMaskAP(question, sCorrectAnswers, answers);
}

EncodedKeyAP encoded(const AnswerKeyObject& key, AnswerCodeAP code)
{
    EncodedKeyAP result;
    encodeKeyAP(
        key, [code] { return code; }, result);
    return result;
}

TEST(AnswerMaskAP, AChoiceIsABit)
{
    EXPECT_EQ(mask(kFive, 5, "A"), 0x01);
    EXPECT_EQ(mask(kFive, 5, "B"), 0x02);
    EXPECT_EQ(mask(kFive, 5, "C"), 0x04);
    EXPECT_EQ(mask(kFive, 5, "D"), 0x08);
    EXPECT_EQ(mask(kFive, 5, "E"), 0x10);
    EXPECT_EQ(mask(kFive, 5, "B,D"), 0x0A);
    EXPECT_EQ(mask(kFive, 5, "E,D,C,B,A"), 0x1F);
    EXPECT_EQ(mask(kFive, 5, ""), 0);
}

TEST(AnswerMaskAP, FourColumnsSitOnePlaceToTheRight)
{
    EXPECT_EQ(mask(kFour, 4, "A"), 0x02);
    EXPECT_EQ(mask(kFour, 4, "D"), 0x10);
    EXPECT_EQ(mask(kFour, 5, "A"), 0x01); // the columns decide, not the choices
    EXPECT_EQ(mask(kFive, 4, "A"), 0x02);
    EXPECT_EQ(mask({"A", "B", "C"}, 3, "A"), 0x01);
}

TEST(AnswerMaskAP, AnAnswerGivenTwiceCountsTwice)
{
    EXPECT_EQ(mask(kFive, 5, "A,A"), 0x02);
    EXPECT_EQ(mask(kFive, 5, "B,B,A"), 0x05);
}

TEST(AnswerMaskAP, FailsOnWhatIsNoChoice)
{
    EXPECT_EQ(failureOf([] { return mask(kFive, 5, "F"); }), FailureCode::InvalidProcedureCall);
    EXPECT_EQ(failureOf([] { return mask(kFive, 5, "A,,B"); }), FailureCode::InvalidProcedureCall);
    EXPECT_EQ(failureOf([] { return mask(kFive, 5, "A, B"); }), FailureCode::InvalidProcedureCall);
}

/// A host's own list, with a place for every answer, be it senseless.
class PlacedChoices : public AnswerChoices {
public:
    explicit PlacedChoices(Int32 position) : position_(position) {}
    [[nodiscard]] Int32 Count() const override { return 5; }
    [[nodiscard]] Int32 Position(std::string_view) const override { return position_; }

private:
    Int32 position_;
};

class PlacedQuestion : public AnswerKeyQuestion {
public:
    explicit PlacedQuestion(Int32 position) : choices_(makeReference<PlacedChoices>(position)) {}
    [[nodiscard]] std::string Name() const override { return "Question"; }
    [[nodiscard]] Reference<AnswerChoices> Choices() const override { return choices_; }
    [[nodiscard]] Reference<AnswerChoices> ChoiceColumns() const override { return choices_; }
    [[nodiscard]] Int32 CorrectAnswersCount() const override { return 1; }
    [[nodiscard]] std::string CorrectAnswers(Int32) const override { return "x"; }

private:
    Reference<PlacedChoices> choices_;
};

TEST(AnswerMaskAP, PowersOfTwoBeyond32BitsOverflow)
{
    const auto at = [](Int32 position, const char* sCorrectAnswers = "x") {
        RightAnswersAP answers;
        return answerMaskAP(PlacedQuestion(position), sCorrectAnswers, answers);
    };
    EXPECT_EQ(at(31), 0x40000000);
    EXPECT_EQ(failureOf([&] { return at(32); }), FailureCode::Overflow);
    EXPECT_EQ(failureOf([&] { return at(5000); }), FailureCode::Overflow);
    EXPECT_EQ(failureOf([&] { return at(std::numeric_limits<Int32>::min()); }), FailureCode::Overflow);
    // Half an answer rounds to the even neighbour.
    EXPECT_EQ(at(0), 0);
    EXPECT_EQ(at(-7), 0);
    EXPECT_EQ(at(0, "x,x,x"), 0);
}

TEST(EncodeAnswerAP, DigitsSayTheBitsFromTheLowest)
{
    const auto digits = [](Int32 bits) { return encodeAnswerAP(bits, AnswerCodeAP::Digits); };
    EXPECT_EQ(digits(0x00), "00000");
    EXPECT_EQ(digits(0x01), "10000");
    EXPECT_EQ(digits(0x02), "01000");
    EXPECT_EQ(digits(0x04), "00100");
    EXPECT_EQ(digits(0x08), "00010");
    EXPECT_EQ(digits(0x10), "00001");
    EXPECT_EQ(digits(0x1F), "11111");
    EXPECT_EQ(digits(0x2A), "01010"); // there is no sixth digit
}

TEST(EncodeAnswerAP, AMaskIsACharacter)
{
    for (Int32 code = 0; code <= 255; ++code)
        EXPECT_EQ(encodeAnswerAP(code, AnswerCodeAP::Mask), std::string(1, static_cast<char>(code)));
    EXPECT_EQ(failureOf([] { return encodeAnswerAP(256, AnswerCodeAP::Mask); }), FailureCode::InvalidProcedureCall);
    EXPECT_EQ(encodeAnswerAP(256, AnswerCodeAP::Digits), "00000");
}

TEST(EncodeKeyAP, AQuestionWithFourChoices)
{
    AnswerKey key;
    key.AddQuestion("Question 1", kFour, {"A"});
    EXPECT_EQ(encoded(key, AnswerCodeAP::Mask).sKeyStrArr(1), "\x02Q");
    EXPECT_EQ(encoded(key, AnswerCodeAP::Digits).sKeyStrArr(1), "01000Q");
}

TEST(EncodeKeyAP, VersionsAreKeysOfTheirOwn)
{
    AnswerKey key;
    key.AddQuestion("Question 1", kFive, {"A", "B,C", "", "E"});
    key.AddQuestion("Question 2", kFive, {"B", "E", "A"});
    const EncodedKeyAP digits = encoded(key, AnswerCodeAP::Digits);
    EXPECT_EQ(digits.iNumKeys, 4);
    EXPECT_THAT(digits.sKeyStrArr.elements(), ElementsAre("1000001000Q", "0110000001Q", "0000010000Q", "00001Q"));
}

TEST(EncodeKeyAP, AReaderWithMasksTakesTheFirstVersionOnly)
{
    AnswerKey key;
    key.AddQuestion("Question 1", kFive, {"A", "B", "C", "D"});
    key.AddQuestion("Question 2", kFive, {"E", "A", "B", "C"});
    const EncodedKeyAP masks = encoded(key, AnswerCodeAP::Mask);
    EXPECT_EQ(masks.iNumKeys, 1);
    EXPECT_EQ(masks.sKeyStrArr(1), "\x01\x10Q");
}

TEST(EncodeKeyAP, TheModelIsAskedWithEachAnswer)
{
    AnswerKey key;
    key.AddQuestion("Question 1", kFive, {"A", "B"});
    key.AddQuestion("Question 2", kFive, {"C"});
    std::vector<AnswerCodeAP> codes = {AnswerCodeAP::Digits, AnswerCodeAP::None, AnswerCodeAP::Mask,
                                       AnswerCodeAP::Digits};
    EncodedKeyAP result;
    encodeKeyAP(
        key,
        [&] {
            const AnswerCodeAP code = codes.front();
            codes.erase(codes.begin());
            return code;
        },
        result);
    EXPECT_EQ(result.sKeyStrArr(1), "10000\x04Q");
    EXPECT_EQ(result.iNumKeys, 1);
    EXPECT_THAT(codes, IsEmpty());
}

TEST(EncodeKeyAP, AQuestionWithoutAnswersMovesTheOthersUp)
{
    AnswerKey key;
    key.AddQuestion("Question 1", kFive, {"A"});
    key.AddQuestion("Question 2", kFive, std::vector<std::string>{});
    key.AddQuestion("Question 3", kFive, {"C"});
    EXPECT_EQ(encoded(key, AnswerCodeAP::Digits).sKeyStrArr(1), "1000000100Q");
    EXPECT_EQ(encoded(key, AnswerCodeAP::Mask).sKeyStrArr(1), "\x01\x04Q");
}

TEST(EncodeKeyAP, ANoAnswerQuestionIsACharacterToo)
{
    AnswerKey key;
    key.AddQuestion("Question 1", kFive, {""});
    EXPECT_EQ(encoded(key, AnswerCodeAP::Mask).sKeyStrArr(1), std::string("\0Q", 2));
    EXPECT_EQ(encoded(key, AnswerCodeAP::Digits).sKeyStrArr(1), "00000Q");
}

TEST(EncodeKeyAP, AFifthVersionFails)
{
    AnswerKey key;
    key.AddQuestion("Question 1", kFive, {"A", "B", "C", "D", "E"});
    for (const AnswerCodeAP code : {AnswerCodeAP::Mask, AnswerCodeAP::Digits})
        EXPECT_EQ(failureOf([&] { return encoded(key, code); }), FailureCode::SubscriptOutOfRange);
}

TEST(EncodeKeyAP, NamesAreToldApartByTheirBeginning)
{
    AnswerKey key;
    key.AddQuestion("question 1", kFive, {"A"});
    key.AddQuestion(" Question 2", kFive, {"A"});
    key.AddQuestion("Student", kFive, {"A"});
    key.AddQuestion("essay score", {}, {"7"});
    key.AddQuestion("Questionable", kFive, {"B"});
    const EncodedKeyAP result = encoded(key, AnswerCodeAP::Digits);
    EXPECT_EQ(result.sKeyStrArr(1), "01000Q");
    EXPECT_EQ(result.sEssayScore, "0000");
}

TEST(EncodeKeyAP, AnEmptyKeyHasNoVersion)
{
    AnswerKey key;
    key.AddQuestion("Essay Score", {}, {"7"});
    const EncodedKeyAP result = encoded(key, AnswerCodeAP::Digits);
    EXPECT_EQ(result.iNumKeys, 0);
    EXPECT_EQ(result.sKeyStrArr(1), "");
}

std::string essayScore(const std::vector<std::vector<std::string>>& entries)
{
    AnswerKey key;
    for (const auto& correctAnswers : entries)
        key.AddQuestion("Essay Score", {}, correctAnswers);
    return encoded(key, AnswerCodeAP::Digits).sEssayScore;
}

TEST(EssayScoreAP, IsFourDigits)
{
    EXPECT_EQ(essayScore({}), "0000");
    EXPECT_EQ(essayScore({{"25"}}), "0025");
    EXPECT_EQ(essayScore({{"1234"}}), "1234");
    EXPECT_EQ(essayScore({{"12345"}}), "2345");
    EXPECT_EQ(essayScore({{"2.5"}}), "02.5");
}

TEST(EssayScoreAP, WhatIsNoNumberIsZero)
{
    EXPECT_EQ(essayScore({{"ten"}}), "0000");
    EXPECT_EQ(essayScore({{""}}), "0000");
    EXPECT_EQ(essayScore({{"25"}, {"x"}}), "0000"); // the last entry counts
}

TEST(EssayScoreAP, OneVersionOnly)
{
    EXPECT_EQ(essayScore({{"25", "30"}}), "0000");
    EXPECT_EQ(essayScore({{}}), "0000");
    EXPECT_EQ(essayScore({{"25"}, {"30", "40"}}), "0025"); // leaves what was there
}

EncodedKeyAP keys(const std::vector<std::string>& sKeys)
{
    EncodedKeyAP key;
    for (const std::string& sKey : sKeys)
        key.sKeyStrArr(++key.iNumKeys) = sKey;
    return key;
}

TEST(SimplexKeyAP, WithoutAnswersOnTheSecondPage)
{
    EXPECT_TRUE(needsSimplexKeyAP(keys({"1000010000"
                                        "00000"
                                        "Q"}),
                                  2));
    EXPECT_FALSE(needsSimplexKeyAP(keys({"1000010000"
                                         "00100"
                                         "Q"}),
                                   2));
    EXPECT_FALSE(needsSimplexKeyAP(keys({"1000010000"
                                         "00001"
                                         "Q"}),
                                   2));
    EXPECT_TRUE(needsSimplexKeyAP(keys({"1000010000Q"}), 2));
}

TEST(SimplexKeyAP, TheLastAnswerOfTheFirstPageCountsForTheSecond)
{
    EXPECT_FALSE(needsSimplexKeyAP(keys({"1000000001"
                                         "00000"
                                         "Q"}),
                                   2));
    EXPECT_TRUE(needsSimplexKeyAP(keys({"1000000010"
                                        "00000"
                                        "Q"}),
                                  2));
}

TEST(SimplexKeyAP, OneVersionWithoutIsEnough)
{
    EXPECT_TRUE(needsSimplexKeyAP(keys({"1000010000Q", "1000000000Q"}), 1));
    EXPECT_TRUE(needsSimplexKeyAP(keys({"1000000000Q", "1000010000Q"}), 1));
    EXPECT_FALSE(needsSimplexKeyAP(keys({"1000010000Q", "1000000001Q"}), 1));
}

TEST(SimplexKeyAP, MasksHoldNoDigit)
{
    EXPECT_TRUE(needsSimplexKeyAP(keys({"\x01\x1F\x02\x04\x08\x10\x1FQ"}), 1));
    EXPECT_FALSE(needsSimplexKeyAP(keys({"\x01\x02\x02\x04\x31Q"}), 1)); // mask 0x31 is the character "1"
}

TEST(SimplexKeyAP, TheSearchHasToStartWithinReason)
{
    EXPECT_EQ(failureOf([] { return needsSimplexKeyAP(keys({"10000Q"}), 0); }), FailureCode::InvalidProcedureCall);
    EXPECT_EQ(failureOf([] { return needsSimplexKeyAP(keys({"10000Q"}), -1); }), FailureCode::InvalidProcedureCall);
    EXPECT_TRUE(needsSimplexKeyAP(keys({"10000Q"}), 6553));
    EXPECT_EQ(failureOf([] { return needsSimplexKeyAP(keys({"10000Q"}), 6554); }), FailureCode::Overflow);
    EXPECT_FALSE(needsSimplexKeyAP(keys({}), 0)); // nothing is searched
}

TEST(SimplexKeyAP, CutsAllVersions)
{
    EncodedKeyAP key = keys({"1000001000"
                             "00000Q",
                             "0000100010"
                             "00001Q"});
    cutToFirstPageAP(key, 2);
    EXPECT_THAT(key.sKeyStrArr.elements(), ElementsAre("1000001000Q", "0000100010Q", "", ""));
}

TEST(SimplexKeyAP, AKeyShorterThanThePageKeepsItsEnd)
{
    EncodedKeyAP key = keys({"\x01\x02\x03Q"});
    cutToFirstPageAP(key, 2);
    EXPECT_EQ(key.sKeyStrArr(1), "\x01\x02\x03QQ");
}

TEST(KeyPiecesAP, FiveCharactersEach)
{
    EXPECT_THAT(keyPiecesAP("Q"), ElementsAre("Q"));
    EXPECT_THAT(keyPiecesAP("1000Q"), ElementsAre("1000Q"));
    EXPECT_THAT(keyPiecesAP("10000Q"), ElementsAre("10000", "Q"));
    EXPECT_THAT(keyPiecesAP("1000001000Q"), ElementsAre("10000", "01000", "Q"));
    EXPECT_THAT(keyPiecesAP(std::string("\0\x01\x02\x03\x04\x05Q", 7)),
                ElementsAre(std::string("\0\x01\x02\x03\x04", 5), "\x05Q"));
    EXPECT_THAT(keyPiecesAP(""), IsEmpty());
}

} // namespace
} // namespace kel
