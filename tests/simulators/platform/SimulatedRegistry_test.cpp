// SPDX-License-Identifier: MIT
#include "simulators/platform/SimulatedRegistry.h"

#include <gtest/gtest.h>

namespace kel {
namespace {

constexpr kelReaderRegistryKey kUser = kelReaderRegistryKeyCurrentUser;
constexpr kelReaderRegistryKey kMachine = kelReaderRegistryKeyLocalMachine;

using Names = std::vector<std::string>;

TEST(SimulatedRegistry, KeepsValuesOfAllTypes)
{
    SimulatedRegistry registry;
    const std::string bytes("\x00\x01\xFF", 3);
    for (const RegistryType type :
         {RegistryType::None, RegistryType::Text, RegistryType::ExpandableText, RegistryType::Binary,
          RegistryType::Number, RegistryType::MultiText, RegistryType::Number64, static_cast<RegistryType>(99)}) {
        EXPECT_TRUE(registry.write(kUser, "Software\\A", "value", {type, bytes}));
        EXPECT_EQ(registry.read(kUser, "Software\\A", "value"), (RegistryValue{type, bytes}));
    }
}

TEST(SimulatedRegistry, IsBlindToCase)
{
    SimulatedRegistry registry;
    registry.text(kUser, "Software\\WhippleWare\\VBLM", "LastLanguage", "English");
    EXPECT_EQ(registry.text(kUser, "SOFTWARE\\whippleware\\vblm", "lastlanguage"), "English");
    registry.text(kUser, "software\\WHIPPLEWARE\\vblm", "LASTLANGUAGE", "German");
    EXPECT_EQ(registry.valueNames(kUser, "Software\\WhippleWare\\VBLM"), Names{"LastLanguage"});
    EXPECT_EQ(registry.text(kUser, "Software\\WhippleWare\\VBLM", "LastLanguage"), "German");
}

TEST(SimulatedRegistry, HivesAndKeysAreApart)
{
    SimulatedRegistry registry;
    registry.text(kUser, "A\\B", "x", "1");
    EXPECT_EQ(registry.read(kMachine, "A\\B", "x"), std::nullopt);
    EXPECT_EQ(registry.read(kUser, "A", "x"), std::nullopt);
    EXPECT_EQ(registry.read(kUser, "A\\B", "y"), std::nullopt);
    EXPECT_EQ(registry.read(kUser, "A\\B\\C", "x"), std::nullopt);
    EXPECT_TRUE(registry.exists(kUser, "a"));
    EXPECT_TRUE(registry.exists(kUser, "a\\b"));
    EXPECT_FALSE(registry.exists(kUser, "b"));
    EXPECT_TRUE(registry.exists(kUser, ""));
}

TEST(SimulatedRegistry, ListsInTheOrderOfNames)
{
    SimulatedRegistry registry;
    registry.text(kUser, "K", "beta", "");
    registry.text(kUser, "K", "Alpha", "");
    registry.text(kUser, "K\\two", "x", "");
    registry.text(kUser, "K\\One", "x", "");
    EXPECT_EQ(registry.valueNames(kUser, "k"), (Names{"Alpha", "beta"}));
    EXPECT_EQ(registry.subKeys(kUser, "k"), (Names{"One", "two"}));
    EXPECT_TRUE(registry.valueNames(kUser, "none").empty());
    EXPECT_TRUE(registry.subKeys(kUser, "none").empty());
}

TEST(SimulatedRegistry, RemovesAValueOrAKeyWithAllBelow)
{
    SimulatedRegistry registry;
    registry.text(kUser, "K", "x", "1");
    registry.text(kUser, "K\\L\\M", "y", "2");
    EXPECT_TRUE(registry.remove(kUser, "k", "X"));
    EXPECT_FALSE(registry.remove(kUser, "k", "X"));
    EXPECT_FALSE(registry.remove(kUser, "none", "X"));
    EXPECT_TRUE(registry.remove(kUser, "k\\l", std::nullopt));
    EXPECT_FALSE(registry.exists(kUser, "K\\L\\M"));
    EXPECT_TRUE(registry.exists(kUser, "K"));
    EXPECT_FALSE(registry.remove(kUser, "K\\L", std::nullopt));
    EXPECT_FALSE(registry.remove(kUser, "none\\L", std::nullopt));
    EXPECT_FALSE(registry.remove(kUser, "", std::nullopt));
}

TEST(SimulatedRegistry, DeniesAHive)
{
    SimulatedRegistry registry;
    registry.text(kUser, "K", "x", "1");
    registry.access(kUser, SimulatedRegistry::Access::ReadOnly);
    EXPECT_EQ(registry.text(kUser, "K", "x"), "1");
    EXPECT_FALSE(registry.write(kUser, "K", "x", {}));
    EXPECT_FALSE(registry.remove(kUser, "K", std::nullopt));
    EXPECT_FALSE(registry.remove(kUser, "K", "x"));
    registry.access(kUser, SimulatedRegistry::Access::None);
    EXPECT_EQ(registry.read(kUser, "K", "x"), std::nullopt);
    EXPECT_FALSE(registry.exists(kUser, "K"));
    EXPECT_TRUE(registry.write(kMachine, "K", "x", {}));
    registry.access(kUser, SimulatedRegistry::Access::Full);
    EXPECT_EQ(registry.text(kUser, "K", "x"), "1");
}

} // namespace
} // namespace kel
