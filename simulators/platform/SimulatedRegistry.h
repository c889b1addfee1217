// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Registry.h"

#include <map>

namespace kel {

/// A registry in memory.
class SimulatedRegistry final : public Registry {
public:
    enum class Access { None, ReadOnly, Full };

    [[nodiscard]] std::optional<RegistryValue> read(kelReaderRegistryKey hive, std::string_view subKey,
                                                    std::string_view name) override;
    bool create(kelReaderRegistryKey hive, std::string_view subKey) override;
    bool write(kelReaderRegistryKey hive, std::string_view subKey, std::string_view name,
               const RegistryValue& value) override;
    bool remove(kelReaderRegistryKey hive, std::string_view subKey, std::optional<std::string_view> name) override;
    [[nodiscard]] bool exists(kelReaderRegistryKey hive, std::string_view subKey) override;
    [[nodiscard]] std::vector<std::string> valueNames(kelReaderRegistryKey hive, std::string_view subKey) override;
    [[nodiscard]] std::vector<std::string> subKeys(kelReaderRegistryKey hive, std::string_view subKey) override;

    /// What this user may do in a hive; at first everything.
    void access(kelReaderRegistryKey hive, Access access) { access_[hive] = access; }

    /// Shorthand for a text value, and for reading one back (empty if it is not there).
    void text(kelReaderRegistryKey hive, std::string_view subKey, std::string_view name, std::string_view value);
    [[nodiscard]] std::string text(kelReaderRegistryKey hive, std::string_view subKey, std::string_view name);

private:
    struct NoCase {
        bool operator()(const std::string& a, const std::string& b) const;
    };
    struct Key {
        std::map<std::string, RegistryValue, NoCase> values;
        std::map<std::string, Key, NoCase> keys;
    };

    [[nodiscard]] bool may(kelReaderRegistryKey hive, Access wanted) const;
    [[nodiscard]] Key* find(kelReaderRegistryKey hive, std::string_view subKey);
    [[nodiscard]] Key* make(kelReaderRegistryKey hive, std::string_view subKey);

    std::map<kelReaderRegistryKey, Key> hives_;
    std::map<kelReaderRegistryKey, Access> access_;
};

} // namespace kel
