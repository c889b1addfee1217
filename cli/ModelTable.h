// SPDX-License-Identifier: MIT
#pragma once

#include "profiles/clsKELReaderProfile.h"
#include "types/Reference.h"

#include <string>
#include <vector>

namespace kel {

/// The records of models, for the commands that show them.
using ProfileList = std::vector<Reference<clsKELReaderProfile>>;

/// A line for each model: number, name and the most important properties.
[[nodiscard]] std::string modelsAsTable(const ProfileList& profiles);

/// One model in all its properties, a line each.
[[nodiscard]] std::string modelAsTable(const clsKELReaderProfile& profile);

/// An array of records, in lines of one record each.
[[nodiscard]] std::string modelsAsJson(const ProfileList& profiles);

/// A heading with the property names, and a line for each record.
[[nodiscard]] std::string modelsAsCsv(const ProfileList& profiles);

} // namespace kel
