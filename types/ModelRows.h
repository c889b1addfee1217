// SPDX-License-Identifier: MIT
#pragma once

#include "types/Enumerations.h"

#include <functional>

namespace kel {

/// The number of the first model that does not have exactly one row in a table, 0 when all models have. `type` says
/// where a row holds its model, and `kelReaderTypeNone` may have a row. For a table in the code:
///
///     static_assert(modelWithoutRow(kModelRows, &ModelRow::eReaderType) == 0, "the model of this number ...");
///
/// which g++ reports with the number that is missing.
template <class Rows, class Type>
[[nodiscard]] consteval std::int32_t modelWithoutRow(const Rows& rows, Type type)
{
    for (std::int32_t model = kelReaderTypeNone + 1; model < kReaderTypeCount; ++model) {
        int found = 0;
        for (const auto& row : rows)
            found += static_cast<std::int32_t>(std::invoke(type, row)) == model ? 1 : 0;
        if (found != 1)
            return model;
    }
    return 0;
}

} // namespace kel
