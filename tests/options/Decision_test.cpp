// SPDX-License-Identifier: MIT
// What a window asks of its user before a button of the form does its work.

#include "options/Decision.h"
#include "tests/options/OptionsHost.h"

#include <gmock/gmock.h>

#include <vector>

namespace kel::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// A window with the focus where a test has it. It notes what it is asked for.
class NotedView final : public DecisionView {
public:
    [[nodiscard]] const PowerEdit* field() override { return edit; }
    [[nodiscard]] bool leaveField() override
    {
        asked.emplace_back("leave");
        edit->Validate();
        return edit->Number().has_value();
    }
    void showCorrection(const std::string& sentence) override { asked.push_back(sentence); }
    void showForm() override { asked.emplace_back("show"); }
    [[nodiscard]] bool allows(const std::string& changes) override
    {
        asked.push_back(changes);
        return allowed;
    }

    PowerEdit* edit = nullptr;
    bool allowed = false;
    std::vector<std::string> asked;
};

class DecisionTest : public testing::Test {
protected:
    OptionsHost host;
    frmOptions& form = host.formFor(kelReaderTypeScantronScanMark2500);
    NotedView view;
};

TEST_F(DecisionTest, OkShowsANumberThatWasPutRightBeforeItTakesIt)
{
    view.edit = &form.txtSystemPause;
    form.txtSystemPause.Text("99999");
    EXPECT_FALSE(mayWork(form, form.cmdOK, view));
    EXPECT_THAT(view.asked, ElementsAre("leave", HasSubstr("99999")));
    EXPECT_EQ(form.txtSystemPause.Text(), "10000");
    view.asked.clear();
    EXPECT_TRUE(mayWork(form, form.cmdOK, view));
    EXPECT_THAT(view.asked, ElementsAre("leave", "show"));
}

TEST_F(DecisionTest, WhatIsNoNumberHoldsUpEveryButtonButCancel)
{
    view.edit = &form.txtSystemPause;
    form.txtSystemPause.Text("soon");
    for (const PowerButton* const button : {&form.cmdOK, &form.cmdDefaults, &form.cmdLocate})
        EXPECT_FALSE(mayWork(form, *button, view)) << button->Name();
    EXPECT_FALSE(mayTest(form, view));
    EXPECT_THAT(view.asked, ElementsAre("leave", "leave", "leave", "leave"));
    view.asked.clear();
    EXPECT_TRUE(mayWork(form, form.cmdCancel, view));
    EXPECT_THAT(view.asked, IsEmpty());
}

TEST_F(DecisionTest, OtherButtonsTakeANumberAsItWasPutRight)
{
    view.edit = &form.txtSystemPause;
    form.txtSystemPause.Text("99999");
    EXPECT_TRUE(mayWork(form, form.cmdLocate, view));
    EXPECT_THAT(view.asked, ElementsAre("leave"));
}

TEST_F(DecisionTest, OkAsksAboutWhatWouldChangeUntouchedOnceTheFieldCounts)
{
    host.reader().Port(9);
    view.edit = &form.txtSystemPause;
    EXPECT_FALSE(mayWork(form, form.cmdOK, view));
    EXPECT_THAT(view.asked, ElementsAre("leave", "show", HasSubstr("Port: now 9")));
    view.asked.clear();
    view.edit = nullptr;
    view.allowed = true;
    EXPECT_TRUE(mayWork(form, form.cmdOK, view));
    EXPECT_THAT(view.asked, ElementsAre("show", HasSubstr("Port: now 9")));
    view.asked.clear();
    EXPECT_TRUE(mayWork(form, form.cmdDefaults, view));
    EXPECT_THAT(view.asked, IsEmpty());
}

} // namespace
} // namespace kel::test
