// SPDX-License-Identifier: MIT
#pragma once

#include "com/Boundary.h"
#include "com/ComPtr.h"
#include "types/Reference.h"

#include <memory>
#include <typeinfo>

namespace kel::com {

/// An interface of this component alone: through it a host's reference leads back to the native object.
struct IOwnObject : IUnknown {
    /// The native object, if it is of the kind asked for.
    [[nodiscard]] virtual std::shared_ptr<void> native(const std::type_info& kind) const = 0;
};

inline constexpr IID IID_IOwnObject = {0x503d4e32, 0x8769, 0x49dc, {0x85, 0xfa, 0xb8, 0x67, 0x0e, 0xe9, 0xf5, 0x76}};

/// The native object of a host's reference; null for a null reference. 13 "Type mismatch" for an object that is none of
/// this component's, or of another kind.
template <class Native>
[[nodiscard]] Reference<Native> nativeOf(IUnknown* object)
{
    if (!object)
        return nullptr;
    if (const auto own = queryFor<IOwnObject>(object, IID_IOwnObject)) {
        if (auto native = own->native(typeid(Native)))
            return std::static_pointer_cast<Native>(native);
    }
    throw RuntimeFailure(FailureCode::TypeMismatch);
}

} // namespace kel::com
