// SPDX-License-Identifier: MIT
#pragma once

#include "formats/Json.h"
#include "station/Station.h"

#include <string>

namespace kel {

/// A station's state as JSON; times in UTC.
[[nodiscard]] Json jsonState(const StationState& state);

// What is made of that JSON:

/// A table for people: a row for each reader, with its last problem and what to do about it.
[[nodiscard]] std::string stateTable(const Json& state);

/// Metrics in the text format of Prometheus.
[[nodiscard]] std::string stateMetrics(const Json& state);

} // namespace kel
