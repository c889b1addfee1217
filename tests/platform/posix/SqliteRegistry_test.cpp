// SPDX-License-Identifier: MIT
#include "platform/posix/SteadyTime.h"
#include "tests/platform/posix/SqliteRegistryTest.h"
#include "tests/support/Patience.h"

#include <algorithm>
#include <sys/stat.h>

namespace kel {
namespace {

using test::OtherProcess;
using test::SqliteRegistryTest;

constexpr kelReaderRegistryKey kMachine = kelReaderRegistryKeyLocalMachine;

using Names = std::vector<std::string>;

TEST_F(SqliteRegistryTest, KeepsValuesOfAllTypes)
{
    const std::vector<RegistryValue> values = {
        {RegistryType::None, ""},
        {RegistryType::Text, "Größe"},
        {RegistryType::Text, ""},
        {RegistryType::ExpandableText, "%PATH%"},
        {RegistryType::Binary, std::string("\0\xFF\0\x01", 4)},
        {RegistryType::Number, std::string("\x80\x25\0\0", 4)},
        {RegistryType::MultiText, std::string("a\0b\0\0", 5)},
        {RegistryType::Number64, std::string(8, '\x7F')},
        {static_cast<RegistryType>(0xFFFFFFFFU), "of a type of its own"},
    };
    {
        SqliteRegistry registry(folders());
        for (std::size_t i = 0; i < values.size(); ++i)
            EXPECT_TRUE(registry.write(kUser, "Software\\Kel", std::to_string(i), values[i]));
    }
    SqliteRegistry registry(folders());
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::optional<RegistryValue> found = registry.read(kUser, "Software\\Kel", std::to_string(i));
        ASSERT_TRUE(found) << i;
        EXPECT_EQ(found->type, values[i].type) << i;
        EXPECT_EQ(found->data, values[i].data) << i;
    }
}

TEST_F(SqliteRegistryTest, AValueMayBeWrittenAnewWithAnotherType)
{
    SqliteRegistry registry(folders());
    EXPECT_TRUE(write(registry, "Kel", "Port", "1"));
    EXPECT_TRUE(registry.write(kUser, "Kel", "Port", {RegistryType::Number, std::string(4, '\0')}));
    EXPECT_EQ(registry.read(kUser, "Kel", "Port"), (RegistryValue{RegistryType::Number, std::string(4, '\0')}));
}

TEST_F(SqliteRegistryTest, ComparesNamesWithoutCaseAndKeepsTheFirstOne)
{
    SqliteRegistry registry(folders());
    EXPECT_TRUE(write(registry, "Software\\KELReader", "ScannerPort", "1"));
    EXPECT_TRUE(write(registry, "SOFTWARE\\kelreader", "SCANNERPORT", "2"));
    EXPECT_TRUE(write(registry, "software\\Other", "x", "3"));
    EXPECT_EQ(read(registry, "sofTWARE\\kelREADER", "scannerport"), "2");
    EXPECT_EQ(registry.valueNames(kUser, "software\\kelreader"), Names{"ScannerPort"});
    EXPECT_EQ(registry.subKeys(kUser, ""), Names{"Software"});
    EXPECT_EQ(registry.subKeys(kUser, "SOFTWARE"), (Names{"KELReader", "Other"}));
    EXPECT_TRUE(registry.exists(kUser, "SOFTWARE\\KELREADER"));
    EXPECT_TRUE(registry.remove(kUser, "software\\KELREADER", "scannerPORT"));
    EXPECT_EQ(read(registry, "Software\\KELReader", "ScannerPort"), "nothing");
}

TEST_F(SqliteRegistryTest, NamesComeInAlphabeticalOrder)
{
    SqliteRegistry registry(folders());
    for (const char* name : {"delta", "Alpha", "charlie", "Bravo"}) {
        EXPECT_TRUE(write(registry, "Kel", name, "x"));
        EXPECT_TRUE(write(registry, std::string("Kel\\") + name, "x", "x"));
    }
    EXPECT_EQ(registry.valueNames(kUser, "Kel"), (Names{"Alpha", "Bravo", "charlie", "delta"}));
    EXPECT_EQ(registry.subKeys(kUser, "Kel"), (Names{"Alpha", "Bravo", "charlie", "delta"}));
}

TEST_F(SqliteRegistryTest, AKeysPathMayHaveBackslashesTooMany)
{
    SqliteRegistry registry(folders());
    EXPECT_TRUE(write(registry, "\\Software\\\\Kel\\", "x", "1"));
    EXPECT_EQ(read(registry, "Software\\Kel", "x"), "1");
    EXPECT_EQ(registry.subKeys(kUser, "Software\\"), Names{"Kel"});
}

TEST_F(SqliteRegistryTest, KeysHoldTheirOwnValuesAndThoseOfTheHiveItself)
{
    SqliteRegistry registry(folders());
    EXPECT_TRUE(write(registry, "", "", "default of the hive"));
    EXPECT_TRUE(write(registry, "A", "x", "1"));
    EXPECT_TRUE(write(registry, "A\\B", "x", "2"));
    EXPECT_EQ(read(registry, "", ""), "default of the hive");
    EXPECT_EQ(read(registry, "A", "x"), "1");
    EXPECT_EQ(read(registry, "A\\B", "x"), "2");
    EXPECT_EQ(registry.valueNames(kUser, "A"), Names{"x"});
}

TEST_F(SqliteRegistryTest, WritingCreatesTheKeysAbove)
{
    SqliteRegistry registry(folders());
    EXPECT_FALSE(registry.exists(kUser, "A"));
    EXPECT_TRUE(write(registry, "A\\B\\C", "x", "1"));
    EXPECT_TRUE(registry.exists(kUser, "A"));
    EXPECT_TRUE(registry.exists(kUser, "A\\B"));
    EXPECT_TRUE(registry.valueNames(kUser, "A").empty());
    EXPECT_TRUE(registry.exists(kUser, ""));
}

TEST_F(SqliteRegistryTest, AKeyCanBeMadeWithoutAValue)
{
    {
        SqliteRegistry registry(folders());
        EXPECT_TRUE(registry.create(kUser, "Software\\Kel\\"));
        EXPECT_TRUE(registry.create(kUser, "SOFTWARE\\kel")) << "it is there";
        EXPECT_FALSE(registry.create(static_cast<kelReaderRegistryKey>(0x12345), "Kel"));
    }
    SqliteRegistry registry(folders());
    EXPECT_TRUE(registry.exists(kUser, "Software\\Kel"));
    EXPECT_EQ(registry.subKeys(kUser, "Software"), Names{"Kel"});
    EXPECT_EQ(registry.valueNames(kUser, "Software\\Kel"), Names{});
}

TEST_F(SqliteRegistryTest, RemovingAKeyTakesWhatIsBelowAndNothingElse)
{
    SqliteRegistry registry(folders());
    for (const char* key : {"A", "A\\B", "A\\B\\C", "A\\BB", "AB"})
        EXPECT_TRUE(write(registry, key, "x", key));
    EXPECT_TRUE(registry.remove(kUser, "A\\B", std::nullopt));
    EXPECT_FALSE(registry.exists(kUser, "A\\B"));
    EXPECT_FALSE(registry.exists(kUser, "A\\B\\C"));
    EXPECT_EQ(read(registry, "A\\B\\C", "x"), "nothing");
    EXPECT_EQ(read(registry, "A\\BB", "x"), "A\\BB");
    EXPECT_EQ(read(registry, "AB", "x"), "AB");
    // What is written there again begins empty.
    EXPECT_TRUE(write(registry, "A\\B", "y", "new"));
    EXPECT_EQ(registry.valueNames(kUser, "A\\B"), Names{"y"});
}

TEST_F(SqliteRegistryTest, RemovingWhatIsNotThereFails)
{
    SqliteRegistry registry(folders());
    EXPECT_FALSE(registry.remove(kUser, "A", std::nullopt));
    EXPECT_TRUE(write(registry, "A", "x", "1"));
    EXPECT_FALSE(registry.remove(kUser, "A", "y"));
    EXPECT_FALSE(registry.remove(kUser, "B", "x"));
    EXPECT_FALSE(registry.remove(kUser, "B", std::nullopt));
    EXPECT_FALSE(registry.remove(kUser, "", std::nullopt));
    EXPECT_TRUE(registry.remove(kUser, "A", "x"));
    EXPECT_FALSE(registry.remove(kUser, "A", "x"));
    EXPECT_TRUE(registry.exists(kUser, "A"));
}

TEST_F(SqliteRegistryTest, HivesAreApart)
{
    SqliteRegistry registry(folders());
    EXPECT_TRUE(write(registry, "A", "x", "user"));
    EXPECT_FALSE(registry.read(kMachine, "A", "x"));
    EXPECT_TRUE(registry.write(kMachine, "A", "x", {RegistryType::Text, "machine"}));
    EXPECT_EQ(read(registry, "A", "x"), "user");
}

TEST_F(SqliteRegistryTest, ANumberThatIsNoHiveHasNothing)
{
    SqliteRegistry registry(folders());
    for (const auto hive : {static_cast<kelReaderRegistryKey>(0), static_cast<kelReaderRegistryKey>(0x80000006U)}) {
        EXPECT_FALSE(registry.write(hive, "A", "x", {}));
        EXPECT_FALSE(registry.read(hive, "A", "x"));
        EXPECT_FALSE(registry.remove(hive, "A", "x"));
        EXPECT_FALSE(registry.exists(hive, ""));
        EXPECT_TRUE(registry.valueNames(hive, "").empty());
        EXPECT_TRUE(registry.subKeys(hive, "").empty());
    }
}

// --- Files

TEST_F(SqliteRegistryTest, ReadingCreatesNothing)
{
    SqliteRegistry registry(folders());
    EXPECT_EQ(read(registry, "A", "x"), "nothing");
    EXPECT_FALSE(registry.exists(kUser, "A"));
    EXPECT_FALSE(registry.remove(kUser, "A", "x"));
    EXPECT_TRUE(registry.valueNames(kUser, "A").empty());
    EXPECT_TRUE(registry.subKeys(kUser, "").empty());
    EXPECT_FALSE(std::filesystem::exists(place()));
}

TEST_F(SqliteRegistryTest, TheFirstWriteCreatesAFileForThisUserAlone)
{
    const mode_t before = ::umask(0077);
    SqliteRegistry registry(folders());
    EXPECT_TRUE(write(registry, "A", "x", "1"));
    ::umask(before);
    struct stat facts {};
    ASSERT_EQ(::stat(file().c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 07777, 0600U);
    ASSERT_EQ(::stat(place().c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 07777, 0700U);
}

TEST_F(SqliteRegistryTest, TheMachinesHivesAreForAllToRead)
{
    const mode_t before = ::umask(0077);
    SqliteRegistry registry(RegistryFolders(folder.path() / "user", folder.path() / "machine"));
    EXPECT_TRUE(registry.write(kMachine, "A", "x", {RegistryType::Text, "1"}));
    EXPECT_TRUE(write(registry, "A", "x", "1"));
    ::umask(before);
    struct stat facts {};
    ASSERT_EQ(::stat((folder.path() / "machine" / "HKEY_LOCAL_MACHINE.sqlite").c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 07777, 0644U);
    ASSERT_EQ(::stat((folder.path() / "machine").c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 07777, 0755U);
    ASSERT_EQ(::stat((folder.path() / "user" / "HKEY_CURRENT_USER.sqlite").c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 07777, 0600U);
}

TEST_F(SqliteRegistryTest, ARegistryThatWasOpenBeforeSeesAFileThatComesLater)
{
    SqliteRegistry reader(folders());
    EXPECT_EQ(read(reader, "A", "x"), "nothing");
    SqliteRegistry writer(folders());
    EXPECT_TRUE(write(writer, "A", "x", "1"));
    EXPECT_EQ(read(reader, "A", "x"), "1");
    EXPECT_TRUE(write(writer, "A", "x", "2"));
    EXPECT_EQ(read(reader, "A", "x"), "2");
}

TEST_F(SqliteRegistryTest, AFileThatIsRemovedIsMadeAnew)
{
    SqliteRegistry registry(folders());
    EXPECT_TRUE(write(registry, "A", "x", "1"));
    std::filesystem::remove_all(place());
    EXPECT_EQ(read(registry, "A", "x"), "nothing");
    EXPECT_FALSE(std::filesystem::exists(place()));
    EXPECT_TRUE(write(registry, "A", "y", "2"));
    EXPECT_EQ(read(registry, "A", "y"), "2");
    EXPECT_TRUE(std::filesystem::exists(file()));
}

TEST_F(SqliteRegistryTest, AnEmptyFileIsANewOne)
{
    std::filesystem::create_directory(place());
    std::ofstream(file()).flush();
    SqliteRegistry registry(folders());
    EXPECT_EQ(read(registry, "A", "x"), "nothing");
    EXPECT_TRUE(write(registry, "A", "x", "1"));
    EXPECT_EQ(read(registry, "A", "x"), "1");
    EXPECT_TRUE(asideFiles().empty());
}

// --- Access

TEST_F(SqliteRegistryTest, WithoutAccessNothingIsReadOrWritten)
{
    {
        SqliteRegistry registry(folders());
        EXPECT_TRUE(write(registry, "A", "x", "1"));
    }
    // A folder that an ordinary user may enter, and a file that it may not read.
    ASSERT_EQ(::chmod(folder.path().c_str(), 0755), 0);
    ASSERT_EQ(::chmod(place().c_str(), 0755), 0);
    ASSERT_EQ(::chmod(file().c_str(), ::geteuid() == 0 ? 0600 : 0), 0);
    OtherProcess other([&] {
        test::becomeOrdinaryUser();
        SqliteRegistry registry(folders());
        return read(registry, "A", "x") + (write(registry, "A", "x", "2") ? ", written" : ", not written");
    });
    EXPECT_EQ(other.answer(), "nothing, not written");
    EXPECT_TRUE(asideFiles().empty());
}

TEST_F(SqliteRegistryTest, WhatMayOnlyBeReadIsRead)
{
    {
        SqliteRegistry registry(folders());
        EXPECT_TRUE(write(registry, "A", "x", "1"));
    }
    ASSERT_EQ(::chmod(folder.path().c_str(), 0755), 0);
    ASSERT_EQ(::chmod(file().c_str(), 0444), 0);
    ASSERT_EQ(::chmod(place().c_str(), 0555), 0);
    OtherProcess other([&] {
        test::becomeOrdinaryUser();
        SqliteRegistry registry(folders());
        std::string answer = read(registry, "A", "x");
        answer += write(registry, "A", "x", "2") ? ", written" : ", not written";
        answer += registry.remove(kUser, "A", "x") ? ", removed" : ", not removed";
        answer += registry.write(kMachine, "A", "x", {}) ? ", created" : ", not created";
        return answer + ", " + read(registry, "A", "x");
    });
    EXPECT_EQ(other.answer(), "1, not written, not removed, not created, 1");
    ASSERT_EQ(::chmod(place().c_str(), 0755), 0);
}

TEST_F(SqliteRegistryTest, WhatOthersReadNeedsNoFilesBesideIt)
{
    const RegistryFolders shared(folder.path() / "user", place());
    SqliteRegistry writer(shared);
    EXPECT_TRUE(writer.write(kMachine, "A", "x", {RegistryType::Text, "1"}));
    ASSERT_EQ(::chmod(folder.path().c_str(), 0755), 0);
    // The writer still has it open, and goes on.
    OtherProcess other([&]() -> std::string {
        test::becomeOrdinaryUser();
        SqliteRegistry registry(shared);
        const std::optional<RegistryValue> value = registry.read(kMachine, "A", "x");
        return value ? value->data : "nothing";
    });
    EXPECT_EQ(other.answer(), "1");
    EXPECT_TRUE(writer.write(kMachine, "A", "x", {RegistryType::Text, "2"}));
    EXPECT_FALSE(std::filesystem::exists(place() / "HKEY_LOCAL_MACHINE.sqlite-wal"));
}

TEST_F(SqliteRegistryTest, AFolderThatCannotBeMadeIsNoAccess)
{
    // Not even root makes a folder below a file.
    std::ofstream(folder.path() / "file") << "x";
    SqliteRegistry registry(RegistryFolders(folder.path() / "file" / "kelreader"));
    EXPECT_FALSE(write(registry, "A", "x", "1"));
    EXPECT_EQ(read(registry, "A", "x"), "nothing");
}

TEST_F(SqliteRegistryTest, WhatIsWrittenTogetherIsKeptTogetherOrNotAtAll)
{
    SqliteRegistry registry(folders());
    SqliteRegistry other(folders());
    EXPECT_TRUE(write(registry, "A", "x", "old"));
    const auto body = [&](bool answer) {
        return [&, answer] {
            EXPECT_TRUE(write(registry, "A", "x", "new"));
            EXPECT_TRUE(write(registry, "A\\B", "y", "new"));
            EXPECT_EQ(read(registry, "A", "x"), "new");
            EXPECT_EQ(read(other, "A", "x"), "old");
            return answer;
        };
    };
    EXPECT_FALSE(registry.together(kUser, body(false)));
    EXPECT_EQ(read(registry, "A", "x"), "old");
    EXPECT_FALSE(registry.exists(kUser, "A\\B"));
    EXPECT_THROW(registry.together(kUser,
                                   [&]() -> bool {
                                       write(registry, "A", "x", "new");
                                       throw std::runtime_error("no more");
                                   }),
                 std::runtime_error);
    EXPECT_EQ(read(registry, "A", "x"), "old");
    EXPECT_TRUE(registry.together(kUser, body(true)));
    EXPECT_EQ(read(other, "A", "x"), "new");
    EXPECT_EQ(read(other, "A\\B", "y"), "new");
}

TEST_F(SqliteRegistryTest, NoKeyIsWrittenDeeperThan512Names)
{
    SqliteRegistry registry(folders());
    std::string key = "a";
    for (int level = 1; level < 512; ++level)
        key += "\\a";
    EXPECT_TRUE(write(registry, key, "x", "1"));
    EXPECT_FALSE(write(registry, key + "\\a", "x", "1"));
    EXPECT_EQ(read(registry, key, "x"), "1");
    EXPECT_TRUE(registry.remove(kUser, "a", std::nullopt));
    EXPECT_FALSE(registry.exists(kUser, "a"));
}

// --- Several processes

TEST_F(SqliteRegistryTest, FourProcessesThatWriteAtOnceLoseNothing)
{
    constexpr int kProcesses = 4;
    constexpr int kWrites = 250;
    std::vector<std::unique_ptr<OtherProcess>> others;
    for (int i = 0; i < kProcesses; ++i)
        others.push_back(std::make_unique<OtherProcess>([&, i]() -> std::string {
            SqliteRegistry registry(folders());
            int written = 0;
            for (int n = 0; n < kWrites; ++n)
                written += write(registry, "Shared", std::to_string(i) + "-" + std::to_string(n), "x") ? 1 : 0;
            return std::to_string(written);
        }));
    for (const auto& other : others)
        EXPECT_EQ(other->answer(), std::to_string(kWrites));
    SqliteRegistry registry(folders());
    EXPECT_EQ(registry.valueNames(kUser, "Shared").size(), static_cast<std::size_t>(kProcesses * kWrites));
}

TEST_F(SqliteRegistryTest, AProcessThatIsKilledLeavesTheOldValueOrTheNewOne)
{
    constexpr std::size_t kLength = 20000; // several pages, so that half a value could be there
    for (int round = 0; round < 12; ++round) {
        OtherProcess other([&]() -> std::string {
            SqliteRegistry registry(folders());
            for (char letter = 'a';; letter = letter == 'z' ? 'a' : static_cast<char>(letter + 1))
                write(registry, "A", "x", std::string(kLength, letter));
        });
        // It is killed somewhere in its writes: a little later each time, and never before the first.
        SqliteRegistry registry(folders());
        std::string first = "nothing";
        ASSERT_TRUE(test::waitUntil([&] { return (first = read(registry, "A", "x")) != "nothing"; }));
        ASSERT_TRUE(test::waitUntil([&] { return round == 0 || read(registry, "A", "x") != first; }));
        sleepUntil(steadyTime() + std::chrono::milliseconds(7 * round));
        other.kill();

        const std::string value = read(registry, "A", "x");
        ASSERT_EQ(value.size(), kLength);
        EXPECT_EQ(value, std::string(kLength, value.front()));
        EXPECT_TRUE(write(registry, "A", "y", "1"));
    }
    EXPECT_TRUE(asideFiles().empty());
    SqliteRegistry registry(folders());
    EXPECT_NE(read(registry, "A", "x"), "nothing");
}

} // namespace
} // namespace kel
