// SPDX-License-Identifier: MIT
#include "platform/posix/RegistryFolders.h"

#include <array>
#include <cstdlib>
#include <pwd.h>
#include <unistd.h>

namespace kel {

namespace {

constexpr const char* kOurFolder = "kelreader";

/// A folder from the environment; one that is not absolute counts as none.
std::filesystem::path folderFrom(const char* variable)
{
    const char* value = ::getenv(variable);
    const std::filesystem::path folder = value ? value : "";
    return folder.is_absolute() ? folder : std::filesystem::path();
}

std::filesystem::path homeFolder()
{
    if (std::filesystem::path folder = folderFrom("HOME"); !folder.empty())
        return folder;
    std::array<char, 16384> room{};
    passwd entry{};
    passwd* found = nullptr;
    if (::getpwuid_r(::geteuid(), &entry, room.data(), room.size(), &found) == 0 && found)
        return found->pw_dir;
    return {};
}

std::filesystem::path userFolder()
{
    if (const std::filesystem::path folder = folderFrom("XDG_CONFIG_HOME"); !folder.empty())
        return folder / kOurFolder;
    const std::filesystem::path home = homeFolder();
    return home.empty() ? home : home / ".config" / kOurFolder;
}

} // namespace

RegistryFolders RegistryFolders::fromEnvironment()
{
    if (const char* folder = ::getenv("KELREADER_REGISTRY_DIR"); folder && *folder)
        return RegistryFolders(std::filesystem::absolute(folder));
    return RegistryFolders(userFolder(), std::filesystem::path("/etc") / kOurFolder);
}

std::optional<HiveFile> RegistryFolders::hive(kelReaderRegistryKey hive) const
{
    const auto in = [&](const std::filesystem::path& folder, const char* name) -> std::optional<HiveFile> {
        if (folder.empty())
            return std::nullopt;
        return HiveFile{folder / (std::string(name) + ".sqlite"), folder != userFolder_};
    };
    switch (hive) {
    case kelReaderRegistryKeyCurrentUser: return in(userFolder_, "HKEY_CURRENT_USER");
    case kelReaderRegistryKeyUsers: return in(userFolder_, "HKEY_USERS");
    case kelReaderRegistryKeyClassesRoot: return in(machineFolder_, "HKEY_CLASSES_ROOT");
    case kelReaderRegistryKeyLocalMachine: return in(machineFolder_, "HKEY_LOCAL_MACHINE");
    case kelReaderRegistryKeyPerformanceData: return in(machineFolder_, "HKEY_PERFORMANCE_DATA");
    case kelReaderRegistryKeyCurrentConfig: return in(machineFolder_, "HKEY_CURRENT_CONFIG");
    }
    return std::nullopt;
}

} // namespace kel
