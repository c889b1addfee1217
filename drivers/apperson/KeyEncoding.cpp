// SPDX-License-Identifier: MIT
#include "drivers/apperson/KeyEncoding.h"

#include "types/Text.h"

#include <cmath>

namespace kel {

namespace {

constexpr Int32 kDigits = 5;
constexpr Int32 kShiftedColumns = 4;
constexpr Int32 kHighestCharacter = 255;
constexpr Int32 kEssayScoreLength = 4;

/// The 1-based position of `what` in `text` from the 1-based `start` on, 0 if it is not there; failure 5 for a start
/// below 1.
std::size_t positionFrom(Int16 start, std::string_view text, char what)
{
    if (start < 1)
        throw RuntimeFailure(FailureCode::InvalidProcedureCall);
    const std::size_t found = text.find(what, static_cast<std::size_t>(start) - 1);
    return found == std::string_view::npos ? 0 : found + 1;
}

/// How many characters the first page has in a key of five characters a question.
Int16 firstPageLength(Int16 iNumberQuestions)
{
    return checkedMultiply<Int16>(iNumberQuestions, kDigits);
}

std::string essayScore(const std::string& sScore)
{
    return IsNumeric(sScore) ? Right("0000" + sScore, kEssayScoreLength) : "0000";
}

/// Adds the right answers to a question to the keys of all versions.
void encodeVersions(const std::function<AnswerCodeAP()>& code, EncodedKeyAP& key)
{
    const Int32 lVersions = key.oCurrentQuestion->CorrectAnswersCount();
    for (key.iAnswerCtr = 1; key.iAnswerCtr <= lVersions; key.iAnswerCtr = checkedAdd<Int16>(key.iAnswerCtr, 1)) {
        const std::string sCorrectAnswers = key.oCurrentQuestion->CorrectAnswers(key.iAnswerCtr);
        const Int32 lMask = answerMaskAP(*key.oCurrentQuestion, sCorrectAnswers, key.answers);
        key.sTempCorrectAnswers = encodeAnswerAP(lMask, code());
        key.sKeyStrArr(key.iAnswerCtr) += key.sTempCorrectAnswers;
    }
}

} // namespace

Int32 answerMaskAP(const AnswerKeyQuestion& oQuestion, std::string_view sCorrectAnswers, RightAnswersAP& answers)
{
    answers = {};
    answers.lAnswerOffset = oQuestion.ChoiceColumns()->Count() == kShiftedColumns ? 1 : 0;
    answers.sCorrectAnswerArr = TextArray::of(0, split(sCorrectAnswers, ','));
    for (const std::string& sAnswer : answers.sCorrectAnswerArr.elements()) {
        answers.lTempAnswerIndex = oQuestion.Choices()->Position(sAnswer);
        const Int32 lBit = checkedAdd(checkedSubtract(answers.lTempAnswerIndex, 1), answers.lAnswerOffset);
        answers.lTempCorrectAnswers = CLng(answers.lTempCorrectAnswers + std::ldexp(1.0, lBit));
    }
    return answers.lTempCorrectAnswers;
}

std::string encodeAnswerAP(Int32 lTempCorrectAnswers, AnswerCodeAP code)
{
    switch (code) {
    case AnswerCodeAP::None: return {};
    case AnswerCodeAP::Mask:
        if (lTempCorrectAnswers < 0 || lTempCorrectAnswers > kHighestCharacter)
            throw RuntimeFailure(FailureCode::InvalidProcedureCall);
        return Chr(CInt(lTempCorrectAnswers));
    case AnswerCodeAP::Digits: break;
    }
    std::string sTempCorrectAnswers;
    for (Int32 bit = 0; bit < kDigits; ++bit)
        sTempCorrectAnswers += lTempCorrectAnswers & (1 << bit) ? '1' : '0';
    return sTempCorrectAnswers;
}

void encodeKeyAP(const AnswerKeyObject& oAnswerKey, const std::function<AnswerCodeAP()>& code, EncodedKeyAP& key)
{
    key = {};
    const Int32 lQuestions = oAnswerKey.QuestionsCount();
    for (key.lQuestionCtr = 1; key.lQuestionCtr <= lQuestions; ++key.lQuestionCtr) {
        key.oCurrentQuestion = oAnswerKey.Questions(key.lQuestionCtr);
        const std::string sName = key.oCurrentQuestion->Name();
        if (sName.starts_with("Question"))
            encodeVersions(code, key);
        else if (sName.starts_with("Essay Score") && key.oCurrentQuestion->CorrectAnswersCount() == 1)
            key.sEssayScore = essayScore(key.oCurrentQuestion->CorrectAnswers(1));
    }

    for (std::string& sKey : key.sKeyStrArr.elements()) {
        if (sKey.empty())
            continue;
        sKey += 'Q';
        ++key.iNumKeys;
        if (code() == AnswerCodeAP::Mask)
            break;
    }
}

bool needsSimplexKeyAP(const EncodedKeyAP& key, Int16 iNumberQuestions)
{
    for (Int32 iAnswerCtr = 1; iAnswerCtr <= key.iNumKeys; ++iAnswerCtr) {
        if (positionFrom(firstPageLength(iNumberQuestions), key.sKeyStrArr(iAnswerCtr), '1') == 0)
            return true;
    }
    return false;
}

void cutToFirstPageAP(EncodedKeyAP& key, Int16 iNumberQuestions)
{
    for (Int32 iAnswerCtr = 1; iAnswerCtr <= key.iNumKeys; ++iAnswerCtr)
        key.sKeyStrArr(iAnswerCtr) = Left(key.sKeyStrArr(iAnswerCtr), firstPageLength(iNumberQuestions)) + "Q";
}

std::vector<std::string> keyPiecesAP(const std::string& sKey)
{
    std::vector<std::string> pieces;
    const auto lLength = static_cast<Int32>(sKey.size());
    for (Int32 lKeyPosKeeper = 1; lKeyPosKeeper <= lLength; lKeyPosKeeper += kKeyPieceAP)
        pieces.push_back(Mid(sKey, lKeyPosKeeper, kKeyPieceAP));
    return pieces;
}

} // namespace kel
