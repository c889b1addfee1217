// SPDX-License-Identifier: MIT
#pragma once

#include "formats/JsonValue.h"
#include "profiles/clsKELReaderProfile.h"

namespace kel {

/// A model's record as JSON, the properties by their names in the order of the interface.
[[nodiscard]] inline Json jsonRecord(const clsKELReaderProfile& profile)
{
    Json record = Json::object();
    forEachProperty(profile,
                    [&](std::string_view name, const auto& value) { record[std::string(name)] = jsonValue(value); });
    return record;
}

} // namespace kel
