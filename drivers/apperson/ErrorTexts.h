// SPDX-License-Identifier: MIT
#pragma once

#include "strings/TextNumber.h"

namespace kel {

/// The number of the text for an error code of a reader.
[[nodiscard]] TextNumber errorTextAP(Int16 iErrCode);

} // namespace kel
