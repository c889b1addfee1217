// SPDX-License-Identifier: MIT
#pragma once

#include "contract/AnswerKeyObject.h"
#include "failure/TellsVariables.h"
#include "types/Arrays.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace kel {

/// How a model takes the right answers to a question: as one character whose code is the bit mask of the answers
/// (BenchMark 3000), or as five digits "0" and "1", the first for bit 0x01 (Advantage 1200). The others take none.
enum class AnswerCodeAP { None, Mask, Digits };

/// The right answers to a question in one version of the key.
struct RightAnswersAP {
    TextArray sCorrectAnswerArr;
    Int32 lAnswerOffset = 0;
    Int32 lTempAnswerIndex = 0;    ///< the choice looked at last, from 1
    Int32 lTempCorrectAnswers = 0; ///< the bit mask

    KEL_TELLS(sCorrectAnswerArr, lAnswerOffset, lTempAnswerIndex, lTempCorrectAnswers)
};

/// An answer key as it goes into a reader.
struct EncodedKeyAP {
    TextArray sKeyStrArr{1, 4};       ///< a key a version, each closed by "Q"
    Int16 iNumKeys = 0;               ///< how many of them are used
    std::string sEssayScore = "0000"; ///< always four characters

    // Where the encoding stands.
    Int32 lQuestionCtr = 0;
    Reference<AnswerKeyQuestion> oCurrentQuestion;
    Int16 iAnswerCtr = 0;
    RightAnswersAP answers;
    std::string sTempCorrectAnswers; ///< as the model takes them

    KEL_TELLS(sKeyStrArr, iNumKeys, sEssayScore, lQuestionCtr, oCurrentQuestion, iAnswerCtr, answers,
              sTempCorrectAnswers)
};

/// The bit mask of right answers that are separated by commas. On a form with four choice columns each answer sits one
/// bit further up. An answer given twice counts twice, so that it becomes its neighbour.
Int32 answerMaskAP(const AnswerKeyQuestion& oQuestion, std::string_view sCorrectAnswers, RightAnswersAP& answers);

/// A mask as the model takes it. A mask that is no character code is failure 5.
[[nodiscard]] std::string encodeAnswerAP(Int32 lTempCorrectAnswers, AnswerCodeAP code);

/// Encodes all questions into a new key. A reader with masks stores only the first version. A question with more than
/// four versions is failure 9. How the model takes answers is asked with each of them, since the key is the host's
/// code, which may change the model.
void encodeKeyAP(const AnswerKeyObject& oAnswerKey, const std::function<AnswerCodeAP()>& code, EncodedKeyAP& key);

/// Whether some version has no "1" from the end of the first page's answers on, so that the second page need not be
/// graded. The search begins with the last character of the first page. A page of no questions is failure 5, one of
/// more than 6553 is 6.
[[nodiscard]] bool needsSimplexKeyAP(const EncodedKeyAP& key, Int16 iNumberQuestions);

/// Cuts all versions to the answers of the first page.
void cutToFirstPageAP(EncodedKeyAP& key, Int16 iNumberQuestions);

/// A key in pieces of so many characters, for the small input buffer of the readers.
inline constexpr Int32 kKeyPieceAP = 5;
[[nodiscard]] std::vector<std::string> keyPiecesAP(const std::string& sKey);

} // namespace kel
