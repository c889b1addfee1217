// SPDX-License-Identifier: MIT
#pragma once

#include "contract/Dictionary.h"
#include "failure/ToVariant.h"

namespace kel {

/// A dictionary in a dump: who enumerates it gets its keys.
[[nodiscard]] inline Variant toVariant(const Dictionary& oDictionary)
{
    return ObjectValue{"Dictionary", [&oDictionary] {
                           std::vector<Variant> keys;
                           for (const DictionaryKey& key : oDictionary.Keys())
                               keys.push_back(std::visit([](const auto& value) { return toVariant(value); }, key));
                           return keys;
                       }};
}

} // namespace kel
