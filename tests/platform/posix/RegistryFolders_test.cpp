// SPDX-License-Identifier: MIT
#include "platform/posix/RegistryFolders.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <string>

namespace kel {
namespace {

/// Sets variables of the environment for as long as a test runs.
class RegistryFoldersTest : public ::testing::Test {
protected:
    RegistryFoldersTest()
    {
        for (const char* name : {"KELREADER_REGISTRY_DIR", "XDG_CONFIG_HOME", "HOME"}) {
            const char* value = ::getenv(name);
            before_[name] = value ? std::optional<std::string>(value) : std::nullopt;
            ::unsetenv(name);
        }
    }
    ~RegistryFoldersTest() override
    {
        for (const auto& [name, value] : before_) {
            if (value)
                ::setenv(name.c_str(), value->c_str(), 1);
            else
                ::unsetenv(name.c_str());
        }
    }

    static std::string fileOf(kelReaderRegistryKey hive)
    {
        const std::optional<HiveFile> found = RegistryFolders::fromEnvironment().hive(hive);
        return found ? found->file.string() + (found->forAll ? " for all" : "") : "none";
    }

private:
    std::map<std::string, std::optional<std::string>> before_;
};

TEST_F(RegistryFoldersTest, AreTheUsersConfigurationAndTheMachines)
{
    ::setenv("HOME", "/home/kel", 1);
    EXPECT_EQ(fileOf(kelReaderRegistryKeyCurrentUser), "/home/kel/.config/kelreader/HKEY_CURRENT_USER.sqlite");
    EXPECT_EQ(fileOf(kelReaderRegistryKeyUsers), "/home/kel/.config/kelreader/HKEY_USERS.sqlite");
    EXPECT_EQ(fileOf(kelReaderRegistryKeyLocalMachine), "/etc/kelreader/HKEY_LOCAL_MACHINE.sqlite for all");
    EXPECT_EQ(fileOf(kelReaderRegistryKeyClassesRoot), "/etc/kelreader/HKEY_CLASSES_ROOT.sqlite for all");
    EXPECT_EQ(fileOf(kelReaderRegistryKeyCurrentConfig), "/etc/kelreader/HKEY_CURRENT_CONFIG.sqlite for all");
    EXPECT_EQ(fileOf(kelReaderRegistryKeyPerformanceData), "/etc/kelreader/HKEY_PERFORMANCE_DATA.sqlite for all");
    EXPECT_EQ(fileOf(static_cast<kelReaderRegistryKey>(7)), "none");
}

TEST_F(RegistryFoldersTest, MayBeMovedWithTheUsersConfiguration)
{
    ::setenv("HOME", "/home/kel", 1);
    ::setenv("XDG_CONFIG_HOME", "/config", 1);
    EXPECT_EQ(fileOf(kelReaderRegistryKeyCurrentUser), "/config/kelreader/HKEY_CURRENT_USER.sqlite");
    ::setenv("XDG_CONFIG_HOME", "config", 1);
    EXPECT_EQ(fileOf(kelReaderRegistryKeyCurrentUser), "/home/kel/.config/kelreader/HKEY_CURRENT_USER.sqlite");
}

TEST_F(RegistryFoldersTest, MayAllBeInOneFolder)
{
    ::setenv("HOME", "/home/kel", 1);
    ::setenv("KELREADER_REGISTRY_DIR", "/tmp/registry", 1);
    EXPECT_EQ(fileOf(kelReaderRegistryKeyCurrentUser), "/tmp/registry/HKEY_CURRENT_USER.sqlite");
    EXPECT_EQ(fileOf(kelReaderRegistryKeyLocalMachine), "/tmp/registry/HKEY_LOCAL_MACHINE.sqlite");
    ::setenv("KELREADER_REGISTRY_DIR", "", 1);
    EXPECT_EQ(fileOf(kelReaderRegistryKeyCurrentUser), "/home/kel/.config/kelreader/HKEY_CURRENT_USER.sqlite");
}

TEST_F(RegistryFoldersTest, WithoutAHomeInTheEnvironmentTheSystemKnowsIt)
{
    const std::string file = fileOf(kelReaderRegistryKeyCurrentUser);
    EXPECT_EQ(file.front(), '/') << file;
    EXPECT_TRUE(file.ends_with("/.config/kelreader/HKEY_CURRENT_USER.sqlite")) << file;
}

} // namespace
} // namespace kel
