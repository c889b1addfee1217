// SPDX-License-Identifier: MIT
#pragma once

#include "host/Reader.h"
#include "store/Entry.h"

#include <chrono>
#include <string>

namespace kel {

/// How a reader is set, once it is connected.
[[nodiscard]] Setup setupOf(host::Reader& reader);

/// What a batch is called that nobody has named: the second in which it began, in UTC.
[[nodiscard]] std::string batchName(std::chrono::system_clock::time_point begin);

/// What a station is called that nobody has named: the machine's name, with "_" for what is no letter, digit or "-".
[[nodiscard]] std::string stationName();

} // namespace kel
