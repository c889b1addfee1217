// SPDX-License-Identifier: MIT
#pragma once

#include "formats/Json.h"
#include "store/Entry.h"
#include "store/StoredSheets.h"

#include <vector>

namespace kel {

// The data of a station's page, as JSON.

/// A sheet of the store in a row: where it comes from, what was read from it, how many marks it has (-1 for a side that
/// was not read).
[[nodiscard]] Json pageRow(const Entry& sheet);

/// What a search has found: "sheets", and "next" to go on with.
[[nodiscard]] Json pageRows(const FoundSheets& found);

/// Batches: reader, name and sheets.
[[nodiscard]] Json pageBatches(const std::vector<StoredBatch>& batches);

} // namespace kel
