// SPDX-License-Identifier: MIT
#include "platform/windows/WindowsRegistry.h"

#include "platform/windows/WindowsPlatform.h"
#include "reader/SettingsStore.h"
#include "reader/clsKELReader.h"

#include <gtest/gtest.h>

namespace kel {
namespace {

constexpr auto kHive = kelReaderRegistryKeyCurrentUser;
constexpr const char* kKey = R"(Software\KELReader81U tests\Registry)";

class WindowsRegistryTest : public ::testing::Test {
protected:
    void SetUp() override { registry.remove(kHive, kKey, std::nullopt); }
    void TearDown() override { registry.remove(kHive, kKey, std::nullopt); }

    WindowsRegistry registry;
};

TEST_F(WindowsRegistryTest, AValueIsReadAsItWasWritten)
{
    EXPECT_FALSE(registry.exists(kHive, kKey));
    EXPECT_EQ(registry.read(kHive, kKey, "ScannerPort"), std::nullopt);
    EXPECT_TRUE(registry.write(kHive, kKey, "ScannerPort", {RegistryType::Text, "3"}));
    EXPECT_TRUE(registry.exists(kHive, kKey));
    const auto read = registry.read(kHive, kKey, "scannerport");
    ASSERT_TRUE(read);
    EXPECT_EQ(read->type, RegistryType::Text);
    EXPECT_EQ(read->data.substr(0, read->data.find('\0')), "3");

    EXPECT_TRUE(registry.write(kHive, kKey, "Number", {RegistryType::Number, std::string("\x80\x25\0\0", 4)}));
    EXPECT_EQ(registry.read(kHive, kKey, "Number"),
              (RegistryValue{RegistryType::Number, std::string("\x80\x25\0\0", 4)}));
}

TEST_F(WindowsRegistryTest, TextsArePassedInTheCodePage)
{
    registry.write(kHive, kKey, "Text",
                   {RegistryType::Text, "Pr\xC3\xBC"
                                        "fung"});
    const auto read = registry.read(kHive, kKey, "Text");
    ASSERT_TRUE(read);
    EXPECT_EQ(read->data.substr(0, read->data.find('\0')), "Pr\xC3\xBC"
                                                           "fung");
}

TEST_F(WindowsRegistryTest, ALongValueIsReadWhole)
{
    registry.write(kHive, kKey, "Long", {RegistryType::Binary, std::string(5000, 'x')});
    EXPECT_EQ(registry.read(kHive, kKey, "Long"), (RegistryValue{RegistryType::Binary, std::string(5000, 'x')}));
}

TEST_F(WindowsRegistryTest, AKeyCanBeMadeWithoutAValue)
{
    EXPECT_TRUE(registry.create(kHive, std::string(kKey) + "\\Below"));
    EXPECT_TRUE(registry.exists(kHive, std::string(kKey) + "\\Below"));
    EXPECT_TRUE(registry.create(kHive, kKey)) << "it is there";
    EXPECT_FALSE(registry.create(static_cast<kelReaderRegistryKey>(0x12345), kKey));
}

// The code page has a byte for each of them, UTF-8 two.
TEST_F(WindowsRegistryTest, ATextOf1024CharactersOfTheCodePageIsASetting)
{
    WindowsPlatform machine;
    const PlatformScope scope(machine);
    const SettingsStore store(kHive, kKey);
    std::string sUmlauts;
    for (int i = 0; i < 1024; ++i)
        sUmlauts += "\xC3\xBC";
    EXPECT_EQ(store.SaveValue("Text", sUmlauts), True);
    EXPECT_EQ(store.LoadValue("Text", "default"), sUmlauts);
    sUmlauts += "x";
    EXPECT_EQ(store.SaveValue("Text", sUmlauts), True);
    EXPECT_EQ(store.LoadValue("Text", "default"), "default");
}

TEST_F(WindowsRegistryTest, NamesAreTold)
{
    registry.write(kHive, kKey, "a", {RegistryType::Text, "1"});
    registry.write(kHive, kKey, "b", {RegistryType::Text, "2"});
    registry.write(kHive, std::string(kKey) + "\\Below", "c", {RegistryType::Text, "3"});
    EXPECT_EQ(registry.valueNames(kHive, kKey), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(registry.subKeys(kHive, kKey), std::vector<std::string>{"Below"});
    EXPECT_TRUE(registry.remove(kHive, kKey, "a"));
    EXPECT_FALSE(registry.remove(kHive, kKey, "a"));
    EXPECT_TRUE(registry.remove(kHive, kKey, std::nullopt));
    EXPECT_FALSE(registry.exists(kHive, kKey));
}

// Leaves them for test_platform.py to look at.
TEST(SavedSettings, AreKeptAsTexts)
{
    WindowsPlatform machine;
    const PlatformScope scope(machine);
    clsKELReader reader;
    reader.LoadDefaults(kelReaderTypeScantronScanMark2500);
    reader.Port(12);
    reader.SleepTime(75);
    EXPECT_EQ(reader.SaveSettings(kHive, R"(Software\KELReader81U tests\Saved)"), True);

    clsKELReader other;
    EXPECT_EQ(other.LoadSettings(kHive, R"(Software\KELReader81U tests\Saved)"), True);
    EXPECT_EQ(other.ReaderType(), kelReaderTypeScantronScanMark2500);
    EXPECT_EQ(other.Port(), 12);
    EXPECT_EQ(other.SleepTime(), 75);
    EXPECT_EQ(other.StopBits(), 2);
}

// What another program has written: a number, of which the digits of the bytes are read.
TEST(SavedSettings, MayBeNumbers)
{
    WindowsPlatform machine;
    const PlatformScope scope(machine);
    constexpr const char* kNumbers = R"(Software\KELReader81U tests\Numbers)";
    machine.registry().write(kHive, kNumbers, "ScannerBaud", {RegistryType::Number, std::string("\x80\x25\0\0", 4)});
    clsKELReader reader;
    EXPECT_EQ(reader.LoadSettings(kHive, kNumbers), True);
    EXPECT_EQ(reader.BaudRate(), 9600);
    EXPECT_EQ(reader.DataBits(), 7);
    machine.registry().remove(kHive, kNumbers, std::nullopt);
}

} // namespace
} // namespace kel
