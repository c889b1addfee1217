// SPDX-License-Identifier: MIT
#pragma once

#include "host/Reader.h"
#include "store/Entry.h"

#include <chrono>
#include <string>

namespace kel {

/// The settings of a reader, once it is connected.
[[nodiscard]] Setup setupOf(host::Reader& reader);

/// The default name of a batch: the second in which it began, in UTC.
[[nodiscard]] std::string batchName(std::chrono::system_clock::time_point begin);

/// The default name of a station: the machine's name, with "_" for every character except letters, digits and "-".
[[nodiscard]] std::string stationName();

} // namespace kel
