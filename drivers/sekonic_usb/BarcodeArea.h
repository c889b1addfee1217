// SPDX-License-Identifier: MIT
#pragma once

#include "contract/clsKELReaderBarcodes.h"
#include "platform/OmrApi.h"

namespace kel {

/// The reader knows one area only. It begins at the smallest distance of all zones and is as long as all of them
/// together, whatever lies between: zones far apart may so end outside it. There must be a zone.
/// Lengths that add up to more than 32 bits are failure 6.
[[nodiscard]] SRBarcodeArea barcodeAreaSR(const clsKELReaderBarcodes& zones);

} // namespace kel
