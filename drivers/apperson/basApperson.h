// SPDX-License-Identifier: MIT
#pragma once

#include "contract/ReaderContract.h"

#include <string>

namespace kel {

// The driver of the Apperson readers. Advantage Link and GradeMaster send the marks of a sheet as a block of bytes.
// BenchMark 3000 and Advantage 1200 send a line of text fields a sheet, from which the host makes the marks, and can
// grade by an answer key that is stored in them. None has a printer.

/// Starts the session; on the readers that grade it sends the reader's answer key too, if there is one.
Boolean InitReaderAP(ReaderContract& oReader);

/// Ends the session. True if the reader said so.
Boolean CloseReaderAP(ReaderContract& oReader);

/// The text for an error code of a reader.
[[nodiscard]] std::string ReturnErrorAP(Int16 iErrCode);

/// Reads one sheet by the procedure of the model.
Boolean ReadPageAP(ReaderContract& oReader);

/// Sends the sheet to the reject hopper, or out, on the BenchMark 3000; does nothing on the others. Always False.
Boolean RejectPageAP(ReaderContract& oReader);
Boolean EjectPageAP(ReaderContract& oReader);

/// Read one sheet into side 1. Its size is `LargestSide1Rows` by `LargestSide1Cols`: the readers do not announce how
/// many rows they send. Marks are the reader's own values (Advantage Link) or `RecognitionThreshold` (GradeMaster,
/// which also gives the identifier as the barcode).
Boolean ReadPageAPAdvantageLink(ReaderContract& oReader);
Boolean ReadPageAPGradeMaster(ReaderContract& oReader);

/// Read one line into a dictionary, raise `TranslateData` with it and store what the host made of it. On the Advantage
/// 1200 the host may ask for a further line before anything is stored.
Boolean ReadPageAPBenchMarkAdvantage(ReaderContract& oReader);
Boolean ReadPageAPAdvantage1200(ReaderContract& oReader);

/// Sends the answer key into a BenchMark 3000 or an Advantage 1200. True if the reader has taken all of it.
Boolean KeyReaderBenchMark3000Advantage1200(ReaderContract& oReader);

} // namespace kel
