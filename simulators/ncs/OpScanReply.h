// SPDX-License-Identifier: MIT
#pragma once

#include "simulators/framework/SimulatedSheet.h"

#include <string>

namespace kel {

/// How an OpScan reader writes a sheet onto the line.
struct OpScanFormat {
    bool compressed = true;   ///< equal positions as 15, a count byte (40 plus the count), the position
    bool alternating = false; ///< a row of side 1, a row of side 2, and so on, instead of one side after the other
    bool silentEnd = false;   ///< nothing after the barcodes
    std::string barcodePrefix = "00"; ///< precedes each barcode that a separator follows
};

/// The reply for a sheet: rows of 48 hexadecimal digits after "a" (side 1) and "b" (side 2), then "c" and the barcodes
/// with "d", then CR LF.
///
/// A separator removes the first two characters before it and opens the next barcode. At CR LF the barcode that was
/// opened last is not one, so each is closed by a separator; at a silent end it is, so the last one has neither
/// separator nor prefix. A sheet without barcodes ends with CR LF in any case. What is no digit 0 to 15 is sent as 0. A
/// barcode goes out as it is: its letters a to d are markers wherever they stand alone, and text within a run.
[[nodiscard]] std::string opScanReply(const SimulatedSheet& sheet, const OpScanFormat& format);

} // namespace kel
