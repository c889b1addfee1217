// SPDX-License-Identifier: MIT
#pragma once

namespace kel {

/// Makes a fault of a call through a bad function address, where no code is and so no way out, a fault of the calling
/// statement. `context` is what the signal handler got, `address` what could not be reached. Any other fault, and one
/// on a processor that is not known here, stays as it is.
void moveToCaller(void* context, const void* address);

} // namespace kel
