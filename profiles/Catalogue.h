// SPDX-License-Identifier: MIT
#pragma once

#include "profiles/CatalogueModel.h"
#include "types/Export.h"

#include <span>

namespace kel {

/// The models of one maker.
struct CatalogueGroup {
    kelProfileType ProfileType; ///< the one bit under which they are chosen
    std::span<const CatalogueModel> Models;
};

/// The makers and their models, in the order in which records and the dialog's list have them.
[[nodiscard]] KEL_INTERNAL std::span<const CatalogueGroup> catalogue();

/// What stands before them in every choice: no reader.
[[nodiscard]] const CatalogueModel& noReader();

} // namespace kel
