// SPDX-License-Identifier: MIT
#pragma once

#include "contract/ReaderContract.h"

namespace kel {

// The driver of five Chatsworth Data models: packed marks, a reply up to CR within the time-out, and a start of a sheet
// of each model's own.

/// Sets the reader up for its feeder or for single sheets, on models that need the command.
Boolean InitReaderCT(ReaderContract& oReader);

/// Reads one sheet into side 1: 128 rows of 12 columns, marks as `RecognitionThreshold` + 1. False without a report
/// when the reader refuses, as with an empty feeder.
Boolean ReadPageCT(ReaderContract& oReader);

/// Sends the sheet to the reject hopper, or out. True when the reader's reply holds a CR.
Boolean RejectPageCT(ReaderContract& oReader, Boolean bRejectHopper);

} // namespace kel
