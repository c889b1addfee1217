// SPDX-License-Identifier: MIT
#pragma once

#include "com/TypeInformation.h"

#include <oaidl.h>

namespace kel::com {

// IDispatch on what the type library says of an interface.

/// The numbers of a member's name and of its arguments' names.
[[nodiscard]] HRESULT idsOfNames(const TypeInformation& type, LPOLESTR* names, UINT count, DISPID* ids) noexcept;

/// Calls a member of `object`, which has the interface that `type` describes.
[[nodiscard]] HRESULT invoke(const TypeInformation& type, IDispatch* object, DISPID id, WORD flags,
                             DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception, UINT* argument) noexcept;

} // namespace kel::com
