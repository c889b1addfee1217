// SPDX-License-Identifier: MIT
#pragma once

#include "platform/posix/SqliteRegistry.h"
#include "tests/platform/posix/PosixTest.h"

#include <fstream>
#include <iterator>

namespace kel::test {

/// A registry in a folder of its own.
class SqliteRegistryTest : public ::testing::Test {
protected:
    static constexpr kelReaderRegistryKey kUser = kelReaderRegistryKeyCurrentUser;

    [[nodiscard]] RegistryFolders folders() const { return RegistryFolders(place()); }
    [[nodiscard]] std::filesystem::path place() const { return folder.path() / "kelreader"; }
    [[nodiscard]] std::filesystem::path file() const { return place() / "HKEY_CURRENT_USER.sqlite"; }

    static bool write(SqliteRegistry& registry, const std::string& key, const std::string& name,
                      const std::string& text)
    {
        return registry.write(kUser, key, name, {RegistryType::Text, text});
    }
    static std::string read(SqliteRegistry& registry, const std::string& key, const std::string& name)
    {
        const std::optional<RegistryValue> value = registry.read(kUser, key, name);
        return value ? value->data : "nothing";
    }

    /// The names of the files that were set aside.
    [[nodiscard]] std::vector<std::string> asideFiles() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(place())) {
            const std::string name = entry.path().string();
            // Its log goes with it, if there is one.
            if (name.find(".damaged-") != std::string::npos && !name.ends_with("-wal") && !name.ends_with("-shm"))
                names.push_back(name);
        }
        return names;
    }

    static std::string contents(const std::filesystem::path& path)
    {
        std::ifstream stream(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    TemporaryFolder folder;
};

} // namespace kel::test
