// SPDX-License-Identifier: MIT
#pragma once

#include "host/ReaderAdvice.h"

#include <cstddef>

namespace kel::host {

/// All the advice that there is.
extern const AdviceRow kAdviceRows[];
extern const std::size_t kAdviceCount;

} // namespace kel::host
