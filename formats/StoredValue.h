// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Registry.h"

namespace kel {

/// A value without the zero that ends its text, or its list of texts: Windows keeps it.
[[nodiscard]] inline RegistryValue withoutEnd(RegistryValue value)
{
    using namespace std::string_view_literals;
    const bool list = value.type == RegistryType::MultiText;
    if (isText(value.type) && value.data.ends_with(list ? "\0\0"sv : "\0"sv))
        value.data.pop_back();
    return value;
}

} // namespace kel
