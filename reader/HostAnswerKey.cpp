// SPDX-License-Identifier: MIT
#include "reader/HostAnswerKey.h"

#include "platform/FaultCapture.h"

#include <utility>

namespace kel {

namespace {

class HostChoices final : public AnswerChoices {
public:
    explicit HostChoices(Reference<AnswerChoices> choices) : choices_(std::move(choices)) {}

    Int32 Count() const override
    {
        const HostCode host;
        return choices_->Count();
    }
    Int32 Position(std::string_view answer) const override
    {
        const HostCode host;
        return choices_->Position(answer);
    }

private:
    Reference<AnswerChoices> choices_;
};

class HostQuestion final : public AnswerKeyQuestion {
public:
    explicit HostQuestion(Reference<AnswerKeyQuestion> question) : question_(std::move(question)) {}

    std::string Name() const override
    {
        const HostCode host;
        return question_->Name();
    }
    Reference<AnswerChoices> Choices() const override { return wrapped(&AnswerKeyQuestion::Choices); }
    Reference<AnswerChoices> ChoiceColumns() const override { return wrapped(&AnswerKeyQuestion::ChoiceColumns); }
    Int32 CorrectAnswersCount() const override
    {
        const HostCode host;
        return question_->CorrectAnswersCount();
    }
    std::string CorrectAnswers(Int32 version) const override
    {
        const HostCode host;
        return question_->CorrectAnswers(version);
    }

private:
    Reference<AnswerChoices> wrapped(Reference<AnswerChoices> (AnswerKeyQuestion::*list)() const) const
    {
        const HostCode host;
        const Reference<AnswerChoices> choices = ((*question_).*list)();
        return choices ? Reference<AnswerChoices>(makeReference<HostChoices>(choices)) : nullptr;
    }

    Reference<AnswerKeyQuestion> question_;
};

class HostAnswerKey final : public AnswerKeyObject {
public:
    explicit HostAnswerKey(Reference<AnswerKeyObject> key) : key_(std::move(key)) {}

    std::string FormIDs() const override
    {
        const HostCode host;
        return key_->FormIDs();
    }
    Int32 NumberOfPages() const override
    {
        const HostCode host;
        return key_->NumberOfPages();
    }
    Int32 QuestionsCount() const override
    {
        const HostCode host;
        return key_->QuestionsCount();
    }
    Reference<AnswerKeyQuestion> Questions(Int32 number) const override
    {
        const HostCode host;
        const Reference<AnswerKeyQuestion> question = key_->Questions(number);
        return question ? Reference<AnswerKeyQuestion>(makeReference<HostQuestion>(question)) : nullptr;
    }

private:
    Reference<AnswerKeyObject> key_;
};

} // namespace

Reference<AnswerKeyObject> hostAnswerKey(Reference<AnswerKeyObject> key)
{
    return key ? Reference<AnswerKeyObject>(makeReference<HostAnswerKey>(std::move(key))) : nullptr;
}

} // namespace kel
