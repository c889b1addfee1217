// SPDX-License-Identifier: MIT
#include "strings/VBLMRTSModule.h"
#include "tests/strings/LanguageDatabaseTest.h"

namespace kel::test {
namespace {

/// The process's own database; the next test finds a fresh one again.
class VBLMRTSModule : public LanguageDatabaseTest {
protected:
    VBLMRTSModule() { renewLanguageDatabase(); }
    ~VBLMRTSModule() override { renewLanguageDatabase(); }
};

TEST_F(VBLMRTSModule, ReadsTheFileBesideTheComponent)
{
    folder.write("LKELReader81.txt", oneLanguage({"S246=\"Error \""}, {"NumStrings=1", "StringIndexBase=246"}).text());
    EXPECT_EQ(VBLM_RTString(TextNumber(246)), "Error ");
    EXPECT_EQ(VBLM_RTString(247), "");
    EXPECT_EQ(VBLM_RTString(248), "Invalid Index");
}

TEST_F(VBLMRTSModule, SaysWhichFileIsMissing)
{
    EXPECT_EQ(VBLM_RTString(TextNumber(246)),
              "Language database file " + folder.path().string() + "/LKELReader81.txt not found.");
}

TEST_F(VBLMRTSModule, AnswersWithoutAPlatformInPlaceOfTheText)
{
    class NoPlatform : public RecordingPlatform {
    public:
        Screen& screen() override { throw std::logic_error("no screen"); }
    } none;
    EXPECT_EQ(VBLM_RTString(246), kNoText);
}

TEST_F(VBLMRTSModule, StartsOverWhenRenewed)
{
    folder.write("LKELReader81.txt", twoLanguages().text());
    folder.write("other.txt", oneLanguage({"S1=other"}, {"NumStrings=1"}).text());
    EXPECT_EQ(VBLM_RTString(1), "one");
    renewLanguageDatabase("other.txt");
    EXPECT_EQ(VBLM_RTString(1), "other");
}

} // namespace
} // namespace kel::test
