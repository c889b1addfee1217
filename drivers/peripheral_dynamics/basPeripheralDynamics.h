// SPDX-License-Identifier: MIT
#pragma once

#include "contract/ReaderContract.h"

namespace kel {

// The driver of the Peripheral Dynamics VMR138: one-character commands, marks as bits, a threshold that can only be
// stepped. The reader is one-sided and has neither printer nor barcode unit.

/// Starts the session and walks the reader's threshold to `RecognitionThreshold`.
Boolean InitReaderPD(ReaderContract& oReader);

/// Ends the session.
void CloseReaderPD(ReaderContract& oReader);

/// Steps the reader's threshold to `RecognitionThreshold`, with a pause of `lSleepTime` milliseconds a step.
Boolean SetRecThresholdPD(ReaderContract& oReader, Int32 lSleepTime);

/// Asks for the two status bytes. False, after one report and an eject, when one of the fault bits is set.
Boolean CheckStatusPD(ReaderContract& oReader, Int16& iStatusByte1, Int16& iStatusByte2);

/// Reads one sheet into side 1: 500 rows of 14 columns, marks as `RecognitionThreshold` + 1 in columns 1 to 12.
Boolean ReadPagePD(ReaderContract& oReader);

/// Sends the sheet to the reject hopper, or out.
void RejectPagePD(ReaderContract& oReader);
void EjectPagePD(ReaderContract& oReader);

} // namespace kel
