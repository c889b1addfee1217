// SPDX-License-Identifier: MIT
#include "platform/Registry.h"

#include <algorithm>

namespace kel {

std::size_t Registry::lookUpLength(const RegistryValue& value) const
{
    // A character has one byte that does not continue another's.
    const auto startsCharacter = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U; };
    if (!isText(value.type))
        return value.data.size();
    return static_cast<std::size_t>(std::count_if(value.data.begin(), value.data.end(), startsCharacter));
}

} // namespace kel
