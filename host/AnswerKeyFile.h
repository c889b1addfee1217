// SPDX-License-Identifier: MIT
#pragma once

#include "contract/AnswerKey.h"
#include "types/Export.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace kel::host {

/// An answer key as a file describes it.
struct GradingKey {
    Reference<AnswerKey> key;             ///< the key to send to the reader
    std::vector<Int16> questionsOnPage{}; ///< the first element is page 1
    std::string source{}; ///< the JSON text that it was read from, on one line; empty if it was made otherwise

    /// How many questions a page (from 1) has, for the event `GetQuestionsOnPage`; 0 for an unknown page.
    [[nodiscard]] KEL_PUBLIC Int16 questionsOn(Int16 page) const;
};

/// An answer key from JSON text:
///
///     {"formIds": ["0001", "0002"],
///      "pages": 2,
///      "questionsOnPage": [20, 20],
///      "questions": [
///        {"name": "Question 1", "choices": ["A", "B", "C", "D", "E"], "choiceColumns": 5,
///         "correctAnswers": ["A", "B,C"]},
///        {"name": "Essay Score", "correctAnswers": ["25"]}]}
///
/// - `formIds`: the identifier of each page, one or two texts.
/// - `pages`: 1 or 2; as many as there are identifiers when it is left out.
/// - `questionsOnPage`: how many questions each page has; may be left out on a form with one identifier.
/// - `questions`: in the order of the form. A name starts "Question", or "Essay Score" for the number of points that
///   an essay gets.
/// - `choices`: up to five texts, none of them twice and none with a comma.
/// - `choiceColumns`: how many columns the form has for the question; as many as choices when it is left out. In four
///   columns each answer is one position further right, so that there is room for four choices only.
/// - `correctAnswers`: one text for each version of the key, up to four, with that version's correct answers separated
///   by commas. An empty text is a question without a correct answer. A question without any version is left out of the
///   key, and the questions after it move up. An essay has one version, a number of up to four digits.
///
/// UsageError, one sentence with `fileName` and the place, for anything else.
[[nodiscard]] KEL_PUBLIC GradingKey parseAnswerKey(std::string_view text, const std::string& fileName);

/// The same from a file; UsageError also if it cannot be read.
[[nodiscard]] KEL_PUBLIC GradingKey readAnswerKeyFile(const std::filesystem::path& file);

} // namespace kel::host
