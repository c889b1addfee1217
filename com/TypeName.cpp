// SPDX-License-Identifier: MIT
#include "com/TypeName.h"

#include "com/ComPtr.h"
#include "com/Text.h"
#include "platform/FaultCapture.h"

namespace kel::com {

namespace {

constexpr const char* kNoName = "Object";

ComPtr<ITypeInfo> typeOf(IDispatch& object)
{
    ComPtr<ITypeInfo> type;
    if (const auto classes = queryFor<IProvideClassInfo>(&object, IID_IProvideClassInfo)) {
        if (SUCCEEDED(classes->GetClassInfo(type.out())) && type)
            return type;
    }
    if (FAILED(object.GetTypeInfo(0, LOCALE_USER_DEFAULT, type.out())))
        return {};
    return type;
}

} // namespace

std::string typeName(IDispatch& object)
{
    const HostCode host;
    const ComPtr<ITypeInfo> type = typeOf(object);
    OwnedText name;
    if (!type || FAILED(type->GetDocumentation(MEMBERID_NIL, name.out(), nullptr, nullptr, nullptr)))
        return kNoName;
    // The default interface of a Visual Basic class has the name of the class after an underscore.
    std::string text = textOf(name.get());
    if (text.starts_with('_'))
        text.erase(0, 1);
    return text.empty() ? kNoName : text;
}

} // namespace kel::com
