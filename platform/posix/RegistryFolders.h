// SPDX-License-Identifier: MIT
#pragma once

#include "types/Enumerations.h"

#include <filesystem>
#include <optional>
#include <sys/types.h>

namespace kel {

/// Where a hive is kept.
struct HiveFile {
    std::filesystem::path file;

    /// Whether other users read it. If not, file and folder are for this user alone.
    bool forAll = false;

    [[nodiscard]] mode_t fileMode() const noexcept { return forAll ? 0644 : 0600; }
    [[nodiscard]] mode_t folderMode() const noexcept { return forAll ? 0755 : 0700; }
};

/// The folders of the registry's files.
class RegistryFolders {
public:
    /// The user's hives below `userFolder`, for this user alone, and the machine's below `machineFolder`, for all to
    /// read.
    RegistryFolders(std::filesystem::path userFolder, std::filesystem::path machineFolder)
        : userFolder_(std::move(userFolder)), machineFolder_(std::move(machineFolder))
    {
    }

    /// All hives below one folder, for this user alone.
    explicit RegistryFolders(const std::filesystem::path& folder) : RegistryFolders(folder, folder) {}

    /// The folder that the environment names in KELREADER_REGISTRY_DIR for all; or else $XDG_CONFIG_HOME/kelreader
    /// (~/.config/kelreader) for the user and /etc/kelreader for the machine.
    [[nodiscard]] static RegistryFolders fromEnvironment();

    /// Nothing for a number that is no hive, and for a user's hive where no folder of the user is known.
    [[nodiscard]] std::optional<HiveFile> hive(kelReaderRegistryKey hive) const;

private:
    std::filesystem::path userFolder_;
    std::filesystem::path machineFolder_;
};

} // namespace kel
