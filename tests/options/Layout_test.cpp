// SPDX-License-Identifier: MIT
#include "tests/options/OptionsHost.h"

#include "options/basPublic.h"

#include <gtest/gtest.h>

namespace kel::test {
namespace {

/// A hundred twips a character, and twice that in bold.
class Ruler final : public TextMeasure {
    double TextWidth(const std::string& text, const Font& font) override
    {
        return static_cast<double>(text.size()) * (font.Bold ? 200 : 100);
    }
};

class LayoutTest : public testing::Test {
protected:
    class Bare final : public Form {};

    LayoutTest()
    {
        form.Measure(&ruler);
        label.Move(120, 0, 500, 285);
        edit.Move(2000, 0, 1000, 285);
    }

    Ruler ruler;
    Bare form;
    Frame frame{form, "frm"};
    Label label{form, "lbl", &frame};
    CheckBox box{form, "chk", &frame};
    PowerButton button{form, "cmd", &frame};
    PowerEdit edit{form, "txt", &frame};
    PowerEdit other{form, "txt2", &frame};
};

TEST_F(LayoutTest, AccessKeysDoNotCountAndADoubledAmpersandCountsOnce)
{
    label.Caption("Mar&k");
    EXPECT_EQ(ControlTextWidth(form, label), 400);
    label.Caption("A && &B");
    EXPECT_EQ(ControlTextWidth(form, label), 500);
    label.Caption("&&&&");
    EXPECT_EQ(ControlTextWidth(form, label), 200);
}

TEST_F(LayoutTest, TheWidthIsThatOfTheControlsFontAndTheFormKeepsItsOwn)
{
    Font bold;
    bold.Bold = True;
    label.Font(bold);
    label.Caption("Mark");
    EXPECT_EQ(ControlTextWidth(form, label), 800);
    EXPECT_EQ(form.Font(), Font());
}

TEST_F(LayoutTest, KindsWithoutACaptionHaveNoWidth)
{
    edit.Caption("Mark");
    EXPECT_EQ(ControlTextWidth(form, edit), 0);
}

TEST_F(LayoutTest, AutoSizeLeavesRoomForABox)
{
    for (Control* const control : ControlList{&label, &box, &button, &edit})
        control->Caption("Mark");
    ControlAutoSize(form, {&label, &box, &button, &edit});
    EXPECT_EQ(label.Width(), 400);
    EXPECT_EQ(box.Width(), 1200);
    EXPECT_EQ(button.Width(), 1200);
    EXPECT_EQ(edit.Width(), 1000);
}

TEST_F(LayoutTest, AFieldGoesBehindItsLabelAndKeepsItsRightEdge)
{
    label.Caption("twenty characters...");
    ControlPositionRight(form, label, edit, nullptr, True, 60, False);
    EXPECT_EQ(edit.Left(), 2180);
    EXPECT_EQ(edit.Width(), 820);
}

TEST_F(LayoutTest, ADistanceBeyondTheWidthOnlyMoves)
{
    label.Caption(std::string(40, 'x'));
    ControlPositionRight(form, label, edit, nullptr, True, 60, False);
    EXPECT_EQ(edit.Left(), 4180);
    EXPECT_EQ(edit.Width(), 1000);
}

TEST_F(LayoutTest, OnlyMoveRightLeavesARoomyFieldWhereItIs)
{
    label.Caption("x");
    ControlPositionRight(form, label, edit, nullptr, True, 60, True);
    EXPECT_EQ(edit.Left(), 2000);
    ControlPositionRight(form, label, edit, nullptr, True, 60, False);
    EXPECT_EQ(edit.Left(), 280);
    EXPECT_EQ(edit.Left() + edit.Width(), 3000);
}

TEST_F(LayoutTest, OthersMoveAlongIfTheWidthIsKept)
{
    other.Move(4000, 0, 700, 285);
    label.Caption("twenty characters...");
    const ControlList rest = {&other};
    ControlPositionRight(form, label, edit, &rest, False, 60, False);
    EXPECT_EQ(edit.Left(), 2180);
    EXPECT_EQ(edit.Width(), 1000);
    EXPECT_EQ(other.Left(), 4180);
}

TEST_F(LayoutTest, BehindAFrameStandsItsTitle)
{
    frame.Move(100, 0, 5000, 900);
    frame.Caption("Title");
    ControlPositionRight(form, frame, edit, nullptr, False, 60, False);
    EXPECT_EQ(edit.Left(), 100 + 500 + 90 + 60);
    EXPECT_EQ(frame.Width(), 5000);
}

TEST_F(LayoutTest, AColumnLinesUpAtItsRightmost)
{
    other.Move(2300, 0, 700, 285);
    ControlAlignLeft({&edit, &other}, True);
    EXPECT_EQ(edit.Left(), 2300);
    EXPECT_EQ(edit.Width(), 700);
    EXPECT_EQ(other.Width(), 700);
    edit.Left(2000);
    ControlAlignLeft({&edit, &other}, False);
    EXPECT_EQ(edit.Left(), 2300);
    EXPECT_EQ(edit.Width(), 700);
}

TEST(RepositionTest, ALongLabelPushesTheWholeColumn)
{
    OptionsHost host;
    frmOptions& form = host.form();
    Ruler ruler;
    form.Measure(&ruler);
    const double right = form.txtMarkCutOff.Left() + form.txtMarkCutOff.Width();
    const double listRight = form.cboBaud.Left() + form.cboBaud.Width();
    form.lblMarkDiscrimination.Caption(std::string(38, 'x'));
    form.lblParity.Caption(std::string(20, 'x'));
    form.RepositionControls();
    for (const PowerEdit* const field : {&form.txtRecognitionThreshold, &form.txtMarkDiscrimination,
                                         &form.txtMarkCutOff, &form.txtReaderTimeout, &form.txtSystemPause}) {
        EXPECT_EQ(field->Left(), form.lblMarkDiscrimination.Left() + 3800 + 60) << field->Name();
        EXPECT_EQ(field->Left() + field->Width(), right) << field->Name();
    }
    for (const PowerCombo* const list :
         {&form.cboPort, &form.cboBaud, &form.cboDataBits, &form.cboParity, &form.cboStopBits, &form.cboFlowControl}) {
        EXPECT_EQ(list->Left(), form.lblParity.Left() + 2000 + 60) << list->Name();
        EXPECT_EQ(list->Left() + list->Width(), listRight) << list->Name();
    }
    form.Measure(nullptr);
}

TEST(UnloadFormTest, EndsAFormAndIgnoresNone)
{
    std::shared_ptr<frmOptions> form;
    UnloadForm(form);
    EXPECT_EQ(form, nullptr);

    OptionsHost host;
    form = std::make_shared<frmOptions>();
    form->SetReader(host.reader());
    form->Show();
    bool hidden = false;
    form->onHide = [&] { hidden = true; };
    UnloadForm(form);
    EXPECT_EQ(form, nullptr);
    EXPECT_TRUE(hidden);
    EXPECT_TRUE(host.heard().reports.empty());
}

} // namespace
} // namespace kel::test
