// SPDX-License-Identifier: MIT
#pragma once

#include <oaidl.h>
#include <ocidl.h>

#include <string>

namespace kel::com {

/// The name of an object's class as its own type information has it, or that of its interface; "Object" where it has
/// none.
[[nodiscard]] std::string typeName(IDispatch& object);

} // namespace kel::com
