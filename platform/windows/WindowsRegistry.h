// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Registry.h"

namespace kel {

/// The registry of Windows, through its ANSI functions: a text is stored in the user's code page, and comes as the
/// registry holds it, with the terminator after it if it was stored with one.
class WindowsRegistry final : public Registry {
public:
    [[nodiscard]] std::optional<RegistryValue> read(kelReaderRegistryKey hive, std::string_view subKey,
                                                    std::string_view name) override;
    [[nodiscard]] std::size_t lookUpLength(const RegistryValue& value) const override;
    bool create(kelReaderRegistryKey hive, std::string_view subKey) override;
    bool write(kelReaderRegistryKey hive, std::string_view subKey, std::string_view name,
               const RegistryValue& value) override;
    bool remove(kelReaderRegistryKey hive, std::string_view subKey, std::optional<std::string_view> name) override;
    [[nodiscard]] bool exists(kelReaderRegistryKey hive, std::string_view subKey) override;
    [[nodiscard]] std::vector<std::string> valueNames(kelReaderRegistryKey hive, std::string_view subKey) override;
    [[nodiscard]] std::vector<std::string> subKeys(kelReaderRegistryKey hive, std::string_view subKey) override;
};

} // namespace kel
