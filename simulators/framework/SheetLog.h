// SPDX-License-Identifier: MIT
#pragma once

#include "types/Numbers.h"

#include <string>

namespace kel {

/// What happened to a sheet in a simulated reader.
enum class SheetEvent {
    Fed,      ///< taken from the feeder
    Empty,    ///< the reader wanted a sheet and there was none
    Jammed,   ///< stuck in the transport
    Read,     ///< its marks were sent
    Printed,  ///< `text` was printed as line `line` at `position`
    Rejected, ///< sent to the reject stacker
    Ejected,  ///< sent to the stacker named in `text`, the usual one if none is named
    Ended,    ///< the host closed the page or the session
};

/// One entry of a simulated reader's log.
struct SheetRecord {
    SheetEvent event{};
    Int32 sheet = 0;       ///< which sheet, from 1; 0 when none was under way
    std::string text = {}; ///< what was printed, or the name of a stacker
    Int32 line = 0;        ///< which print line, from 1
    Int32 position = 0;    ///< where the print begins, in the model's units

    friend bool operator==(const SheetRecord&, const SheetRecord&) = default;
};

/// "fed", "printed" and so on.
[[nodiscard]] const char* nameOf(SheetEvent event);

/// The entry as one JSON object without a line end: {"event":"printed","sheet":2,"text":"AB","line":1,"position":10}.
/// Members that say nothing are left out.
[[nodiscard]] std::string toJson(const SheetRecord& record);

} // namespace kel
