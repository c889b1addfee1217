// SPDX-License-Identifier: MIT
// What becomes of a call on a machine without a display.

#include "tests/options/qt/DrivenDialog.h"

#include "options/qt/Display.h"

namespace kel::test {
namespace {

/// A variable of the environment for as long as this lives; nullptr is none.
class Variable {
public:
    Variable(const char* name, const char* value) : name_(name)
    {
        if (const char* const before = std::getenv(name))
            before_ = before;
        set(value);
    }
    ~Variable() { set(before_ ? before_->c_str() : nullptr); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    void set(const char* value)
    {
        if (value)
            setenv(name_, value, 1);
        else
            unsetenv(name_);
    }

    const char* name_;
    std::optional<std::string> before_;
};

struct NoDisplay {
    Variable platform{"QT_QPA_PLATFORM", nullptr};
    Variable x{"DISPLAY", nullptr};
    Variable wayland{"WAYLAND_DISPLAY", nullptr};
};

TEST(DisplayTest, WithoutOneTheCallReportsAndAnswersFalse)
{
    const NoDisplay none;
    OptionsHost host;
    EXPECT_EQ(DrivenDialog::run(host, [](OpenWindow&) { FAIL(); }), False);
    ASSERT_EQ(host.heard().reports.size(), 1U);
    EXPECT_EQ(host.heard().reports[0].ErrorDescription,
              "The options dialog cannot be shown without a display: neither DISPLAY nor WAYLAND_DISPLAY is set.");
}

TEST(DisplayTest, AnXServerThatIsNotThereIsFoundOutBeforehand)
{
    const NoDisplay none;
    const Variable x("DISPLAY", ":5077");
    const Display display = findDisplay();
    EXPECT_EQ(display.platform, "");
    EXPECT_NE(display.reason.find("DISPLAY=:5077"), std::string::npos) << display.reason;
}

TEST(DisplayTest, APlatformThatQtDoesNotHaveIsNamed)
{
    const NoDisplay none;
    const Variable platform("QT_QPA_PLATFORM", "teletype");
    EXPECT_NE(findDisplay().reason.find("plug-in for teletype"), std::string::npos);
}

TEST(DisplayTest, TheFirstThatCanBeUsedIsTaken)
{
    const NoDisplay none;
    const Variable platform("QT_QPA_PLATFORM", "teletype;xcb;offscreen:x=1;minimal");
    const Variable x("DISPLAY", ":5077");
    EXPECT_EQ(findDisplay().platform, "offscreen:x=1");
}

TEST(DisplayTest, ACompositorThatIsNotThereIsFoundOutBeforehand)
{
    const NoDisplay none;
    const Variable wayland("WAYLAND_DISPLAY", "wayland-5077");
    EXPECT_EQ(findDisplay().platform, "");
    EXPECT_NE(findDisplay().reason.find("wayland"), std::string::npos);
}

} // namespace
} // namespace kel::test
