// SPDX-License-Identifier: MIT
#include "com/LateBoundErrorObject.h"

#include "com/Boundary.h"
#include "com/NamedObject.h"

#include <array>

namespace kel::com {

namespace {

ComPtr<IGlobalInterfaceTable> interfaceTable()
{
    ComPtr<IGlobalInterfaceTable> table;
    static_cast<void>(CoCreateInstance(CLSID_StdGlobalInterfaceTable, nullptr, CLSCTX_INPROC_SERVER,
                                       IID_IGlobalInterfaceTable, table.outVoid()));
    return table;
}

/// The options dialog's window for a host.
class FormObject final : public NamedObject {
public:
    explicit FormObject(void* window) : NamedObject(this, typeid(FormObject), kProperties), window_(window) {}

private:
    static OleVariant handle(NamedObject& object)
    {
        // A handle of a window has 32 significant bits on every Windows.
        return OleVariant::of(static_cast<Int32>(reinterpret_cast<INT_PTR>(static_cast<FormObject&>(object).window_)));
    }

    static constexpr std::array kProperties{Property{L"hWnd", handle, nullptr}};

    void* window_;
};

} // namespace

LateBoundErrorObject::LateBoundErrorObject(ComPtr<IDispatch> object)
    : object_(std::move(object)), thread_(GetCurrentThreadId())
{
    const auto table = interfaceTable();
    if (!table || FAILED(table->RegisterInterfaceInGlobal(object_.get(), IID_IDispatch, &cookie_)))
        cookie_ = 0;
}

LateBoundErrorObject::~LateBoundErrorObject()
{
    if (cookie_ != 0) {
        if (const auto table = interfaceTable())
            table->RevokeInterfaceFromGlobal(cookie_);
    }
}

LateBound LateBoundErrorObject::object() const
{
    if (isOfThisThread())
        return LateBound(object_);
    ComPtr<IDispatch> object;
    const auto table = interfaceTable();
    if (!table || cookie_ == 0 || FAILED(table->GetInterfaceFromGlobal(cookie_, IID_IDispatch, object.outVoid())))
        throw RuntimeFailure(FailureCode::AutomationError);
    return LateBound(object);
}

std::string LateBoundErrorObject::TypeName() const
{
    return typeName(*object().object().get());
}

Boolean LateBoundErrorObject::Silent()
{
    return object().get(L"Silent").asBoolean();
}

void LateBoundErrorObject::Silent(Boolean value)
{
    object().put(L"Silent", OleVariant::of(value));
}

Int32 LateBoundErrorObject::RaiseError(const ErrorReport& report)
{
    const std::array arguments{OleVariant::of(report.ErrorNumber),
                               OleVariant::of(report.ErrorType),
                               OleVariant::ofText(report.ErrorDescription),
                               OleVariant::ofText(report.ErrorSource),
                               OleVariant::ofText(report.ErrorTitle),
                               OleVariant::ofText(report.ButtonText1),
                               OleVariant::ofText(report.ButtonText2),
                               OleVariant::ofText(report.ButtonText3),
                               OleVariant::of(report.ButtonDefault),
                               OleVariant::ofText(report.VariableText1),
                               OleVariant::ofText(report.VariableText2),
                               OleVariant::ofText(report.VariableText3),
                               OleVariant::of(report.ShowHelp)};
    // An object without an answer of its own gives nothing, which is 0.
    return object().get(L"RaiseError", arguments).asInt32();
}

void LateBoundErrorObject::SetFont(void* form)
{
    const auto window = ComPtr<IDispatch>::owning(new FormObject(form));
    const std::array arguments{OleVariant::of(window.get())};
    object().call(L"SetFont", arguments);
}

} // namespace kel::com
