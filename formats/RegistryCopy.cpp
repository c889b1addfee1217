#include "formats/RegistryCopy.h"

#include <utility>

namespace kel {

namespace {

void addEntries(Registry& registry, const RegistryPath& key, std::vector<RegFileEntry>& entries)
{
    entries.push_back({key, std::nullopt, false, {}});
    for (const std::string& name : registry.valueNames(key.hive, key.subKey)) {
        if (std::optional<RegistryValue> value = registry.read(key.hive, key.subKey, name))
            entries.push_back({key, name, false, std::move(*value)});
    }
    for (const std::string& name : registry.subKeys(key.hive, key.subKey))
        addEntries(registry, below(key, name), entries);
}

bool removeKey(Registry& registry, const RegistryPath& key)
{
    return !registry.exists(key.hive, key.subKey) || registry.remove(key.hive, key.subKey, std::nullopt);
}

bool removeValue(Registry& registry, const RegistryPath& key, const std::string& name)
{
    return !registry.read(key.hive, key.subKey, name) || registry.remove(key.hive, key.subKey, name);
}

bool apply(Registry& registry, const RegFileEntry& entry)
{
    if (!entry.name)
        return entry.removed ? removeKey(registry, entry.key) : registry.create(entry.key.hive, entry.key.subKey);
    if (entry.removed)
        return removeValue(registry, entry.key, *entry.name);
    return registry.write(entry.key.hive, entry.key.subKey, *entry.name, entry.value);
}

} // namespace

std::vector<RegFileEntry> registryEntries(Registry& registry, const RegistryPath& key)
{
    std::vector<RegFileEntry> entries;
    if (registry.exists(key.hive, key.subKey))
        addEntries(registry, key, entries);
    return entries;
}

std::optional<RegFileEntry> applyRegistryEntries(Registry& registry, const std::vector<RegFileEntry>& entries)
{
    for (const RegFileEntry& entry : entries) {
        if (!apply(registry, entry))
            return entry;
    }
    return std::nullopt;
}

} // namespace kel
