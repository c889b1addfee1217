// SPDX-License-Identifier: MIT
#pragma once

#include "contract/ReaderContract.h"

namespace kel {

// The driver of the Sekonic USB readers SR1800, SR2300, SR3500 and SR6500, which talk through the maker's library
// alone: no serial line, no timer. A call of the library blocks until the reader is done; the stop flag is looked at
// nowhere meanwhile.

/// Opens the reader and brings it to what the reads need: reading method, 48 columns, the back sensor, the feed mode
/// and, if barcodes are wanted, the barcode unit. A missing library is reported in a box of its own.
Boolean InitReaderSR(ReaderContract& oReader);

/// Closes the reader.
Boolean CloseReaderSR();

/// Switches the barcode unit on if it is off. False when there is none, or when it stays off.
Boolean InitBarcodeSR();

/// Reports an error code of the library.
void ReturnErrorSR(Int32 lError);

/// Feeds a sheet and reads the marks of one or both sides, 200 rows of 48 columns each, and its barcodes. The mark
/// values are the library's bytes.
Boolean ReadPageSR(ReaderContract& oReader, Int32 lRecognitionThreshold);

/// Hands the three print lines to the library, for the sheet that is in the reader. False, without a report, when the
/// printer is not to print or the library refuses a step; what came before stays set in the library.
Boolean PrintSR(const Reference<clsKELReaderPrinter>& cPrinter);

/// Sends the sheet to the reject hopper, or out. With the stop flag set the reader is informed that it is the last.
Boolean RejectPageSR(ReaderContract& oReader);
Boolean EjectPageSR(ReaderContract& oReader);

} // namespace kel
