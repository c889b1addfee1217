// SPDX-License-Identifier: MIT
#pragma once

#include "com/ComPtr.h"
#include "com/LateBound.h"
#include "com/TypeName.h"
#include "contract/AnswerKeyObject.h"
#include "failure/TypeName.h"

#include <oaidl.h>

namespace kel::com {

/// A list of the host's: a collection with `Count` and `Item`, an array, or a script's own array.
class LateBoundList {
public:
    explicit LateBoundList(OleVariant list);

    [[nodiscard]] Int32 Count() const;
    /// An element by its number from 1; 9 "Subscript out of range" for one that an array does not have.
    [[nodiscard]] OleVariant Item(Int32 number) const;
    [[nodiscard]] const OleVariant& list() const noexcept { return list_; }

private:
    [[nodiscard]] LateBound object() const;
    [[nodiscard]] const SAFEARRAY* array() const;

    OleVariant list_;
};

/// A host's answer key by the names of its members: `FormIDs`, `NumberOfPages` and `Questions`; a question's `Name`,
/// `Choices`, `ChoiceColumns` and `CorrectAnswers`. The choices may have a `Position` that finds an answer's text.
class LateBoundAnswerKey final : public AnswerKeyObject, public StandsForAnother {
public:
    explicit LateBoundAnswerKey(ComPtr<IDispatch> object) : object_(std::move(object)) {}

    [[nodiscard]] IDispatch* object() const noexcept { return object_.get(); }
    [[nodiscard]] std::string TypeName() const override { return typeName(*object_.get()); }

    [[nodiscard]] std::string FormIDs() const override;
    [[nodiscard]] Int32 NumberOfPages() const override;
    [[nodiscard]] Int32 QuestionsCount() const override;
    [[nodiscard]] Reference<AnswerKeyQuestion> Questions(Int32 number) const override;

private:
    ComPtr<IDispatch> object_;
};

} // namespace kel::com
