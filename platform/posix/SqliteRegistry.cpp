// SPDX-License-Identifier: MIT
#include "platform/posix/SqliteRegistry.h"

#include "platform/posix/HiveStore.h"

namespace kel {

SqliteRegistry::SqliteRegistry(RegistryFolders folders) : folders_(std::move(folders)) {}

SqliteRegistry::~SqliteRegistry() = default;

/// The store of a hive; null for a number that is none.
HiveStore* SqliteRegistry::store(kelReaderRegistryKey hive)
{
    const auto found = stores_.find(hive);
    if (found != stores_.end())
        return found->second.get();
    const std::optional<HiveFile> file = folders_.hive(hive);
    return stores_.emplace(hive, file ? std::make_unique<HiveStore>(*file) : nullptr).first->second.get();
}

std::optional<RegistryValue> SqliteRegistry::read(kelReaderRegistryKey hive, std::string_view subKey,
                                                  std::string_view name)
{
    HiveStore* found = store(hive);
    return found ? found->read(subKey, name) : std::nullopt;
}

bool SqliteRegistry::create(kelReaderRegistryKey hive, std::string_view subKey)
{
    HiveStore* found = store(hive);
    return found && found->create(subKey);
}

bool SqliteRegistry::write(kelReaderRegistryKey hive, std::string_view subKey, std::string_view name,
                           const RegistryValue& value)
{
    HiveStore* found = store(hive);
    return found && found->write(subKey, name, value);
}

bool SqliteRegistry::remove(kelReaderRegistryKey hive, std::string_view subKey, std::optional<std::string_view> name)
{
    HiveStore* found = store(hive);
    if (!found)
        return false;
    return name ? found->removeValue(subKey, *name) : found->removeKey(subKey);
}

bool SqliteRegistry::together(kelReaderRegistryKey hive, const std::function<bool()>& body)
{
    HiveStore* found = store(hive);
    return found ? found->together(body) : body();
}

bool SqliteRegistry::exists(kelReaderRegistryKey hive, std::string_view subKey)
{
    HiveStore* found = store(hive);
    return found && found->exists(subKey);
}

std::vector<std::string> SqliteRegistry::valueNames(kelReaderRegistryKey hive, std::string_view subKey)
{
    HiveStore* found = store(hive);
    return found ? found->valueNames(subKey) : std::vector<std::string>();
}

std::vector<std::string> SqliteRegistry::subKeys(kelReaderRegistryKey hive, std::string_view subKey)
{
    HiveStore* found = store(hive);
    return found ? found->subKeys(subKey) : std::vector<std::string>();
}

} // namespace kel
