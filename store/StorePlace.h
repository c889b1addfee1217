// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

namespace kel {

/// Where a store is, for which a link may stand: its other files are beside it.
[[nodiscard]] std::filesystem::path placeOf(std::filesystem::path store);

/// The same file; StoreProblem if there is none.
[[nodiscard]] const std::filesystem::path& existingStore(const std::filesystem::path& store);

} // namespace kel
