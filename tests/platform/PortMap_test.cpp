// SPDX-License-Identifier: MIT
#include "platform/PortMap.h"

#include "simulators/platform/SimulatedRegistry.h"

#include <gtest/gtest.h>
#include <memory>
#include <thread>

namespace kel {
namespace {

constexpr const char* kKey = "Software\\KELReader81U\\Ports";

class PortMapTest : public ::testing::Test {
protected:
    SimulatedRegistry registry;
    PortMap map{registry};
};

using Devices = std::map<Int16, std::string>;

TEST_F(PortMapTest, IsEmptyAtFirst)
{
    EXPECT_EQ(map.get(1), std::nullopt);
    EXPECT_TRUE(map.all().empty());
}

TEST_F(PortMapTest, KeepsDevicesInTheUsersRegistry)
{
    EXPECT_TRUE(map.set(1, "/dev/ttyS0"));
    EXPECT_TRUE(map.set(16, "/dev/ttyUSB0"));
    EXPECT_EQ(map.get(1), "/dev/ttyS0");
    EXPECT_EQ(map.all(), (Devices{{1, "/dev/ttyS0"}, {16, "/dev/ttyUSB0"}}));
    EXPECT_EQ(registry.read(kelReaderRegistryKeyCurrentUser, kKey, "16"),
              (RegistryValue{RegistryType::Text, "/dev/ttyUSB0"}));
    EXPECT_TRUE(map.set(1, "/dev/ttyS1"));
    EXPECT_EQ(map.get(1), "/dev/ttyS1");
}

TEST_F(PortMapTest, CannotBeChangedWithoutAccess)
{
    EXPECT_TRUE(map.set(1, "/dev/ttyS0"));
    registry.access(kelReaderRegistryKeyCurrentUser, SimulatedRegistry::Access::ReadOnly);
    EXPECT_FALSE(map.set(1, "/dev/ttyS1"));
    EXPECT_FALSE(map.clear(1));
    EXPECT_EQ(map.get(1), "/dev/ttyS0");
}

TEST_F(PortMapTest, ClearsAPort)
{
    EXPECT_TRUE(map.set(3, "/dev/ttyS0"));
    EXPECT_TRUE(map.clear(3));
    EXPECT_EQ(map.get(3), std::nullopt);
    EXPECT_FALSE(map.clear(3));
}

TEST_F(PortMapTest, HasPortsOneToSixteen)
{
    for (const Int16 port : {Int16{-1}, Int16{0}, Int16{17}}) {
        EXPECT_FALSE(map.set(port, "/dev/ttyS0"));
        EXPECT_FALSE(map.clear(port));
        EXPECT_EQ(map.get(port), std::nullopt);
    }
    EXPECT_FALSE(map.set(1, ""));
    EXPECT_TRUE(map.all().empty());
}

TEST_F(PortMapTest, TakesNamesAsLongAsAPathMayBe)
{
    EXPECT_TRUE(map.set(1, std::string(4096, 'x')));
    EXPECT_FALSE(map.set(1, std::string(4097, 'y')));
    EXPECT_EQ(map.get(1), std::string(4096, 'x'));
}

TEST_F(PortMapTest, WhatIsNoTextIsNoDevice)
{
    ASSERT_TRUE(
        registry.write(kelReaderRegistryKeyCurrentUser, kKey, "2", {RegistryType::Number, std::string("\1\0\0\0", 4)}));
    ASSERT_TRUE(registry.write(kelReaderRegistryKeyCurrentUser, kKey, "3", {RegistryType::Text, ""}));
    EXPECT_TRUE(map.all().empty());
}

TEST_F(PortMapTest, AnOverrideWinsForAsLongAsItLives)
{
    EXPECT_TRUE(map.set(2, "/dev/ttyS0"));
    {
        const PortOverride outer(2, "/dev/pts/1");
        EXPECT_EQ(map.get(2), "/dev/pts/1");
        {
            const PortOverride inner(2, "/dev/pts/2");
            EXPECT_EQ(map.get(2), "/dev/pts/2");
        }
        const PortOverride other(5, "/dev/pts/5");
        EXPECT_EQ(map.all(), (Devices{{2, "/dev/pts/1"}, {5, "/dev/pts/5"}}));
    }
    EXPECT_EQ(map.all(), (Devices{{2, "/dev/ttyS0"}}));
}

TEST_F(PortMapTest, OverridesMayEndInAnyOrder)
{
    auto first = std::make_unique<PortOverride>(Int16{2}, "/dev/pts/1");
    auto second = std::make_unique<PortOverride>(Int16{2}, "/dev/pts/2");
    first.reset();
    EXPECT_EQ(map.get(2), "/dev/pts/2");
    second.reset();
    EXPECT_EQ(map.get(2), std::nullopt);
}

TEST_F(PortMapTest, AnOverrideIsItsThreadsOwn)
{
    const PortOverride mine(2, "/dev/pts/1");
    std::optional<std::string> there = "unknown";
    std::thread([&] { there = map.get(2); }).join();
    EXPECT_EQ(there, std::nullopt);
}

} // namespace
} // namespace kel
