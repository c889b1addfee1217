// SPDX-License-Identifier: MIT
#pragma once

#include "contract/AnswerKeyObject.h"
#include "types/Export.h"
#include "types/Hidden.h"

#include <string>
#include <vector>

namespace kel {

/// Answer texts in their order, compared exactly.
class KEL_PUBLIC AnswerList final : public AnswerChoices {
public:
    /// A list of these answers.
    explicit AnswerList(std::vector<std::string> answers = {});
    AnswerList(const AnswerList& other);
    AnswerList& operator=(const AnswerList& other);
    ~AnswerList() override;

    /// Number of answers.
    [[nodiscard]] Int32 Count() const override;
    /// Failure 5, with a text that names the answer and the choices, for a text that is not a choice.
    [[nodiscard]] Int32 Position(std::string_view answer) const override;

private:
    struct Fields;
    Hidden<Fields> fields_;
};

/// A question of an `AnswerKey`.
class KEL_PUBLIC AnswerKeyEntry final : public AnswerKeyQuestion {
public:
    /// `correctAnswers` has one text for each version of the key, with that version's correct answers separated by
    /// commas; a reader stores at most four versions. `choiceColumns` is how many columns the form has for the
    /// question.
    AnswerKeyEntry(std::string name, std::vector<std::string> choices, Int32 choiceColumns,
                   std::vector<std::string> correctAnswers);
    AnswerKeyEntry(const AnswerKeyEntry& other);
    AnswerKeyEntry& operator=(const AnswerKeyEntry& other);
    ~AnswerKeyEntry() override;

    [[nodiscard]] std::string Name() const override;
    [[nodiscard]] Reference<AnswerChoices> Choices() const override;
    [[nodiscard]] Reference<AnswerChoices> ChoiceColumns() const override;
    [[nodiscard]] Int32 CorrectAnswersCount() const override;
    /// Failure 9 for a version that does not exist.
    [[nodiscard]] std::string CorrectAnswers(Int32 version) const override;

private:
    struct Fields;
    Hidden<Fields> fields_;
};

/// A ready-made answer key for hosts that have no key object of their own:
///
///     auto key = makeReference<AnswerKey>();
///     key->FormIDs("0001,0002");
///     key->NumberOfPages(2);
///     key->AddQuestion("Question 1", {"A", "B", "C", "D", "E"}, {"A", "B,C"});
///     key->AddQuestion("Essay Score", {}, {"25"});
///     reader.AnswerKey(key);
///
/// Nothing is checked when it is set; what does not fit is reported when the key is sent to the reader.
class KEL_PUBLIC AnswerKey final : public AnswerKeyObject {
public:
    AnswerKey();
    AnswerKey(const AnswerKey& other);
    AnswerKey& operator=(const AnswerKey& other);
    ~AnswerKey() override;

    /// The identifiers of the form's pages, separated by commas.
    [[nodiscard]] std::string FormIDs() const override;
    void FormIDs(std::string value);
    /// 1 on a new key.
    [[nodiscard]] Int32 NumberOfPages() const override;
    void NumberOfPages(Int32 value);

    [[nodiscard]] Int32 QuestionsCount() const override;
    /// Failure 9 for a number that does not exist.
    [[nodiscard]] Reference<AnswerKeyQuestion> Questions(Int32 number) const override;

    /// Adds a question at the end; with a column a choice, or with another number of columns.
    void AddQuestion(std::string name, std::vector<std::string> choices, std::vector<std::string> correctAnswers);
    void AddQuestion(std::string name, std::vector<std::string> choices, std::vector<std::string> correctAnswers,
                     Int32 choiceColumns);
    void AddQuestion(Reference<AnswerKeyQuestion> question);

private:
    struct Fields;
    Hidden<Fields> fields_;
};

} // namespace kel
