// SPDX-License-Identifier: MIT
#pragma once

#include "contract/Dictionary.h"
#include "formats/Json.h"
#include "types/Arrays.h"

#include <string>
#include <string_view>
#include <vector>

namespace kel {

// How the parts of a sheet are written as JSON, and read again.

/// Texts of a line as an array.
[[nodiscard]] Json jsonTexts(const std::vector<std::string>& texts);
[[nodiscard]] std::vector<std::string> lineTextsOf(const Json& texts);

/// The named fields of a record as an object.
[[nodiscard]] Json jsonRecord(const Dictionary& fields);
[[nodiscard]] Dictionary recordOf(const Json& record);

/// A side as its size and its marks alone, each as row, column and value: `{"rows":63,"columns":48,"marks":[[2,5,9]]}`.
/// A side without bounds is null. JsonRefusal for a text that is not a side.
[[nodiscard]] Json jsonSide(const MarkArray& marks);
[[nodiscard]] MarkArray sideOf(const Json& side);

} // namespace kel
