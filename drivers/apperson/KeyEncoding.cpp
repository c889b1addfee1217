#include "drivers/apperson/KeyEncoding.h"

#include "types/Text.h"

#include <cmath>

namespace kel {

namespace {

constexpr Int32 kDigits = 5;
constexpr Int32 kPieceLength = 5;
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

} // namespace

Int32 answerMaskAP(const AnswerKeyQuestion& oQuestion, std::string_view sCorrectAnswers)
{
    const Int32 lAnswerOffset = oQuestion.ChoiceColumns()->Count() == kShiftedColumns ? 1 : 0;
    Int32 lTempCorrectAnswers = 0;
    for (const std::string& sAnswer : split(sCorrectAnswers, ',')) {
        const Int32 lTempAnswerIndex = oQuestion.Choices()->Position(sAnswer);
        const Int32 lBit = checkedAdd(checkedSubtract(lTempAnswerIndex, 1), lAnswerOffset);
        lTempCorrectAnswers = CLng(lTempCorrectAnswers + std::ldexp(1.0, lBit));
    }
    return lTempCorrectAnswers;
}

std::string encodeAnswerAP(Int32 lTempCorrectAnswers, AnswerCodeAP code)
{
    if (code == AnswerCodeAP::Mask) {
        if (lTempCorrectAnswers < 0 || lTempCorrectAnswers > kHighestCharacter)
            throw RuntimeFailure(FailureCode::InvalidProcedureCall);
        return Chr(CInt(lTempCorrectAnswers));
    }
    std::string sTempCorrectAnswers;
    for (Int32 bit = 0; bit < kDigits; ++bit)
        sTempCorrectAnswers += lTempCorrectAnswers & (1 << bit) ? '1' : '0';
    return sTempCorrectAnswers;
}

EncodedKeyAP encodeKeyAP(const AnswerKeyObject& oAnswerKey, AnswerCodeAP code)
{
    EncodedKeyAP key;
    const Int32 lQuestions = oAnswerKey.QuestionsCount();
    for (Int32 lQuestionCtr = 1; lQuestionCtr <= lQuestions; ++lQuestionCtr) {
        const Reference<AnswerKeyQuestion> oCurrentQuestion = oAnswerKey.Questions(lQuestionCtr);
        const std::string sName = oCurrentQuestion->Name();
        if (sName.starts_with("Question")) {
            const Int32 lVersions = oCurrentQuestion->CorrectAnswersCount();
            for (Int32 iAnswerCtr = 1; iAnswerCtr <= lVersions; ++iAnswerCtr) {
                const Int32 lMask = answerMaskAP(*oCurrentQuestion, oCurrentQuestion->CorrectAnswers(iAnswerCtr));
                key.sKeyStrArr(iAnswerCtr) += encodeAnswerAP(lMask, code);
            }
        } else if (sName.starts_with("Essay Score") && oCurrentQuestion->CorrectAnswersCount() == 1) {
            key.sEssayScore = essayScore(oCurrentQuestion->CorrectAnswers(1));
        }
    }

    for (std::string& sKey : key.sKeyStrArr.elements()) {
        if (sKey.empty())
            continue;
        sKey += 'Q';
        ++key.iNumKeys;
        if (code == AnswerCodeAP::Mask)
            break;
    }
    return key;
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
    for (Int32 lKeyPosKeeper = 1; lKeyPosKeeper <= lLength; lKeyPosKeeper += kPieceLength)
        pieces.push_back(Mid(sKey, lKeyPosKeeper, kPieceLength));
    return pieces;
}

} // namespace kel
