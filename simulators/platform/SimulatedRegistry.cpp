// SPDX-License-Identifier: MIT
#include "simulators/platform/SimulatedRegistry.h"

#include "types/Text.h"

namespace kel {

namespace {

/// The names of a path, without the empty ones that doubled or outer backslashes would give.
std::vector<std::string> namesOf(std::string_view subKey)
{
    std::vector<std::string> names = split(subKey, '\\');
    std::erase_if(names, [](const std::string& name) { return name.empty(); });
    return names;
}

} // namespace

bool SimulatedRegistry::NoCase::operator()(const std::string& a, const std::string& b) const
{
    return compareNoCase(a, b) < 0;
}

bool SimulatedRegistry::may(kelReaderRegistryKey hive, Access wanted) const
{
    const auto found = access_.find(hive);
    return found == access_.end() || found->second >= wanted;
}

SimulatedRegistry::Key* SimulatedRegistry::find(kelReaderRegistryKey hive, std::string_view subKey)
{
    if (!may(hive, Access::ReadOnly))
        return nullptr;
    Key* key = &hives_[hive];
    for (const std::string& name : namesOf(subKey)) {
        const auto found = key->keys.find(name);
        if (found == key->keys.end())
            return nullptr;
        key = &found->second;
    }
    return key;
}

std::optional<RegistryValue> SimulatedRegistry::read(kelReaderRegistryKey hive, std::string_view subKey,
                                                     std::string_view name)
{
    const Key* key = find(hive, subKey);
    if (!key)
        return std::nullopt;
    const auto found = key->values.find(std::string(name));
    if (found == key->values.end())
        return std::nullopt;
    return found->second;
}

SimulatedRegistry::Key* SimulatedRegistry::make(kelReaderRegistryKey hive, std::string_view subKey)
{
    if (!may(hive, Access::Full))
        return nullptr;
    Key* key = &hives_[hive];
    for (const std::string& step : namesOf(subKey))
        key = &key->keys[step];
    return key;
}

bool SimulatedRegistry::create(kelReaderRegistryKey hive, std::string_view subKey)
{
    return make(hive, subKey) != nullptr;
}

bool SimulatedRegistry::write(kelReaderRegistryKey hive, std::string_view subKey, std::string_view name,
                              const RegistryValue& value)
{
    Key* key = make(hive, subKey);
    if (!key)
        return false;
    key->values[std::string(name)] = value;
    return true;
}

bool SimulatedRegistry::remove(kelReaderRegistryKey hive, std::string_view subKey, std::optional<std::string_view> name)
{
    if (!may(hive, Access::Full))
        return false;
    if (name) {
        Key* key = find(hive, subKey);
        return key && key->values.erase(std::string(*name)) > 0;
    }
    std::vector<std::string> names = namesOf(subKey);
    if (names.empty())
        return false;
    const std::string last = names.back();
    Key* key = &hives_[hive];
    for (std::size_t step = 0; step + 1 < names.size(); ++step) {
        const auto found = key->keys.find(names[step]);
        if (found == key->keys.end())
            return false;
        key = &found->second;
    }
    return key->keys.erase(last) > 0;
}

bool SimulatedRegistry::exists(kelReaderRegistryKey hive, std::string_view subKey)
{
    return find(hive, subKey) != nullptr;
}

std::vector<std::string> SimulatedRegistry::valueNames(kelReaderRegistryKey hive, std::string_view subKey)
{
    std::vector<std::string> names;
    if (const Key* key = find(hive, subKey))
        for (const auto& [name, value] : key->values)
            names.push_back(name);
    return names;
}

std::vector<std::string> SimulatedRegistry::subKeys(kelReaderRegistryKey hive, std::string_view subKey)
{
    std::vector<std::string> names;
    if (const Key* key = find(hive, subKey))
        for (const auto& [name, below] : key->keys)
            names.push_back(name);
    return names;
}

void SimulatedRegistry::text(kelReaderRegistryKey hive, std::string_view subKey, std::string_view name,
                             std::string_view value)
{
    write(hive, subKey, name, {RegistryType::Text, std::string(value)});
}

std::string SimulatedRegistry::text(kelReaderRegistryKey hive, std::string_view subKey, std::string_view name)
{
    return read(hive, subKey, name).value_or(RegistryValue{}).data;
}

} // namespace kel
