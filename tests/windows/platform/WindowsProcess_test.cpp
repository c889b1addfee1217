// SPDX-License-Identifier: MIT
#include "platform/windows/WindowsProcess.h"

#include "platform/windows/WindowsPlatform.h"
#include "strings/InputFile.h"
#include "strings/VBLMRTSModule.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

namespace kel {
namespace {

class WindowsProcessTest : public ::testing::Test {
protected:
    /// A file of the name in a folder of its own, which has letters of no Western code page.
    std::filesystem::path write(const std::filesystem::path& name, const std::string& text)
    {
        const auto folder = std::filesystem::temp_directory_path() / L"kel \x03A9";
        std::filesystem::create_directories(folder);
        std::ofstream(folder / name, std::ios::binary) << text;
        return folder / name;
    }

    WindowsProcess process;
};

TEST_F(WindowsProcessTest, TheComponentIsTheProgramThatItIsLinkedInto)
{
    EXPECT_EQ(process.ComponentFile().filename(), "windows_platform_tests.exe");
    EXPECT_TRUE(std::filesystem::exists(process.ComponentFolder() / "LKELReader81.txt"));
    EXPECT_NE(process.CommandLine().find("windows_platform_tests"), std::string::npos);
}

TEST_F(WindowsProcessTest, ProfileStringsFollowTheSystemsRules)
{
    const auto file = std::filesystem::temp_directory_path() / "kel_profile.txt";
    std::ofstream(file, std::ios::binary) << "[Other]\r\nNumStrings=1\r\n[vblm]\r\n numstrings = \"  12\" \r\n"
                                          << "Long=" << std::string(100, 'x') << "\r\n";
    const auto value = [&](const char* key) { return process.ProfileString("VBLM", key, "?", 64, file.string()); };
    EXPECT_EQ(value("NumStrings"), "  12");
    EXPECT_EQ(value("Missing"), "?");
    EXPECT_EQ(value("Long"), std::string(63, 'x'));
    EXPECT_EQ(process.ProfileString("VBLM", "NumStrings", "?", 64, "Z:\\nowhere.txt"), "?");
    EXPECT_EQ(process.ProfileString("VBLM", "NumStrings", "?", 64, write("a.txt", "").string()), std::nullopt);
}

TEST_F(WindowsProcessTest, AFileMayHaveAnyName)
{
    InputFile file(write("texts.txt", "first\r\nsecond\r\n").string());
    EXPECT_EQ(file.LineInput(), "first");
}

TEST_F(WindowsProcessTest, TextsOfTheLanguageFileAreFound)
{
    WindowsPlatform machine;
    const PlatformScope scope(machine);
    EXPECT_EQ(VBLM_RTString(TextNumber(154)), "OK");
}

} // namespace
} // namespace kel
