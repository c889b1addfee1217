// SPDX-License-Identifier: MIT
#include "com/LateBound.h"

#include "com/Boundary.h"
#include "com/Text.h"

#include <dispex.h>

#include <vector>

namespace kel::com {

namespace {

constexpr WORD kGet = DISPATCH_METHOD | DISPATCH_PROPERTYGET;

/// The number of a member. Some script engines report the members of a script's own objects by their extended interface
/// alone.
HRESULT findId(IDispatch& object, const wchar_t* member, DISPID& id)
{
    auto* name = const_cast<LPOLESTR>(member);
    const HRESULT found = object.GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &id);
    if (found != E_NOTIMPL)
        return found;
    const auto extended = queryFor<IDispatchEx>(&object, __uuidof(IDispatchEx));
    if (!extended)
        return found;
    const OwnedText text(SysAllocString(member));
    return extended->GetDispID(text.get(), fdexNameCaseInsensitive, &id);
}

/// What script engines say of a value that is called.
constexpr auto kFunctionExpected = static_cast<HRESULT>(0x800A138A);

/// Whether a member may be one that is read and not called: some engines do not take both at once.
bool mayBeRead(HRESULT called, const EXCEPINFO& exception)
{
    const HRESULT code = called == DISP_E_EXCEPTION ? exception.scode : called;
    return called == DISP_E_MEMBERNOTFOUND || called == E_FAIL || called == E_NOTIMPL ||
           called == DISP_E_TYPEMISMATCH || code == kFunctionExpected;
}

} // namespace

LateBound::LateBound(ComPtr<IDispatch> object, SourceLocation where) : object_(std::move(object))
{
    if (!object_)
        throw RuntimeFailure(FailureCode::ObjectNotSet, where);
}

bool LateBound::has(const wchar_t* member) const
{
    DISPID id = DISPID_UNKNOWN;
    return SUCCEEDED(findId(*object_.get(), member, id));
}

OleVariant LateBound::get(const wchar_t* member, std::span<const OleVariant> arguments, SourceLocation where) const
{
    return invoke(idOf(member, where), kGet, arguments, where);
}

void LateBound::put(const wchar_t* member, const OleVariant& value, SourceLocation where) const
{
    invoke(idOf(member, where), DISPATCH_PROPERTYPUT, {&value, 1}, where);
}

OleVariant LateBound::call(const wchar_t* member, std::span<const OleVariant> arguments, SourceLocation where) const
{
    return invoke(idOf(member, where), DISPATCH_METHOD, arguments, where);
}

OleVariant LateBound::item(const OleVariant& index, SourceLocation where) const
{
    return invoke(has(L"Item") ? idOf(L"Item", where) : DISPID_VALUE, kGet, {&index, 1}, where);
}

DISPID LateBound::idOf(const wchar_t* member, const SourceLocation& where) const
{
    DISPID id = DISPID_UNKNOWN;
    const HRESULT found = findId(*object_.get(), member, id);
    if (FAILED(found)) {
        EXCEPINFO none{};
        throw failureOfCall(found, none, where);
    }
    return id;
}

OleVariant LateBound::invoke(DISPID id, WORD flags, std::span<const OleVariant> arguments,
                             const SourceLocation& where) const
{
    // The last argument comes first. The copies own nothing.
    std::vector<VARIANT> reversed;
    reversed.reserve(arguments.size());
    for (std::size_t index = arguments.size(); index > 0; --index)
        reversed.push_back(arguments[index - 1].get());

    DISPID valueOfProperty = DISPID_PROPERTYPUT;
    DISPPARAMS parameters{reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
    if (flags == DISPATCH_PROPERTYPUT) {
        parameters.rgdispidNamedArgs = &valueOfProperty;
        parameters.cNamedArgs = 1;
    }
    OleVariant result;
    EXCEPINFO exception{};
    UINT wrongArgument = 0;
    const ComPtr<IDispatch> object = object_; // the host's code may let go of what holds it here
    HRESULT called = object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters,
                                    flags == DISPATCH_PROPERTYPUT ? nullptr : result.out(), &exception, &wrongArgument);
    if (flags == kGet && arguments.empty() && mayBeRead(called, exception)) {
        static_cast<void>(failureOfCall(called, exception, where)); // frees its texts
        exception = {};
        called = object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET, &parameters, result.out(),
                                &exception, &wrongArgument);
    }
    if (FAILED(called))
        throw failureOfCall(called, exception, where);
    return result;
}

} // namespace kel::com
