// SPDX-License-Identifier: MIT
#pragma once

#include "store/Entry.h"

#include <filesystem>

namespace kel {

/// The number of the last sheet that this store, which exists, has from a batch of a reader; 0 if it has none.
/// StoreProblem if it cannot be read.
[[nodiscard]] Int32 lastNumber(const std::filesystem::path& store, const Origin& origin);

} // namespace kel
