// SPDX-License-Identifier: MIT
#include "strings/TextNumber.h"
#include "tests/strings/LanguageDatabaseTest.h"
#include "types/Text.h"

#include <iterator>
#include <set>

namespace kel::test {
namespace {

/// The language file that is generated beside the programs.
class GeneratedLanguageFile : public testing::Test {
protected:
    const std::filesystem::path binaries = std::filesystem::read_symlink("/proc/self/exe").parent_path();
    const std::string name = (binaries / kLanguageFileName).string();
    RecordingPlatform platform;
};

TEST_F(GeneratedLanguageFile, HasEveryTextInEveryLanguage)
{
    std::set<std::string> captions;
    for (const char* language : {"English", "German", "French", "Spanish"}) {
        platform.process_.commandLine = std::string("kelreader /L=") + language;
        LanguageDatabase database(name);
        for (const Int32 number : kTextNumbers) {
            const std::string text = database.RTString(number);
            EXPECT_FALSE(text.empty()) << language << " " << number;
            EXPECT_EQ(text.find("~~"), std::string::npos) << language << " " << number;
            EXPECT_FALSE(text.starts_with('"') || text.ends_with('"')) << language << " " << number;
        }
        captions.insert(database.RTString(102));
        EXPECT_EQ(database.RTString(kTextNumbers.back() + 1000), "Invalid Index");
    }
    EXPECT_EQ(captions.size(), 4U);
    EXPECT_TRUE(platform.screen_.boxes.empty());
}

TEST_F(GeneratedLanguageFile, NamesTheByteAtWhichEachSectionBegins)
{
    std::ifstream file(name, std::ios::binary);
    const std::string content{std::istreambuf_iterator<char>(file), {}};
    const ProfileSection head(name, "VBLM");
    for (int number = 1; number <= 4; ++number) {
        const std::string key = "Language" + CStr(number);
        const std::string heading = '[' + head.value(key, "?", 64) + "]\r\n";
        const auto start = static_cast<std::size_t>(Val(head.value(key + "Start", "?", 64)));
        ASSERT_LE(start, content.size());
        EXPECT_EQ(content.substr(start - 1, heading.size()), heading);
    }
}

} // namespace
} // namespace kel::test
