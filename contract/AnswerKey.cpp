// SPDX-License-Identifier: MIT
#include "contract/AnswerKey.h"

#include "types/Text.h"

#include <algorithm>

namespace kel {

namespace {

/// An element of `elements` by its 1-based number; failure 9 for one that is not there.
template <class T>
const T& numbered(const std::vector<T>& elements, Int32 number)
{
    if (number < 1 || static_cast<std::size_t>(number) > elements.size())
        throw RuntimeFailure(FailureCode::SubscriptOutOfRange);
    return elements[static_cast<std::size_t>(number) - 1];
}

/// The columns of a form bear no texts here: their numbers stand for them.
std::vector<std::string> columnTexts(Int32 columns)
{
    std::vector<std::string> texts;
    for (Int32 column = 1; column <= columns; ++column)
        texts.push_back(CStr(column));
    return texts;
}

} // namespace

struct AnswerList::Fields {
    std::vector<std::string> answers;
};

AnswerList::AnswerList(std::vector<std::string> answers) : fields_(Fields{std::move(answers)}) {}
AnswerList::AnswerList(const AnswerList& other) = default;
AnswerList& AnswerList::operator=(const AnswerList& other) = default;
AnswerList::~AnswerList() = default;

Int32 AnswerList::Count() const
{
    return static_cast<Int32>(fields_->answers.size());
}

Int32 AnswerList::Position(std::string_view answer) const
{
    const auto found = std::find(fields_->answers.begin(), fields_->answers.end(), answer);
    if (found != fields_->answers.end())
        return static_cast<Int32>(found - fields_->answers.begin()) + 1;

    std::string choices;
    for (const std::string& choice : fields_->answers)
        choices.append(choices.empty() ? "" : ", ").append(choice);
    throw RuntimeFailure(FailureCode::InvalidProcedureCall,
                         "The right answer \"" + std::string(answer) + "\" is not among the choices (" + choices + ")");
}

struct AnswerKeyEntry::Fields {
    std::string sName;
    Reference<AnswerChoices> oChoices;
    Reference<AnswerChoices> oChoiceColumns;
    std::vector<std::string> sCorrectAnswers;
};

AnswerKeyEntry::AnswerKeyEntry(std::string name, std::vector<std::string> choices, Int32 choiceColumns,
                               std::vector<std::string> correctAnswers)
    : fields_(Fields{std::move(name), makeReference<AnswerList>(std::move(choices)),
                     makeReference<AnswerList>(columnTexts(choiceColumns)), std::move(correctAnswers)})
{
}
AnswerKeyEntry::AnswerKeyEntry(const AnswerKeyEntry& other) = default;
AnswerKeyEntry& AnswerKeyEntry::operator=(const AnswerKeyEntry& other) = default;
AnswerKeyEntry::~AnswerKeyEntry() = default;

std::string AnswerKeyEntry::Name() const
{
    return fields_->sName;
}

Reference<AnswerChoices> AnswerKeyEntry::Choices() const
{
    return fields_->oChoices;
}

Reference<AnswerChoices> AnswerKeyEntry::ChoiceColumns() const
{
    return fields_->oChoiceColumns;
}

Int32 AnswerKeyEntry::CorrectAnswersCount() const
{
    return static_cast<Int32>(fields_->sCorrectAnswers.size());
}

std::string AnswerKeyEntry::CorrectAnswers(Int32 version) const
{
    return numbered(fields_->sCorrectAnswers, version);
}

struct AnswerKey::Fields {
    std::string sFormIDs;
    Int32 lNumberOfPages = 1;
    std::vector<Reference<AnswerKeyQuestion>> questions;
};

AnswerKey::AnswerKey() = default;
AnswerKey::AnswerKey(const AnswerKey& other) = default;
AnswerKey& AnswerKey::operator=(const AnswerKey& other) = default;
AnswerKey::~AnswerKey() = default;

std::string AnswerKey::FormIDs() const
{
    return fields_->sFormIDs;
}

void AnswerKey::FormIDs(std::string value)
{
    fields_->sFormIDs = std::move(value);
}

Int32 AnswerKey::NumberOfPages() const
{
    return fields_->lNumberOfPages;
}

void AnswerKey::NumberOfPages(Int32 value)
{
    fields_->lNumberOfPages = value;
}

Int32 AnswerKey::QuestionsCount() const
{
    return static_cast<Int32>(fields_->questions.size());
}

Reference<AnswerKeyQuestion> AnswerKey::Questions(Int32 number) const
{
    return numbered(fields_->questions, number);
}

void AnswerKey::AddQuestion(std::string name, std::vector<std::string> choices, std::vector<std::string> correctAnswers)
{
    const auto columns = static_cast<Int32>(choices.size());
    AddQuestion(std::move(name), std::move(choices), std::move(correctAnswers), columns);
}

void AnswerKey::AddQuestion(std::string name, std::vector<std::string> choices, std::vector<std::string> correctAnswers,
                            Int32 choiceColumns)
{
    AddQuestion(
        makeReference<AnswerKeyEntry>(std::move(name), std::move(choices), choiceColumns, std::move(correctAnswers)));
}

void AnswerKey::AddQuestion(Reference<AnswerKeyQuestion> question)
{
    fields_->questions.push_back(std::move(question));
}

} // namespace kel
