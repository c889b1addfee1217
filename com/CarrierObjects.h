// SPDX-License-Identifier: MIT
#pragma once

#include "com/ComPtr.h"
#include "platform/Carrier.h"
#include "types/Reference.h"

#include <oaidl.h>

namespace kel::com {

/// A carrier for a host: the host's own object, if it is one of those, or an object with the members `mscComm` and
/// `tmrScan`, whose members are those of the serial control and the timer. A reference for the caller; nothing for
/// nothing.
[[nodiscard]] IDispatch* carrierObjectOf(const Reference<Carrier>& carrier);

/// The carrier that a host's object stands for: one of this component's own, or the object itself, whose members are
/// then reached by name at each access.
[[nodiscard]] Reference<Carrier> carrierOf(IDispatch* object);

} // namespace kel::com
