// SPDX-License-Identifier: MIT
#include "strings/LastLanguage.h"
#include "tests/failure/RecordingPlatform.h"

#include <gtest/gtest.h>

namespace kel::test {
namespace {

class LastLanguage : public testing::Test {
protected:
    void stored(const RegistryValue& value)
    {
        platform.registry_.write(kelReaderRegistryKeyLocalMachine, "software\\whippleware\\vblm", "lastlanguage",
                                 value);
    }

    RecordingPlatform platform;
    std::string language = "before";
};

TEST_F(LastLanguage, IsReadFromTheRegistry)
{
    stored({RegistryType::Text, "German"});
    EXPECT_EQ(ReadWriteLanguageToRegistry(0x20019, language), True);
    EXPECT_EQ(language, "German");
}

TEST_F(LastLanguage, LosesOneZeroAtItsEnd)
{
    stored({RegistryType::Text, std::string("German\0\0", 8)});
    EXPECT_EQ(ReadWriteLanguageToRegistry(0x20019, language), True);
    EXPECT_EQ(language, std::string("German\0", 7));
}

TEST_F(LastLanguage, IsNotThereWithoutAText)
{
    EXPECT_EQ(ReadWriteLanguageToRegistry(0x20019, language), False);
    EXPECT_EQ(language, "before");
    stored({RegistryType::Number, "\1\0\0\0"});
    EXPECT_EQ(ReadWriteLanguageToRegistry(0x20019, language), False);
    stored({RegistryType::Text, std::string("\0", 1)});
    EXPECT_EQ(ReadWriteLanguageToRegistry(0x20019, language), False);
    EXPECT_EQ(language, "");
}

TEST_F(LastLanguage, HasAtMost64Characters)
{
    stored({RegistryType::Text, std::string(64, 'x')});
    EXPECT_EQ(ReadWriteLanguageToRegistry(0x20019, language), True);
    EXPECT_EQ(language, std::string(64, 'x'));
    stored({RegistryType::Text, std::string(65, 'y')});
    EXPECT_EQ(ReadWriteLanguageToRegistry(0x20019, language), False);
    EXPECT_EQ(language, std::string(64, 'x'));
}

TEST_F(LastLanguage, MayHaveCharactersOfSeveralBytes)
{
    std::string name;
    for (int i = 0; i < 63; ++i)
        name += "\u0416";
    stored({RegistryType::Text, name});
    EXPECT_EQ(ReadWriteLanguageToRegistry(0x20019, language), True);
    EXPECT_EQ(language, name);
}

TEST_F(LastLanguage, IsWrittenAsAText)
{
    language = "French";
    EXPECT_EQ(ReadWriteLanguageToRegistry(0x20006, language), True);
    EXPECT_EQ(platform.registry_.read(kelReaderRegistryKeyLocalMachine, "Software\\WhippleWare\\VBLM", "LastLanguage"),
              (RegistryValue{RegistryType::Text, "French"}));
    platform.registry_.access(kelReaderRegistryKeyLocalMachine, SimulatedRegistry::Access::ReadOnly);
    EXPECT_EQ(ReadWriteLanguageToRegistry(0x20006, language), False);
}

TEST_F(LastLanguage, IsLeftAloneByAnyOtherAction)
{
    stored({RegistryType::Text, "German"});
    EXPECT_EQ(ReadWriteLanguageToRegistry(1, language), False);
    EXPECT_EQ(language, "before");
}

} // namespace
} // namespace kel::test
