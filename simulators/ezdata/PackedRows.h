// SPDX-License-Identifier: MIT
#pragma once

#include "simulators/framework/SimulatedSheet.h"

#include <string>

namespace kel {

/// What bit 0x20 of a mark byte is; it carries no position.
enum class SpareBit {
    Changing, ///< differs from byte to byte
    Clear,
    Set,
};

/// The setting `spare-bit` of a reader: "changing", "clear" or "set". Throws std::invalid_argument for any other.
[[nodiscard]] SpareBit spareBitFrom(const std::string& text);

/// A side as EZData and Chatsworth readers send it: two bytes a row, six columns each, and a CR after the last row.
///
///     bit          0x01  0x02  0x04  0x08  0x10  0x40
///     first byte     12    11    10     9     8     7
///     second byte     6     5     4     3     2     1
///
/// An empty half is a blank, 0x20. A byte that would be a CR, or the 0x07 by which one model refuses a sheet, has bit
/// 0x20 set whatever is asked for.
[[nodiscard]] std::string packedRows(const MarkRows& rows, SpareBit spare);

} // namespace kel
