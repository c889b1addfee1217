// SPDX-License-Identifier: MIT
#pragma once

#include "strings/TextNumber.h"
#include "types/Enumerations.h"

#include <optional>
#include <string_view>

namespace kel {

/// How an error code of the reader is reported: one text, or a text before the code and one after it.
struct ErrorTextSS {
    TextNumber text;
    std::optional<TextNumber> behindCode = std::nullopt;

    friend bool operator==(const ErrorTextSS&, const ErrorTextSS&) = default;
};

/// The words for an error code, which is the decimal text of a status byte. What a code means depends on the model, and
/// on the models with emulation modes on the mode. nullopt for a code that is not reported.
[[nodiscard]] std::optional<ErrorTextSS> errorTextSS(kelReaderType eReaderType, Int16 iEmulationMode,
                                                     std::string_view sErr);

} // namespace kel
