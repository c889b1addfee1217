// SPDX-License-Identifier: MIT
#pragma once

#include "com/OleVariant.h"

#include <optional>
#include <string>
#include <variant>

namespace kel::com {

/// What a host has passed as the index of a collection: a position or a key.
using CollectionIndex = std::variant<Int32, std::string>;

/// A text is a key and any number is a position, rounded to a whole one; 13 "Type mismatch" for anything else.
[[nodiscard]] CollectionIndex indexOf(const VARIANT& index);

/// A position of a collection that knows no keys: failure 5 for a key, since none is there.
[[nodiscard]] Int32 positionOf(const VARIANT& index);
/// The same for an argument that may be left out.
[[nodiscard]] std::optional<Int32> optionalPositionOf(const VARIANT& index);

} // namespace kel::com
