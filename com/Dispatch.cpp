// SPDX-License-Identifier: MIT
#include "com/Dispatch.h"

#include "com/Arguments.h"
#include "com/Boundary.h"

namespace kel::com {

namespace {

constexpr WORD kAnyPut = DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF;

/// Hosts do not always distinguish the setting of a value from that of a reference: whatever the property has is meant.
WORD fittingFlags(const TypeInformation& type, DISPID id, WORD flags)
{
    if ((flags & kAnyPut) == 0)
        return flags;
    if (type.member(id, DISPATCH_PROPERTYPUTREF))
        return DISPATCH_PROPERTYPUTREF;
    return DISPATCH_PROPERTYPUT;
}

HRESULT call(const TypeInformation& type, IDispatch* object, DISPID id, WORD flags, DISPPARAMS* parameters,
             VARIANT* result, EXCEPINFO* exception, UINT* argument)
{
    // The failure that a method reported belongs to this call.
    SetErrorInfo(0, nullptr);
    return type.information().Invoke(object, id, flags, parameters, result, exception, argument);
}

} // namespace

HRESULT idsOfNames(const TypeInformation& type, LPOLESTR* names, UINT count, DISPID* ids) noexcept
try {
    if (!names || !ids || count == 0)
        return E_INVALIDARG;
    if (count > 1)
        return type.information().GetIDsOfNames(names, count, ids);
    ids[0] = type.idOfName(names[0]);
    return ids[0] == DISPID_UNKNOWN ? DISP_E_UNKNOWNNAME : S_OK;
} catch (...) {
    return E_OUTOFMEMORY;
}

HRESULT invoke(const TypeInformation& type, IDispatch* object, DISPID id, WORD flags, DISPPARAMS* parameters,
               VARIANT* result, EXCEPINFO* exception, UINT* argument) noexcept
try {
    if (!parameters)
        return E_INVALIDARG;
    const WORD fitting = fittingFlags(type, id, flags);
    if (parameters->cArgs == 0)
        return call(type, object, id, fitting, parameters, result, exception, argument);

    const Member* const member = type.member(id, fitting);
    if (!member)
        return DISP_E_MEMBERNOTFOUND;
    Arguments arguments(*member, *parameters);
    const HRESULT called = call(type, object, id, fitting, &arguments.prepared(), result, exception, argument);
    if (SUCCEEDED(called))
        arguments.handBack();
    return called;
} catch (const ComFailure& failure) {
    return failure.code();
} catch (const RuntimeFailure& failure) {
    return failure.code() == FailureCode::Overflow ? DISP_E_OVERFLOW : DISP_E_TYPEMISMATCH;
} catch (...) {
    return E_OUTOFMEMORY;
}

} // namespace kel::com
