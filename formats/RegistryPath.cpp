// SPDX-License-Identifier: MIT
#include "formats/RegistryPath.h"

#include "types/Text.h"

namespace kel {

namespace {

struct HiveName {
    kelReaderRegistryKey hive;
    std::string_view name;
    std::string_view shortName;
};

constexpr HiveName kHiveNames[] = {
    {kelReaderRegistryKeyClassesRoot, "HKEY_CLASSES_ROOT", "HKCR"},
    {kelReaderRegistryKeyCurrentUser, "HKEY_CURRENT_USER", "HKCU"},
    {kelReaderRegistryKeyLocalMachine, "HKEY_LOCAL_MACHINE", "HKLM"},
    {kelReaderRegistryKeyUsers, "HKEY_USERS", "HKU"},
    {kelReaderRegistryKeyPerformanceData, "HKEY_PERFORMANCE_DATA", "HKPD"},
    {kelReaderRegistryKeyCurrentConfig, "HKEY_CURRENT_CONFIG", "HKCC"},
};

} // namespace

std::optional<RegistryPath> registryPath(std::string_view text)
{
    const std::string_view hive = text.substr(0, text.find('\\'));
    for (const HiveName& row : kHiveNames) {
        if (!equalNoCase(hive, row.name) && !equalNoCase(hive, row.shortName))
            continue;
        RegistryPath path{row.hive, ""};
        for (const std::string& name : split(text.substr(hive.size()), '\\')) {
            if (name.empty())
                continue;
            if (!path.subKey.empty())
                path.subKey += '\\';
            path.subKey += name;
        }
        return path;
    }
    return std::nullopt;
}

std::string registryPathText(const RegistryPath& path)
{
    std::string text;
    for (const HiveName& row : kHiveNames) {
        if (row.hive == path.hive)
            text = row.name;
    }
    return path.subKey.empty() ? text : text + '\\' + path.subKey;
}

RegistryPath below(const RegistryPath& path, std::string_view name)
{
    return {path.hive, path.subKey.empty() ? std::string(name) : path.subKey + '\\' + std::string(name)};
}

} // namespace kel
