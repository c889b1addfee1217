// SPDX-License-Identifier: MIT
#pragma once

#include "contract/ReaderContract.h"

#include <string>

namespace kel {

// The driver of the Scanmark family: text commands between ESC and CR, a form definition that is loaded into the
// reader at each start, a status block of 12 characters, and one byte a cell on reading.

/// What the reader's status says about the next sheet.
enum class ScantronReady : Int32 {
    Fault = -1, ///< a fault, or a query that failed: no sheet is to be read
    NoSheet = 0,
    Sheet = 1,
};

/// Resets the reader and loads the form. True if it is ready to read.
Boolean InitReaderST(ReaderContract& oReader);

/// Resets the reader, which forgets the form.
Boolean CloseReaderST(ReaderContract& oReader);

/// Resets the reader. On a line that is not open nothing is sent, and the result is True.
Boolean ResetReaderST(ReaderContract& oReader);

/// Sends a framed command and takes the reply. True if the reply begins with CR; nothing is reported otherwise.
Boolean SendCommandST(ReaderContract& oReader, const std::string& sCmd);

/// Asks for the status block. A fault is reported if the block has a known one.
ScantronReady CheckStatusST(ReaderContract& oReader);

/// Empties the input side; never fails and reports nothing.
void ClearBufferST(ReaderContract& oReader);

/// Loads one form a page of the job into the reader. True if every command was acknowledged.
Boolean DownloadFormST(ReaderContract& oReader);

/// Reads one sheet into a grid of 48 columns a side.
Boolean ReadPageST(ReaderContract& oReader);

/// Reads one sheet into the cells of the read windows.
Boolean ReadWindowsST(ReaderContract& oReader);

/// Hands the printer's first line to the reader, as many blanks in front as `Distance` says, 125 characters at most.
Boolean PrintST(ReaderContract& oReader);

/// Sends the sheet to the reject hopper, or out. The result says which way it was sent: True for the
/// hopper, False for out and for a reader that did not reply.
Boolean RejectPageST(ReaderContract& oReader, Boolean bRejectHopper);

/// What the loaded form says is to be subtracted from each data byte: 48 where the reader sends digits, else 0.
/// Set by `DownloadFormST`.
extern constinit thread_local Int16 iRecognitionOffset;

} // namespace kel
