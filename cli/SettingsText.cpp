// SPDX-License-Identifier: MIT
#include "cli/SettingsText.h"

#include "formats/JsonValue.h"
#include "host/LoadedSettings.h"
#include "host/PropertyTable.h"

namespace kel {

std::string settingsText(const clsKELReader& reader, bool asJson)
{
    constexpr std::size_t kSettingWidth = 22;
    Json record = Json::object();
    std::string table;
    for (const std::string& name : host::loadedProperties()) {
        const Json value = host::propertyNamed(name).get(reader);
        record[name] = value;
        table += name + std::string(kSettingWidth - name.size(), ' ') +
                 (value.is_string() ? value.get<std::string>() : jsonText(value)) + "\n";
    }
    return asJson ? jsonText(record) + "\n" : table;
}

} // namespace kel
