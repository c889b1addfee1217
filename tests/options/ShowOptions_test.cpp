// SPDX-License-Identifier: MIT
#include "tests/options/OptionsHost.h"

#include "options/OptionsPresenterFactory.h"
#include "options/posix/OptionsModule.h"
#include "strings/VBLMRTSModule.h"

#include <gtest/gtest.h>

namespace kel::test {
namespace {

/// A presenter that does what a test says.
class Script final : public OptionsPresenter {
public:
    bool show(frmOptions& form, void* parent, std::string& why) override
    {
        parentSeen = parent;
        why = reason;
        return !steps || steps(form);
    }
    Screen* screen() override { return boxes; }

    std::function<bool(frmOptions&)> steps;
    void* parentSeen = nullptr;
    std::string reason;
    Screen* boxes = nullptr;
};

class ShowOptionsTest : public testing::Test {
protected:
    ShowOptionsTest() { setOptionsPresenter(script); }
    ~ShowOptionsTest() override { setOptionsPresenter(nullptr); }

    clsKELReader& reader() { return host.reader(); }

    OptionsHost host;
    std::shared_ptr<Script> script = std::make_shared<Script>();
};

TEST_F(ShowOptionsTest, OkIsTrueAndTheSettingsAreTheReaders)
{
    script->steps = [](frmOptions& form) {
        form.Show();
        form.cboReaderType.CurrentRow(form.cboReaderType.FindRow("13", 0, 1));
        form.cmdOK.Click();
        return true;
    };
    EXPECT_EQ(reader().ShowOptions(), True);
    EXPECT_EQ(reader().ReaderType(), kelReaderTypeScantronScanMark2500);
    EXPECT_EQ(reader().Windowing(), True);
    EXPECT_EQ(script->parentSeen, nullptr);
}

TEST_F(ShowOptionsTest, CancelIsFalse)
{
    script->steps = [](frmOptions& form) {
        form.Show();
        form.cmdCancel.Click();
        return true;
    };
    EXPECT_EQ(reader().ShowOptions(), False);
    EXPECT_TRUE(host.heard().reports.empty());
}

TEST_F(ShowOptionsTest, ADialogThatNobodyDecidesIsCancelledAlsoAfterAnOk)
{
    script->steps = [](frmOptions& form) {
        form.Show();
        form.cmdOK.Click();
        return true;
    };
    EXPECT_EQ(reader().ShowOptions(), True);
    script->steps = [](frmOptions& form) {
        form.Show();
        return true;
    };
    EXPECT_EQ(reader().ShowOptions(), False);
}

TEST_F(ShowOptionsTest, ThePresenterGetsParentHelpTopicAndHelpFile)
{
    int window = 0;
    Int32 topic = 0;
    std::string file;
    reader().HelpID(kelReaderHelpIDProperties, 4711);
    reader().HelpFile("reader.html");
    script->steps = [&](frmOptions& form) {
        topic = form.HelpContextID();
        file = form.HelpFile();
        return true;
    };
    reader().ShowOptions(&window);
    EXPECT_EQ(script->parentSeen, &window);
    EXPECT_EQ(topic, 4711);
    EXPECT_EQ(file, "reader.html");
    reader().HelpFile("");
}

TEST_F(ShowOptionsTest, AReaderThatIsNotShownIsReported)
{
    script->reason = "There is no display.";
    script->steps = [](frmOptions&) { return false; };
    EXPECT_EQ(reader().ShowOptions(), False);
    ASSERT_EQ(host.heard().reports.size(), 1U);
    EXPECT_EQ(host.heard().reports[0].ErrorDescription, "There is no display.");
    EXPECT_EQ(host.heard().reports[0].ErrorNumber, 68);
    EXPECT_EQ(host.heard().reports[0].ErrorSource.substr(0, 24), "clsKELReader.ShowOptions");
}

TEST_F(ShowOptionsTest, APresentersFailureIsReported)
{
    script->steps = [](frmOptions&) -> bool { throw std::runtime_error("no room"); };
    EXPECT_EQ(reader().ShowOptions(), False);
    ASSERT_EQ(host.heard().reports.size(), 1U);
    EXPECT_EQ(host.heard().reports[0].ErrorDescription, "no room");
}

TEST_F(ShowOptionsTest, BoxesGoToThePresentersScreen)
{
    SimulatedScreen screen;
    script->boxes = &screen;
    script->steps = [](frmOptions& form) {
        form.Show();
        form.cboReaderType.CurrentRow(form.cboReaderType.FindRow("4", 0, 1));
        form.chkReaderGrade.Click();
        form.chkReaderGrade.Click();
        return true;
    };
    reader().ShowOptions();
    ASSERT_EQ(screen.boxes().size(), 1U);
    EXPECT_EQ(screen.boxes()[0].text, VBLM_RTString(TextNumber(172)));
    EXPECT_TRUE(host.boxes().empty());
    platform().screen().Beep();
    EXPECT_EQ(screen.beeps(), 0) << "only while the dialog is shown";
}

/// An error object that knows how to give a window its font.
class FontGiver final : public ErrorObject {
public:
    Int32 RaiseError(const ErrorReport&) override { return 0; }
    void SetFont(void* form) override
    {
        window = form;
        if (onSetFont)
            onSetFont();
    }

    void* window = nullptr;
    std::function<void()> onSetFont;
};

TEST_F(ShowOptionsTest, TheErrorObjectGivesTheFontBetweenTheCaptionsAndTheLayout)
{
    const auto giver = std::make_shared<FontGiver>();
    reader().SetError(giver);
    int window = 0;
    std::string caption;
    double left = -1;
    Int32 rows = -1;
    script->steps = [&](frmOptions& form) {
        form.Window(&window);
        const double designed = form.txtMarkCutOff.Left();
        giver->onSetFont = [&, designed] {
            caption = form.Caption();
            left = form.txtMarkCutOff.Left() - designed;
            rows = form.cboReaderType.RowCount();
        };
        form.Show();
        return true;
    };
    reader().ShowOptions();
    EXPECT_EQ(giver->window, &window);
    EXPECT_EQ(caption, VBLM_RTString(TextNumber(102)));
    EXPECT_EQ(left, 0);
    EXPECT_EQ(rows, 0);
    reader().SetError(nullptr);
}

TEST(FormLoadTest, EveryCaptionIsSet)
{
    OptionsHost host;
    for (const Control* const control : host.form().Controls()) {
        const std::string_view type = control->TypeName();
        if (type != "PowerCombo" && type != "PowerEdit" && type != "PictureBox" && type != "Line") {
            EXPECT_FALSE(control->Caption().empty()) << control->Name();
        }
    }
    EXPECT_EQ(host.form().cboBaud.Prompt(), VBLM_RTString(TextNumber(138)));
    EXPECT_EQ(host.form().cboParity.Prompt(), VBLM_RTString(TextNumber(140)));
    EXPECT_EQ(host.form().cmdOK.Caption(), VBLM_RTString(TextNumber(154)));
    EXPECT_EQ(host.form().lblSystemPause.Caption(), VBLM_RTString(TextNumber(130)));
}

TEST(FormLoadTest, AFormWithoutAReaderReports)
{
    OptionsHost host;
    frmOptions form;
    form.Show();
    ASSERT_FALSE(host.heard().reports.empty());
    EXPECT_EQ(host.heard().reports[0].ErrorSource.substr(0, 21), "frmOptions.LoadValues");
    EXPECT_EQ(host.heard().reports[0].ErrorNumber, 91);
}

class PresenterChoiceTest : public testing::Test {
protected:
    ~PresenterChoiceTest() override { setOptionsPresenterFactory(&loadOptionsModule); }
};

TEST_F(PresenterChoiceTest, WithoutAnyShowOptionsReports48)
{
    OptionsHost host;
    setOptionsPresenterFactory(nullptr);
    EXPECT_EQ(host.reader().ShowOptions(), False);
    ASSERT_EQ(host.heard().reports.size(), 1U);
    EXPECT_EQ(host.heard().reports[0].ErrorNumber, 48);
}

TEST_F(PresenterChoiceTest, AMissingModuleIsNamed)
{
    OptionsHost host;
    host.machine.process().componentFolder("/nowhere");
    setOptionsPresenterFactory(&loadOptionsModule);
    EXPECT_EQ(host.reader().ShowOptions(), False);
    ASSERT_EQ(host.heard().reports.size(), 1U);
    EXPECT_EQ(host.heard().reports[0].ErrorNumber, 48);
    EXPECT_NE(host.heard().reports[0].ErrorDescription.find("/nowhere/libKELReader81U_options_qt.so"),
              std::string::npos);
}

TEST_F(PresenterChoiceTest, TheOwnOneIsMadeOnceAndTheHostsGoesFirst)
{
    setOptionsPresenterFactory([]() -> std::shared_ptr<OptionsPresenter> { return std::make_shared<Script>(); });
    const auto own = optionsPresenter();
    EXPECT_EQ(optionsPresenter(), own);
    const auto hosts = std::make_shared<Script>();
    setOptionsPresenter(hosts);
    EXPECT_EQ(optionsPresenter(), hosts);
    setOptionsPresenter(nullptr);
    EXPECT_EQ(optionsPresenter(), own);
}

} // namespace
} // namespace kel::test
