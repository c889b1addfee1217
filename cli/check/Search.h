// SPDX-License-Identifier: MIT
#pragma once

#include "cli/check/CheckRun.h"

#include <optional>
#include <string>
#include <vector>

namespace kel {

/// Where to look for a reader: how to ask, and how to set the line for it.
struct Place {
    Dialect dialect{};
    std::string settings;
    Int32 handshaking = 0;

    friend bool operator==(const Place&, const Place&) = default;
};

/// All places in which a reader could be instead of one of a model, the likely ones first.
[[nodiscard]] std::vector<Place> placesFor(kelReaderType model, const std::string& lineSettings);

/// A place in which something answers.
using Found = Place;

/// Asks in all places until something answers.
[[nodiscard]] std::optional<Found> searchReader(CheckRun& run);

/// "something answers at 9600,E,7,1 as an EZData does".
[[nodiscard]] std::string foundText(const Found& found);
[[nodiscard]] std::string foundAdvice(const Found& found, kelReaderType model);

/// What is wrong if a reader is found there; none if it is where it should be.
[[nodiscard]] Cause foundCause(const Found& found, kelReaderType model, const std::string& lineSettings);

} // namespace kel
