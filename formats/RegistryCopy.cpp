// SPDX-License-Identifier: MIT
#include "formats/RegistryCopy.h"

#include "formats/StoredValue.h"
#include "platform/RegistryTransaction.h"

#include <algorithm>
#include <functional>
#include <set>
#include <utility>

namespace kel {

namespace {

void addEntry(Registry& registry, const RegistryPath& key, std::vector<RegFileEntry>& entries)
{
    entries.push_back({key, std::nullopt, false, {}});
    for (const std::string& name : registry.valueNames(key.hive, key.subKey)) {
        if (std::optional<RegistryValue> value = registry.read(key.hive, key.subKey, name))
            entries.push_back({key, name, false, withoutEnd(std::move(*value))});
    }
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
    std::vector<RegistryPath> toCome; // the next one last
    if (registry.exists(key.hive, key.subKey))
        toCome.push_back(key);
    while (!toCome.empty()) {
        const RegistryPath next = std::move(toCome.back());
        toCome.pop_back();
        addEntry(registry, next, entries);
        const std::vector<std::string> names = registry.subKeys(next.hive, next.subKey);
        for (auto name = names.rbegin(); name != names.rend(); ++name)
            toCome.push_back(below(next, *name));
    }
    return entries;
}

std::optional<RegFileEntry> applyRegistryEntries(Registry& registry, const std::vector<RegFileEntry>& entries)
{
    std::optional<RegFileEntry> refused;
    std::function<bool()> applyAll = [&] {
        const auto found = std::find_if(entries.begin(), entries.end(),
                                        [&](const RegFileEntry& entry) { return !apply(registry, entry); });
        if (found != entries.end())
            refused = *found;
        return !refused;
    };
    std::set<kelReaderRegistryKey> hives;
    for (const RegFileEntry& entry : entries)
        hives.insert(entry.key.hive);
    if (auto* const store = dynamic_cast<RegistryTransaction*>(&registry)) {
        for (const kelReaderRegistryKey hive : hives)
            applyAll = [store, hive, body = std::move(applyAll)] { return store->together(hive, body); };
    }
    if (!applyAll() && !refused)
        refused = entries.back(); // each was taken, and the whole was not
    return refused;
}

} // namespace kel
