// SPDX-License-Identifier: MIT
#pragma once

#include "contract/ReaderContract.h"

#include <string>

namespace kel {

// The driver of the Sekonic serial readers SR-601, SR-607, SR-700, SR-410 and SR-430: short commands with a class byte
// in front, emulation modes, read windows loaded at the start, sparse replies of (column, value) pairs.

/// Resets the reader and sets it up: threshold, and on the models with emulation modes also mark discrimination and
/// the read windows. Turns `Rejecter` off when it was asked for and the reader has none, and makes negative gaps of
/// the windows positive; both stay so. The stop flag is not looked at.
Boolean InitReaderSS(ReaderContract& oReader);

/// Nothing is sent at the end of a session; always True.
Boolean CloseReaderSS();

/// Sends a query and collects the reply; empty after a cancel, or after a time-out, which is reported. With
/// `bUseByteArray` each byte of the reply becomes its decimal text: the byte "0" becomes "48".
std::string SendCommandSS(ReaderContract& oReader, const std::string& sCmd, Boolean bUseByteArray);

/// Reports the error code `sErr`, the decimal text of a status byte, in the words of the model and its emulation mode.
/// Does nothing for a code that has no words.
void ReturnErrorSS(ReaderContract& oReader, const std::string& sErr);

/// Sets up the barcode unit for the next sheet, from the first barcode zone alone; a failure is not reported.
void InitBarcodeSS(ReaderContract& oReader);

/// Sets up the printer for the next sheet; a failure is not reported.
void InitPrinterSS(ReaderContract& oReader);

/// Reads one sheet: status, timing marks, barcode and then the marks, of the page or of the windows.
Boolean ReadPageSS(ReaderContract& oReader);

/// Fetches all marks of the sheet, in 48 columns a side.
Boolean ReadEntirePageSS(ReaderContract& oReader);

/// Fetches the marks of the read windows.
Boolean ReadWindowsSS(ReaderContract& oReader);

/// Puts the reply `sOutput` of the windows of one page into their cells of `iPageArr`. What comes before a failure in
/// the reply stays in the array.
void AddToArraySS(ReaderContract& oReader, const std::string& sOutput, Int16 iPage, MarkArray& iPageArr);

/// Prints the filled lines of `Printer` on the sheet that has been read, or with `bAbort` informs the reader that no
/// print follows. True if the reader says that it has printed.
Boolean PrintSS(ReaderContract& oReader, Boolean bAbort);

/// Sends the sheet to the reject hopper, or out. Without a rejecter and with a prepared printer the reader is only
/// informed that no print follows.
void RejectPageSS(ReaderContract& oReader, Boolean bRejectHopper);

/// Informs the reader that no print follows, and drops its reply. Leaves `InputLen` at 0.
void RejectPrintSS(ReaderContract& oReader);

} // namespace kel
