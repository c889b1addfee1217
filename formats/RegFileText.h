#pragma once

#include "platform/Registry.h"

#include <string_view>

namespace kel {

/// The first line of a registry file.
inline constexpr std::string_view kRegFileHeading = "Windows Registry Editor Version 5.00";

/// Whether values of this kind are texts, which a registry file holds in UTF-16 with a zero at the end.
[[nodiscard]] constexpr bool isText(RegistryType type)
{
    return type == RegistryType::Text || type == RegistryType::ExpandableText || type == RegistryType::MultiText;
}

} // namespace kel
