// SPDX-License-Identifier: MIT
#include "com/OleVariant.h"

#include "com/Boundary.h"
#include "com/Text.h"
#include "types/RuntimeFailure.h"

namespace kel::com {

OleVariant::OleVariant(const OleVariant& other) : OleVariant()
{
    demand(VariantCopy(&value_, const_cast<VARIANT*>(&other.value_)));
}

OleVariant& OleVariant::operator=(OleVariant other) noexcept
{
    std::swap(value_, other.value_);
    return *this;
}

OleVariant OleVariant::of(Int16 value)
{
    OleVariant result;
    result.value_.vt = VT_I2;
    result.value_.iVal = value;
    return result;
}

OleVariant OleVariant::of(Int32 value)
{
    OleVariant result;
    result.value_.vt = VT_I4;
    result.value_.lVal = value;
    return result;
}

OleVariant OleVariant::of(Boolean value)
{
    OleVariant result;
    result.value_.vt = VT_BOOL;
    result.value_.boolVal = value.bits();
    return result;
}

OleVariant OleVariant::of(IDispatch* object)
{
    OleVariant result;
    result.value_.vt = VT_DISPATCH;
    result.value_.pdispVal = ComPtr<IDispatch>(object).detach();
    return result;
}

OleVariant OleVariant::copyOf(const VARIANT& other)
{
    OleVariant result;
    demand(VariantCopyInd(&result.value_, const_cast<VARIANT*>(&behindReference(other))));
    return result;
}

OleVariant OleVariant::owning(BSTR text) noexcept
{
    OleVariant result;
    result.value_.bstrVal = text;
    result.value_.vt = VT_BSTR;
    return result;
}

OleVariant OleVariant::ofText(std::string_view utf8)
{
    return owning(newText(utf8));
}

OleVariant OleVariant::ofSheetText(std::string_view bytes)
{
    return owning(newSheetText(bytes));
}

OleVariant OleVariant::ofLineText(std::string_view bytes)
{
    return owning(newLineText(bytes));
}

VARIANT* OleVariant::out() noexcept
{
    VariantClear(&value_);
    return &value_;
}

OleVariant OleVariant::as(VARTYPE type) const
{
    OleVariant result;
    changeType(result.value_, value_, type);
    return result;
}

Int32 OleVariant::asInt32() const
{
    return as(VT_I4).value_.lVal;
}

Int16 OleVariant::asInt16() const
{
    return as(VT_I2).value_.iVal;
}

Boolean OleVariant::asBoolean() const
{
    return Boolean::fromBits(as(VT_BOOL).value_.boolVal);
}

std::string OleVariant::asText() const
{
    return textOf(as(VT_BSTR).value_.bstrVal);
}

std::string OleVariant::asSheetText() const
{
    return sheetTextOf(as(VT_BSTR).value_.bstrVal);
}

std::string OleVariant::asLineText() const
{
    return lineTextOf(as(VT_BSTR).value_.bstrVal);
}

ComPtr<IDispatch> OleVariant::asObject() const
{
    const VARIANT& value = behindReference(value_);
    switch (value.vt) {
    case VT_DISPATCH: return ComPtr<IDispatch>(value.pdispVal);
    case VT_DISPATCH | VT_BYREF: return ComPtr<IDispatch>(*value.ppdispVal);
    case VT_UNKNOWN: return queryFor<IDispatch>(value.punkVal, IID_IDispatch);
    case VT_EMPTY: return nullptr;
    default: throw RuntimeFailure(FailureCode::ObjectRequired);
    }
}

const VARIANT& behindReference(const VARIANT& value) noexcept
{
    const VARIANT* at = &value;
    while (at->vt == (VT_BYREF | VT_VARIANT) && at->pvarVal)
        at = at->pvarVal;
    return *at;
}

bool isMissing(const VARIANT& value) noexcept
{
    const VARIANT& there = behindReference(value);
    return there.vt == VT_EMPTY || (there.vt == VT_ERROR && there.scode == DISP_E_PARAMNOTFOUND);
}

void changeType(VARIANT& to, const VARIANT& from, VARTYPE type)
{
    const HRESULT changed = VariantChangeType(&to, const_cast<VARIANT*>(&behindReference(from)), 0, type);
    if (changed == DISP_E_OVERFLOW)
        throw RuntimeFailure(FailureCode::Overflow);
    if (changed == E_OUTOFMEMORY)
        throw RuntimeFailure(FailureCode::OutOfMemory);
    if (FAILED(changed))
        throw RuntimeFailure(FailureCode::TypeMismatch);
}

} // namespace kel::com
