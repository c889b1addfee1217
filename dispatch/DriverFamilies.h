// SPDX-License-Identifier: MIT
#pragma once

#include "contract/ReaderContract.h"

#include <string>

namespace kel {

/// What the dispatch calls of one driver family. An entry that is empty is a step that the family does not have.
struct DriverFamily {
    Boolean (*Init)(ReaderContract& oReader);
    Boolean (*Close)(ReaderContract& oReader);
    Boolean (*Read)(ReaderContract& oReader);
    Boolean (*Print)(ReaderContract& oReader, Boolean bAbort, Boolean& bSheetEjected) = nullptr;
    void (*Reject)(ReaderContract& oReader) = nullptr;
    void (*Eject)(ReaderContract& oReader, Boolean& bSheetEjected) = nullptr;
    /// Whether the reader replies on a port; opens and closes the line itself.
    Boolean (*Locate)(ReaderContract& oReader, Int16 iPort) = nullptr;
    /// The reader's firmware version; opens and closes the line itself.
    Boolean (*Firmware)(ReaderContract& oReader, std::string& sReturn) = nullptr;
};

/// The family that drives a model; nothing for a model that no driver serves.
[[nodiscard]] const DriverFamily* driverFamily(kelReaderType eReaderType);

} // namespace kel
