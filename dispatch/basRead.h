// SPDX-License-Identifier: MIT
#pragma once

#include "contract/ReaderContract.h"
#include "profiles/ReaderModels.h"

namespace kel {

/// Opens the line if the model is serial, sets the timer and starts the reader through its family's driver.
/// True if the reader started. `CancelScan` becomes True when the driver's start failed or the model is unknown, but
/// not when the port number is out of range or the line cannot be opened.
Boolean ReaderInit(ReaderContract& oReader);

/// Ends the session with the reader through its family's driver and closes the line, whatever the driver answered.
Boolean ReaderClose(ReaderContract& oReader);

/// Reads one sheet through the family's driver. Any result but exactly True sets `CancelScan`.
Boolean ReaderRead(ReaderContract& oReader);

/// Prints on the current sheet, or with `bAbort` informs the reader that it will not be printed on, on models that want
/// to know. True if the sheet was printed.
Boolean ReaderPrint(ReaderContract& oReader, Boolean bAbort, Boolean& bSheetEjected);

/// Sends the current sheet to the reject side, on models that can; does nothing on the others.
void ReaderReject(ReaderContract& oReader);

/// Sends the current sheet out, on models that need the command. Some models' answer decides whether the sheet counts
/// as ejected.
void ReaderEject(ReaderContract& oReader, Boolean& bSheetEjected);

/// Searches the ports for the reader, first `iStartPort` if it is above 0 and then 1 to 16, and stores the port that
/// answered. False, without a touch of any line, for a model that cannot be searched for.
Boolean ReaderLocate(ReaderContract& oReader, Int16 iStartPort);

/// Asks the reader for its firmware version. False, with `sReturn` as it was, for a model that does not report it.
Boolean ReaderFirmware(ReaderContract& oReader, std::string& sReturn);

} // namespace kel
