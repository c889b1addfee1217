// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Registry.h"
#include "platform/RegistryTransaction.h"
#include "platform/posix/RegistryFolders.h"

#include <map>
#include <memory>

namespace kel {

class HiveStore;

/// The registry in SQLite files, one a hive.
///
/// A hive's file is created by the first write; reading never creates one. Every write, or what is written together, is
/// a transaction of its own, so that a process that dies leaves the old value or the new one, and several processes may
/// write at once: each waits its turn. A damaged file is set aside under another name, which standard error reports,
/// and a new one begins with the next write. Names are compared without regard to the case of ASCII letters, and keep
/// the case in which they were written first. Names of values and keys come in alphabetical order.
class SqliteRegistry final : public Registry, public RegistryTransaction {
public:
    explicit SqliteRegistry(RegistryFolders folders = RegistryFolders::fromEnvironment());
    ~SqliteRegistry() override;
    SqliteRegistry(const SqliteRegistry&) = delete;
    SqliteRegistry& operator=(const SqliteRegistry&) = delete;

    [[nodiscard]] std::optional<RegistryValue> read(kelReaderRegistryKey hive, std::string_view subKey,
                                                    std::string_view name) override;
    bool create(kelReaderRegistryKey hive, std::string_view subKey) override;
    bool write(kelReaderRegistryKey hive, std::string_view subKey, std::string_view name,
               const RegistryValue& value) override;
    bool remove(kelReaderRegistryKey hive, std::string_view subKey, std::optional<std::string_view> name) override;
    bool together(kelReaderRegistryKey hive, const std::function<bool()>& body) override;
    [[nodiscard]] bool exists(kelReaderRegistryKey hive, std::string_view subKey) override;
    [[nodiscard]] std::vector<std::string> valueNames(kelReaderRegistryKey hive, std::string_view subKey) override;
    [[nodiscard]] std::vector<std::string> subKeys(kelReaderRegistryKey hive, std::string_view subKey) override;

private:
    [[nodiscard]] HiveStore* store(kelReaderRegistryKey hive);

    RegistryFolders folders_;
    std::map<kelReaderRegistryKey, std::unique_ptr<HiveStore>> stores_;
};

} // namespace kel
