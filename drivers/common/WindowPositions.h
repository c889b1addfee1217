// SPDX-License-Identifier: MIT
#pragma once

#include "types/Numbers.h"

namespace kel {

/// The row or column of a read window at a place counted from 1, in 16 bits: gap * place + start - gap, each step
/// checked. The window's count as the place gives its far end, which lies below the start where the gap is negative.
[[nodiscard]] inline Int16 positionInWindow(Int16 start, Int16 gap, Int16 place)
{
    return checkedSubtract(checkedAdd(checkedMultiply(gap, place), start), gap);
}

} // namespace kel
