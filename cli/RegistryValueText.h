// SPDX-License-Identifier: MIT
#pragma once

#include "formats/JsonValue.h"
#include "platform/Registry.h"

#include <string>

namespace kel {

/// The kind of a value by its usual name, "REG_SZ"; by its number where it has no name.
[[nodiscard]] std::string registryTypeName(RegistryType type);

/// A value for the eye: a text as it is, several texts with \0 between them, a number in decimal, bytes as 0a,ff.
[[nodiscard]] std::string registryValueText(const RegistryValue& value);

/// A value as JSON: a text, a list of texts, a number, and bytes as a text of the form 0a,ff.
[[nodiscard]] Json registryValueJson(const RegistryValue& value);

} // namespace kel
