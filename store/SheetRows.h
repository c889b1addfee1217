// SPDX-License-Identifier: MIT
#pragma once

#include "host/Events.h"
#include "store/Entry.h"

#include <string>
#include <vector>

namespace kel {

/// Fields as one line of CSV, line end included: a field with a comma, a quote or a line end is quoted.
[[nodiscard]] std::string csvLine(const std::vector<std::string>& fields);

/// What a row of a sheet holds, and its heading.
[[nodiscard]] std::vector<std::string> csvHeading();
[[nodiscard]] std::vector<std::string> csvFields(const host::Sheet& sheet);

/// The line of a sheet of a store, with where it comes from, and the heading of such lines. A report has none.
[[nodiscard]] std::string csvEntryHeading();
[[nodiscard]] std::string csvEntry(const Entry& entry);

} // namespace kel
