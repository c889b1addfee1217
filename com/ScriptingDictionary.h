// SPDX-License-Identifier: MIT
#pragma once

#include "com/ComPtr.h"
#include "contract/DictionaryObject.h"

#include <oaidl.h>

#include <utility>

namespace kel::com {

/// A `Scripting.Dictionary` of the system: what a host of another language takes for a record.
class ScriptingDictionary final : public DictionaryObject {
public:
    explicit ScriptingDictionary(ComPtr<IDispatch> object) : object_(std::move(object)) {}
    [[nodiscard]] const ComPtr<IDispatch>& object() const { return object_; }

private:
    ComPtr<IDispatch> object_;
};

/// A new one; failure 429 where the system cannot create it.
[[nodiscard]] std::shared_ptr<DictionaryObject> newScriptingDictionary();

/// The scripting dictionary of a record, filled with the items of the record instead of its former items.
[[nodiscard]] ComPtr<IDispatch> filledScriptingDictionary(const Dictionary& record);

} // namespace kel::com
