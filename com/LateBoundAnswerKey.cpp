// SPDX-License-Identifier: MIT
#include "com/LateBoundAnswerKey.h"

#include "com/Boundary.h"
#include "types/RuntimeFailure.h"

#include <array>
#include <string>

namespace kel::com {

namespace {

class LateBoundChoices final : public AnswerChoices {
public:
    explicit LateBoundChoices(OleVariant list) : list_(std::move(list)) {}

    [[nodiscard]] Int32 Count() const override { return list_.Count(); }

    [[nodiscard]] Int32 Position(std::string_view answer) const override
    {
        const OleVariant text = OleVariant::ofText(answer);
        if (list_.list().type() == VT_DISPATCH) {
            const LateBound object(list_.list().asObject());
            if (object.has(L"Position"))
                return object.get(L"Position", text).asInt32();
        }
        const Int32 count = list_.Count();
        for (Int32 number = 1; number <= count; ++number) {
            if (list_.Item(number).asText() == answer)
                return number;
        }
        throw RuntimeFailure(FailureCode::InvalidProcedureCall);
    }

private:
    LateBoundList list_;
};

class LateBoundQuestion final : public AnswerKeyQuestion {
public:
    explicit LateBoundQuestion(ComPtr<IDispatch> object) : object_(std::move(object)) {}

    [[nodiscard]] std::string Name() const override { return object_.get(L"Name").asText(); }
    [[nodiscard]] Reference<AnswerChoices> Choices() const override
    {
        return makeReference<LateBoundChoices>(object_.get(L"Choices"));
    }
    [[nodiscard]] Reference<AnswerChoices> ChoiceColumns() const override
    {
        return makeReference<LateBoundChoices>(object_.get(L"ChoiceColumns"));
    }
    [[nodiscard]] Int32 CorrectAnswersCount() const override
    {
        return LateBoundList(object_.get(L"CorrectAnswers")).Count();
    }
    [[nodiscard]] std::string CorrectAnswers(Int32 version) const override
    {
        return LateBoundList(object_.get(L"CorrectAnswers")).Item(version).asText();
    }

private:
    LateBound object_;
};

} // namespace

LateBoundList::LateBoundList(OleVariant list) : list_(std::move(list))
{
    if (!array() && !list_.asObject())
        throw RuntimeFailure(FailureCode::ObjectNotSet);
}

Int32 LateBoundList::Count() const
{
    if (const SAFEARRAY* const elements = array())
        return static_cast<Int32>(elements->rgsabound[0].cElements);
    return object().has(L"Count") ? object().get(L"Count").asInt32() : object().get(L"length").asInt32();
}

OleVariant LateBoundList::Item(Int32 number) const
{
    if (const SAFEARRAY* const elements = array()) {
        if (number < 1 || number > Count() || (elements->fFeatures & FADF_VARIANT) == 0)
            throw RuntimeFailure(FailureCode::SubscriptOutOfRange);
        OleVariant element;
        LONG index = elements->rgsabound[0].lLbound + number - 1;
        demand(SafeArrayGetElement(const_cast<SAFEARRAY*>(elements), &index, element.out()));
        return element;
    }
    if (object().has(L"Count"))
        return object().item(OleVariant::of(number));
    return object().get(std::to_wstring(number - 1).c_str());
}

LateBound LateBoundList::object() const
{
    return LateBound(list_.asObject());
}

const SAFEARRAY* LateBoundList::array() const
{
    const VARIANT& value = list_.get();
    if ((value.vt & VT_ARRAY) == 0 || (value.vt & VT_BYREF) != 0 || !value.parray || value.parray->cDims != 1)
        return nullptr;
    return value.parray;
}

std::string LateBoundAnswerKey::FormIDs() const
{
    return LateBound(object_).get(L"FormIDs").asSheetText();
}

Int32 LateBoundAnswerKey::NumberOfPages() const
{
    return LateBound(object_).get(L"NumberOfPages").asInt32();
}

Int32 LateBoundAnswerKey::QuestionsCount() const
{
    return LateBoundList(LateBound(object_).get(L"Questions")).Count();
}

Reference<AnswerKeyQuestion> LateBoundAnswerKey::Questions(Int32 number) const
{
    const LateBoundList questions(LateBound(object_).get(L"Questions"));
    return makeReference<LateBoundQuestion>(questions.Item(number).asObject());
}

} // namespace kel::com
