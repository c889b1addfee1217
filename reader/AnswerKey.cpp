#include "reader/AnswerKey.h"

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

AnswerList::AnswerList(std::vector<std::string> answers) : answers_(std::move(answers)) {}

Int32 AnswerList::Count() const
{
    return static_cast<Int32>(answers_.size());
}

Int32 AnswerList::Position(std::string_view answer) const
{
    const auto found = std::find(answers_.begin(), answers_.end(), answer);
    if (found != answers_.end())
        return static_cast<Int32>(found - answers_.begin()) + 1;

    std::string choices;
    for (const std::string& choice : answers_)
        choices.append(choices.empty() ? "" : ", ").append(choice);
    throw RuntimeFailure(FailureCode::InvalidProcedureCall,
                         "The right answer \"" + std::string(answer) + "\" is not among the choices (" + choices + ")");
}

AnswerKeyEntry::AnswerKeyEntry(std::string name, std::vector<std::string> choices, Int32 choiceColumns,
                               std::vector<std::string> correctAnswers)
    : sName_(std::move(name)), oChoices_(makeReference<AnswerList>(std::move(choices))),
      oChoiceColumns_(makeReference<AnswerList>(columnTexts(choiceColumns))),
      sCorrectAnswers_(std::move(correctAnswers))
{
}

Int32 AnswerKeyEntry::CorrectAnswersCount() const
{
    return static_cast<Int32>(sCorrectAnswers_.size());
}

std::string AnswerKeyEntry::CorrectAnswers(Int32 version) const
{
    return numbered(sCorrectAnswers_, version);
}

Int32 AnswerKey::QuestionsCount() const
{
    return static_cast<Int32>(questions_.size());
}

Reference<AnswerKeyQuestion> AnswerKey::Questions(Int32 number) const
{
    return numbered(questions_, number);
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
    questions_.push_back(std::move(question));
}

} // namespace kel
