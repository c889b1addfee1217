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

/// What this machine is called.
[[nodiscard]] std::string hostName();

} // namespace kel
