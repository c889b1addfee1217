// SPDX-License-Identifier: MIT
#pragma once

#include "com/ComPtr.h"
#include "com/ListEnumerator.h"

#include <oaidl.h>

namespace kel::com {

struct GiveObject {
    static VARIANT give(const ComPtr<IDispatch>& object)
    {
        VARIANT value;
        VariantInit(&value);
        value.vt = VT_DISPATCH;
        value.pdispVal = ComPtr<IDispatch>(object).detach();
        return value;
    }
};

/// The objects of a collection one after the other, as they were when the walk began: what "For Each" asks for.
using Enumerator = ListEnumerator<IEnumVARIANT, &IID_IEnumVARIANT, VARIANT, ComPtr<IDispatch>, GiveObject>;

} // namespace kel::com
