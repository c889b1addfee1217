// SPDX-License-Identifier: MIT
#pragma once

#include "types/Enumerations.h"
#include "types/Numbers.h"

#include <optional>

namespace kel {

/// The command by which a model begins a sheet.
enum class SheetStartCT {
    None,   ///< it sends by itself
    Byte11, ///< 0x11, whose reply is the sheet itself
    Framed, ///< the framed "E", with a reply up to CR
    Feed,   ///< ESC "F" CR when the feeder is used, with a reply up to CR; by itself otherwise
};

/// The two set-up commands of a model.
struct SetUpCT {
    const char* first;
    const char* second;
};

/// What is different about one model.
struct ModelCT {
    kelReaderType type;
    SheetStartCT start;
    bool cancellable;                    ///< whether the stop flag counts while a sheet is awaited and read
    bool probed;                         ///< whether the start of a session ends with "R7777I00E"
    std::optional<Byte> refusal;         ///< a byte by which the model refuses a sheet
    std::optional<SetUpCT> singleSheets; ///< without the feeder
    std::optional<SetUpCT> feeder;
};

/// The row of a model. A model outside the family gets no commands.
[[nodiscard]] const ModelCT& modelCT(kelReaderType eReaderType);

} // namespace kel
