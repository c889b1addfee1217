// SPDX-License-Identifier: MIT
#include "com/NamedObject.h"

#include "com/Boundary.h"
#include "com/Text.h"
#include "com/TypeInformation.h"

#include <algorithm>
#include <cwchar>

namespace kel::com {

namespace {

void tell(EXCEPINFO* exception, const RuntimeFailure& failure)
{
    if (!exception)
        return;
    *exception = {};
    exception->scode = resultCode(failure);
    exception->bstrSource = SysAllocString(L"KELReader81U");
    exception->bstrDescription = newText(failure.text());
}

} // namespace

STDMETHODIMP NamedObject::QueryInterface(REFIID iid, void** object)
{
    if (!object)
        return E_POINTER;
    *object = IsEqualIID(iid, IID_IUnknown) || IsEqualIID(iid, IID_IDispatch) ? static_cast<IDispatch*>(this)
                                                                              : ownInterface(iid);
    if (!*object)
        return E_NOINTERFACE;
    acquire();
    return S_OK;
}

STDMETHODIMP NamedObject::GetTypeInfoCount(UINT* count)
{
    if (!count)
        return E_POINTER;
    *count = 0;
    return S_OK;
}

STDMETHODIMP NamedObject::GetTypeInfo(UINT, LCID, ITypeInfo** information)
{
    if (information)
        *information = nullptr;
    return DISP_E_BADINDEX;
}

STDMETHODIMP NamedObject::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids)
{
    if (!names || !ids || count == 0)
        return E_INVALIDARG;
    std::fill_n(ids, count, DISPID_UNKNOWN);
    const auto found = std::find_if(properties_.begin(), properties_.end(),
                                    [&](const Property& property) { return _wcsicmp(property.name, names[0]) == 0; });
    if (found == properties_.end())
        return DISP_E_UNKNOWNNAME;
    ids[0] = static_cast<DISPID>(found - properties_.begin()) + 1;
    return count == 1 ? S_OK : DISP_E_UNKNOWNNAME;
}

STDMETHODIMP NamedObject::Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                                 EXCEPINFO* exception, UINT*)
try {
    if (!parameters)
        return E_INVALIDARG;
    if (id < 1 || static_cast<std::size_t>(id) > properties_.size())
        return DISP_E_MEMBERNOTFOUND;
    const Property& property = properties_[static_cast<std::size_t>(id) - 1];
    const ComPtr<IDispatch> keep(this);
    if ((flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0) {
        if (!property.put)
            return DISP_E_MEMBERNOTFOUND;
        if (parameters->cArgs != 1)
            return DISP_E_BADPARAMCOUNT;
        property.put(*this, OleVariant::copyOf(parameters->rgvarg[0]));
        return S_OK;
    }
    if (!property.get)
        return DISP_E_MEMBERNOTFOUND;
    if (parameters->cArgs != 0)
        return DISP_E_BADPARAMCOUNT;
    OleVariant value = property.get(*this);
    if (result) {
        *result = value.get();
        VariantInit(&value.get());
    }
    return S_OK;
} catch (const RuntimeFailure& failure) {
    tell(exception, failure);
    return DISP_E_EXCEPTION;
} catch (...) {
    return caughtResult(IID_IDispatch);
}

} // namespace kel::com
