// SPDX-License-Identifier: MIT
#pragma once

#include "contract/ReaderContract.h"

#include <string>

namespace kel {

// The driver of the EZData and the ACP-100: framed commands, a stored configuration that is corrected at the start,
// packed marks. A reply is judged by how much of it has come after a fixed pause; there is no time-out.

/// Reads the reader's configuration, corrects what differs, and takes out a sheet that lies in its path.
Boolean InitReaderNCSEZ(ReaderContract& oReader);

/// Ends the session. After a stop it first takes out a sheet that the reader was still sending.
Boolean CloseReaderNCSEZ(ReaderContract& oReader);

/// Changes one value of the configuration, `sExecCmd` being the command and `sReturn` the echo that the reader gives,
/// and seals it with a checksum and a reset.
Boolean SetValuesNCSEZ(ReaderContract& oReader, const std::string& sExecCmd, const std::string& sReturn);

/// Whether the two digits of the reader's threshold stand for `iRecognitionThreshold`, 0 to 9. Digits that stand for
/// none pass.
[[nodiscard]] Boolean CheckThresholdNCSEZ(Int16 iRecognitionThreshold, const std::string& sScannerThreshold);

/// Reads one sheet into side 1: 150 rows of 12 columns, marks as `RecognitionThreshold` + 1.
Boolean ReadPageNCSEZ(ReaderContract& oReader);

/// Sends the sheet to the reject hopper, or out.
Boolean RejectPageNCSEZ(ReaderContract& oReader, Boolean bRejectHopper);

/// Whether a reader of these makers replies on a port. Opens the port and closes it again, also where it failed.
Boolean LocateReaderNCSEZ(ReaderContract& oReader, Int16 iPort);

/// Asks the reader on the reader object's port for its firmware version. Opens the port and closes it again.
Boolean FirmwareVersionNCSEZ(ReaderContract& oReader, std::string& sReturn);

} // namespace kel
