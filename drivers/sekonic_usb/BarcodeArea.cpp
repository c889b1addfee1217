// SPDX-License-Identifier: MIT
#include "drivers/sekonic_usb/BarcodeArea.h"

namespace kel {

SRBarcodeArea barcodeAreaSR(const clsKELReaderBarcodes& zones)
{
    SRBarcodeArea uArea;
    uArea.lStart = zones.Item(1)->Distance();
    uArea.lLength = zones.Item(1)->Length();
    for (Int32 lZone = 2; lZone <= zones.Count(); ++lZone) {
        if (zones.Item(lZone)->Distance() < uArea.lStart)
            uArea.lStart = zones.Item(lZone)->Distance();
        uArea.lLength = checkedAdd(uArea.lLength, Int32{zones.Item(lZone)->Length()});
    }
    return uArea;
}

} // namespace kel
