// SPDX-License-Identifier: MIT
#pragma once

#include "types/Numbers.h"

#include <string>
#include <string_view>

namespace kel {

/// The status of a sheet, two digits a side, that says that all is well: the byte "0" as its decimal text.
inline constexpr std::string_view kGoodStatusSS = "48";

/// The timing marks that a side's reply counts: the number in its first three characters. Failure 6 when it does not
/// fit 16 bits.
[[nodiscard]] Int16 timingMarksSS(std::string_view sReply);

/// The barcode in its frame: what stands between the first and the last character, which are dropped whatever they
/// are; "?" when the frame begins with that, and so no barcode was read. A frame of less than two characters is
/// failure 5.
[[nodiscard]] std::string barcodeOfFrameSS(std::string_view frame);

} // namespace kel
