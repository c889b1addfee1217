// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Platform.h"

namespace kel {

/// The maker's library, fetched again for every call.
inline OmrApi& omrApi()
{
    return platform().omrApiLoader().omrApi();
}

} // namespace kel
