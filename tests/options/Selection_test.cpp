// SPDX-License-Identifier: MIT
#include "tests/options/OptionsHost.h"

#include "strings/VBLMRTSModule.h"

#include <gtest/gtest.h>

namespace kel::test {
namespace {

TEST(SelectionTest, NoneHidesBothFramesAndLocksDefaults)
{
    OptionsHost host;
    host.formFor(kelReaderTypeNCSOpScan4);
    ASSERT_TRUE(host.form().frmReader.Visible());
    host.choose(kelReaderTypeNone);
    EXPECT_FALSE(host.form().frmReader.Visible());
    EXPECT_FALSE(host.form().frmComPort.Visible());
    EXPECT_FALSE(host.form().cmdDefaults.Enabled());
    EXPECT_FALSE(host.form().cboBaud.Seen());
    EXPECT_TRUE(host.form().cboBaud.Visible());
}

TEST(SelectionTest, EZDataLeavesTheThresholdAndThePort)
{
    OptionsHost host;
    host.form();
    host.choose(kelReaderTypeNCSEZData);
    std::vector<std::string> seen;
    for (const Control* const control : host.form().Controls()) {
        if (control->Seen() && (control->TypeName() == "PowerEdit" || control->TypeName() == "CheckBox" ||
                                control->TypeName() == "PowerCombo" || control->TypeName() == "PowerButton"))
            seen.emplace_back(control->Name());
    }
    EXPECT_EQ(seen, (std::vector<std::string>{"cboReaderType", "txtRecognitionThreshold", "cboPort", "cmdLocate",
                                              "cmdDefaults", "cmdOK", "cmdCancel"}));
    EXPECT_EQ(host.form().txtRecognitionThreshold.Text(), "4");
    EXPECT_EQ(host.form().txtRecognitionThreshold.Minimum(), 0);
    EXPECT_EQ(host.form().txtRecognitionThreshold.Maximum(), 9);
}

TEST(SelectionTest, AUsbModelShowsTheLineWithoutASelection)
{
    OptionsHost host;
    host.formFor(kelReaderTypeNCSOpScan4);
    host.choose(kelReaderTypeSekonicSR3500);
    for (const PowerCombo* const list :
         {&host.form().cboPort, &host.form().cboBaud, &host.form().cboDataBits, &host.form().cboParity,
          &host.form().cboStopBits, &host.form().cboFlowControl}) {
        EXPECT_TRUE(list->Seen()) << list->Name();
        EXPECT_FALSE(list->Enabled()) << list->Name();
    }
    EXPECT_EQ(host.form().cboDataBits.CurrentRow(), -1);
    EXPECT_EQ(host.form().cboStopBits.CurrentRow(), -1);
    EXPECT_EQ(host.form().cboParity.CurrentRow(), -1);
}

TEST(SelectionTest, TheVmr138HasGreyLevels)
{
    OptionsHost host;
    host.form();
    host.choose(kelReaderTypePDIVMR138);
    EXPECT_EQ(host.form().txtMarkCutOff.Minimum(), 192);
    EXPECT_EQ(host.form().txtMarkCutOff.Maximum(), 254);
    EXPECT_EQ(host.form().txtMarkDiscrimination.Minimum(), 0);
    EXPECT_EQ(host.form().txtMarkDiscrimination.Maximum(), 254);
}

TEST(SelectionTest, AChangeOfModelLosesWhatWasTypedAndKeepsThePort)
{
    OptionsHost host({1, 3, 7});
    host.formFor(kelReaderTypeScantronScanMark4000);
    host.form().cboPort.CurrentRow(2);
    host.form().txtMarkCutOff.Text("14");
    host.form().chkRejecter.Click();
    host.choose(kelReaderTypeScantronScanMark5500);
    EXPECT_EQ(host.form().txtMarkCutOff.Text(), "10");
    EXPECT_EQ(host.form().chkRejecter.Value(), 1);
    EXPECT_EQ(host.form().cboPort.Text(), "7");
}

TEST(SelectionTest, ThePauseKeepsWhatItHadIfTheCatalogueIsBelowItsMinimum)
{
    OptionsHost host;
    host.formFor(kelReaderTypeScantronScanMark4000);
    host.form().txtSystemPause.Text("77");
    host.reader().Profiles()->Item("15")->SleepTime(9);
    host.choose(kelReaderTypeScantronScanMark5500);
    EXPECT_EQ(host.form().txtSystemPause.Text(), "77");
}

TEST(SelectionTest, TheModelListGetsTheFocus)
{
    OptionsHost host;
    host.form().cmdOK.SetFocus();
    host.choose(kelReaderTypePDIVMR138);
    EXPECT_EQ(host.form().ActiveControl(), &host.form().cboReaderType);
}

TEST(SelectionTest, AModelWithoutAProfileIsReported)
{
    OptionsHost host;
    host.form();
    host.reader().Profiles()->Remove("24");
    host.choose(kelReaderTypePDIVMR138);
    ASSERT_EQ(host.heard().reports.size(), 1U);
    EXPECT_EQ(host.heard().reports[0].ErrorSource.substr(0, 36), "frmOptions.cboReaderType_SelChangeEx");
    EXPECT_EQ(host.heard().reports[0].ErrorNumber, 91);
}

TEST(GradingTest, TickingFixesTheNumbersAndUntickingSetsThemFree)
{
    OptionsHost host;
    frmOptions& form = host.formFor(kelReaderTypeNCSOpScan4);
    form.chkReaderGrade.Click();
    for (const PowerEdit* const field :
         {&form.txtMarkCutOff, &form.txtRecognitionThreshold, &form.txtMarkDiscrimination})
        EXPECT_FALSE(field->Enabled()) << field->Name();
    EXPECT_EQ(form.txtMarkCutOff.Text(), "10");
    EXPECT_EQ(form.txtRecognitionThreshold.Text(), "6");
    EXPECT_EQ(form.txtMarkDiscrimination.Text(), "3");
    EXPECT_FALSE(form.lblMarkCutOff.Enabled());
    EXPECT_TRUE(host.boxes().empty());

    form.chkReaderGrade.Click();
    EXPECT_TRUE(form.txtRecognitionThreshold.Enabled());
    EXPECT_TRUE(form.lblMarkDiscrimination.Enabled());
    EXPECT_EQ(form.txtRecognitionThreshold.Text(), "6");
    EXPECT_EQ(host.boxes(), (std::vector<ShownBox>{{VBLM_RTString(TextNumber(172)), BoxIcon::Information,
                                                    BoxButtons::Ok, VBLM_RTString(TextNumber(108))}}));
}

TEST(GradingTest, AChangeOfModelTellsNothing)
{
    OptionsHost host;
    host.formFor(kelReaderTypeNCSOpScan4).chkReaderGrade.Click();
    host.choose(kelReaderTypeNCSOpScan3);
    EXPECT_EQ(host.form().chkReaderGrade.Value(), 0);
    EXPECT_EQ(host.form().txtRecognitionThreshold.Text(), "7");
    EXPECT_TRUE(host.form().txtRecognitionThreshold.Enabled());
    EXPECT_TRUE(host.boxes().empty());
}

TEST(GradingTest, AScanmarkDoesNotGradeMarks)
{
    OptionsHost host;
    frmOptions& form = host.formFor(kelReaderTypeScantronScanMark4000);
    form.txtMarkCutOff.Text("12");
    form.chkReaderGrade.Click();
    EXPECT_EQ(form.chkReaderGrade.Value(), 0) << "the box is locked";
    form.chkReaderGrade.Value(1);
    EXPECT_EQ(form.txtMarkCutOff.Text(), "12");
    EXPECT_TRUE(form.txtMarkCutOff.Enabled());
}

} // namespace
} // namespace kel::test
