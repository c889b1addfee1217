// SPDX-License-Identifier: MIT
#pragma once

#include "contract/ReaderContract.h"

namespace kel {

// The driver of the OpScan and iNSIGHT models: short commands, scan modes, and pages as run-compressed text with one
// hexadecimal digit a cell. All models are driven alike.

/// The reader's scan modes, each with its letter on the wire.
enum eScanMode : Int32 {
    eScanModeNone = 0,
    eScanModeI = 1, ///< "i", the mode of a session
    eScanModeE = 2, ///< "e"
    eScanModeT = 3, ///< "t"
    eScanModeD = 4, ///< "d"
    eScanModeW = 5, ///< "w", the mode on the way from one to another
    eScanModeS = 6, ///< "s"
};

/// Saves the reader's scan mode and forces mode "i".
Boolean InitReaderNCS(ReaderContract& oReader);

/// Restores the scan mode that was found at the start, for those modes that are restored.
Boolean CloseReaderNCS(ReaderContract& oReader);

/// Asks for the status of the last sheet. True if it is clean; a fault is reported, and the sheet goes to the reject
/// hopper if the reader has one.
Boolean CheckStatusNCS(ReaderContract& oReader);

/// Asks for the reader's report: its driver status letter is kept, and its scan mode is stored in `eScanMode`. A mode
/// letter that is none leaves `eScanMode` as it was.
Boolean GetScanModeNCS(ReaderContract& oReader, kel::eScanMode& eScanMode);

/// Puts the reader into a scan mode; `eScanModeNone` is refused.
Boolean SetScanModeNCS(ReaderContract& oReader, kel::eScanMode eScanMode);

/// Reads one sheet, one or two sides of 150 rows of 48 columns, with its barcodes.
Boolean ReadPageNCS(ReaderContract& oReader);

/// Hands the printer's distance and first line to the reader.
Boolean PrintNCS(ReaderContract& oReader);

/// Sends the sheet to the reject hopper, or out.
void RejectPageNCS(ReaderContract& oReader);
void EjectPageNCS(ReaderContract& oReader);

} // namespace kel
