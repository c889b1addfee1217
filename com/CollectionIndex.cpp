// SPDX-License-Identifier: MIT
#include "com/CollectionIndex.h"

#include "com/Boundary.h"

namespace kel::com {

CollectionIndex indexOf(const VARIANT& index)
{
    const OleVariant value = OleVariant::copyOf(index);
    switch (value.type()) {
    case VT_BSTR: return value.asText();
    case VT_I1:
    case VT_UI1:
    case VT_I2:
    case VT_UI2:
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_I8:
    case VT_UI8:
    case VT_R4:
    case VT_R8:
    case VT_CY:
    case VT_DECIMAL:
    case VT_BOOL: return CLng(value.as(VT_R8).get().dblVal);
    default: throw RuntimeFailure(FailureCode::TypeMismatch);
    }
}

Int32 positionOf(const VARIANT& index)
{
    const CollectionIndex told = indexOf(index);
    if (const auto* position = std::get_if<Int32>(&told))
        return *position;
    throw RuntimeFailure(FailureCode::InvalidProcedureCall);
}

std::optional<Int32> optionalPositionOf(const VARIANT& index)
{
    if (isMissing(index))
        return {};
    return positionOf(index);
}

} // namespace kel::com
