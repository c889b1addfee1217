// SPDX-License-Identifier: MIT
#pragma once

#include "types/Export.h"
#include "types/Numbers.h"
#include "types/Reference.h"

#include <string>
#include <string_view>

namespace kel {

/// A list of answer texts: the possible answers of a question, or its choice columns.
class KEL_PUBLIC AnswerChoices {
public:
    virtual ~AnswerChoices() = default;
    /// Number of texts.
    [[nodiscard]] virtual Int32 Count() const = 0;
    /// The 1-based position of an answer's text. For a text that is not a choice the key raises a failure of its own.
    [[nodiscard]] virtual Int32 Position(std::string_view answer) const = 0;
};

/// One question of an answer key.
class KEL_PUBLIC AnswerKeyQuestion {
public:
    virtual ~AnswerKeyQuestion() = default;
    /// The label: starts "Question" for a scored item, "Essay Score" for the entry of the essay score.
    [[nodiscard]] virtual std::string Name() const = 0;
    [[nodiscard]] virtual Reference<AnswerChoices> Choices() const = 0;
    /// Only the count of the choice columns is used.
    [[nodiscard]] virtual Reference<AnswerChoices> ChoiceColumns() const = 0;
    /// How many versions of the key there are, and the correct answers of one (from 1), separated by commas.
    [[nodiscard]] virtual Int32 CorrectAnswersCount() const = 0;
    [[nodiscard]] virtual std::string CorrectAnswers(Int32 version) const = 0;
};

/// The answer key that a host sets for a reader that grades on the device.
class KEL_PUBLIC AnswerKeyObject {
public:
    virtual ~AnswerKeyObject() = default;
    /// The identifiers of the form's pages, separated by commas, page 1 first.
    [[nodiscard]] virtual std::string FormIDs() const = 0;
    /// 2 for a form of two pages.
    [[nodiscard]] virtual Int32 NumberOfPages() const = 0;
    [[nodiscard]] virtual Int32 QuestionsCount() const = 0;
    /// A question by its 1-based number.
    [[nodiscard]] virtual Reference<AnswerKeyQuestion> Questions(Int32 number) const = 0;
};

} // namespace kel
