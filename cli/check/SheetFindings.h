// SPDX-License-Identifier: MIT
#pragma once

#include "cli/check/CheckResult.h"
#include "cli/check/Dialects.h"
#include "cli/check/Dialogue.h"
#include "host/Events.h"
#include "platform/LineErrors.h"

#include <optional>
#include <string>
#include <vector>

namespace kel {

/// What a session with copies of one sheet has brought.
struct SheetsSeen {
    kelReaderType model{};
    bool usb = false;
    Int32 wanted = 0;
    std::vector<host::Sheet> sheets{};
    std::vector<host::Failure> failures{};
    Dialogue dialogue{};
    LineErrors errors{};
    double character = 1;                             ///< milliseconds that one takes on the line
    std::optional<Int16> formRows{};                  ///< of side 1, if the form is that of the sheets
    std::optional<std::vector<std::string>> behind{}; ///< what the reader said when it was asked after the sheets
    bool swallowsXon = false;                         ///< it was found out that 11 does not get through
    Int16 highestMark = 0;                            ///< that the model sends; 0 if anything goes
};

/// The checks that this answers.
[[nodiscard]] CheckResults judgeSheets(const SheetsSeen& seen);

/// The rows of a sheet's side. A record's answers are rows, with A in the first column.
using SheetRows = std::vector<std::vector<Int16>>;
[[nodiscard]] SheetRows rowsOf(const host::Sheet& sheet, int side);

/// Whether the rows of a sheet are those of another without a few from the middle.
[[nodiscard]] bool missesRows(const SheetRows& rows, const SheetRows& whole);

/// The column, from 1, that is dark on every row of every sheet; nothing if there is none, or if all are.
[[nodiscard]] std::optional<std::size_t> darkColumn(const std::vector<SheetRows>& sheets);

/// Why fewer sheets came than were put in.
[[nodiscard]] Cause causeOfMissing(const SheetsSeen& seen);

/// Whether a VMR138's sheets lack bytes, and all bytes that did come are none of those that a port may take for XON or
/// XOFF. It sends two a row: an odd number has lost one. `rowsAreMissing` if an even number did not.
[[nodiscard]] bool missesXon(const SheetsSeen& seen, bool rowsAreMissing);

/// What the pace of the reader's bytes says of the line. None if it is as it should be.
[[nodiscard]] Cause causeOfPace(const Pace& pace, double character);

} // namespace kel
