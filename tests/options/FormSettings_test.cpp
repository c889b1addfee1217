// SPDX-License-Identifier: MIT
// What the dialog says of its settings: what they are, what differs from the model's default, what saving would change.

#include "tests/options/OptionsHost.h"

#include <gmock/gmock.h>

namespace kel::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class FormSettingsTest : public testing::Test {
protected:
    OptionsHost host;
    [[nodiscard]] OptionsAids& aids() { return host.form().Aids(); }
};

TEST_F(FormSettingsTest, EachSettingIsExplainedWithItsRangeAndTheModelsDefault)
{
    frmOptions& form = host.formFor(kelReaderTypePDIVMR138);
    EXPECT_EQ(aids().explanation(form.txtMarkCutOff),
              "Saved for the application; no reader uses it. Range: 192 to 254. Default for this model: 250.");
    EXPECT_EQ(aids().explanation(form.cboBaud), "The speed of the line. It has to be the one that the reader is set "
                                                "to. Default for this model: 9600.");
    EXPECT_THAT(aids().explanation(form.cboParity), HasSubstr("Default for this model: None."));
    EXPECT_THAT(aids().explanation(form.chkFeeder), HasSubstr("Default for this model: off."));
    EXPECT_THAT(aids().explanation(form.cboPort), Not(HasSubstr("Default")));
    EXPECT_THAT(aids().explanation(form.lblPort), IsEmpty());
    for (const Control* const control : form.Controls()) {
        const bool isWorked = control->TypeName() == "CheckBox" || control->TypeName() == "PowerEdit" ||
                              control->TypeName() == "PowerCombo";
        EXPECT_TRUE(!isWorked || !aids().explanation(*control).empty()) << control->Name();
    }
}

TEST_F(FormSettingsTest, WithoutAModelThereIsNoDefault)
{
    frmOptions& form = host.form();
    EXPECT_THAT(aids().explanation(form.cboReaderType), HasSubstr("make and model"));
    EXPECT_THAT(aids().explanation(form.cboBaud), Not(HasSubstr("Default")));
    EXPECT_FALSE(aids().differs(form.cboBaud));
}

TEST_F(FormSettingsTest, WhatDiffersFromTheDefaultCanBeReset)
{
    frmOptions& form = host.formFor(kelReaderTypeScantronScanMark2500);
    form.cmdDefaults.Click();
    for (Control* const control : form.Controls())
        EXPECT_FALSE(aids().differs(*control)) << control->Name();

    form.chkRejecter.Click();
    form.txtSystemPause.Text("120");
    form.cboBaud.CurrentRow(form.cboBaud.FindRow("300", 0, 0));
    form.cboParity.CurrentRow(form.cboParity.FindRow("E", 0, 1));
    const std::vector<Control*> changed = {&form.chkRejecter, &form.txtSystemPause, &form.cboBaud, &form.cboParity};
    for (Control* const control : changed)
        EXPECT_TRUE(aids().differs(*control)) << control->Name();
    EXPECT_EQ(aids().resetCaption(form.txtSystemPause), "Reset to the model's default: 50");
    EXPECT_EQ(aids().resetCaption(form.cboBaud), "Reset to the model's default: 19200");
    for (Control* const control : changed)
        aids().reset(*control);
    for (Control* const control : changed)
        EXPECT_FALSE(aids().differs(*control)) << control->Name();
    EXPECT_EQ(form.txtSystemPause.Text(), "50");
    EXPECT_EQ(form.cboBaud.Text(), "19200");
    EXPECT_EQ(form.cboParity.Text(), "None");
}

TEST_F(FormSettingsTest, ANumberIsTheSameInAnySpelling)
{
    frmOptions& form = host.formFor(kelReaderTypeScantronScanMark2500);
    form.txtSystemPause.Text("050");
    EXPECT_FALSE(aids().differs(form.txtSystemPause));
}

TEST_F(FormSettingsTest, WhatTheUserCannotWorkDoesNotDiffer)
{
    frmOptions& form = host.formFor(kelReaderTypeNCSOpScan4);
    form.chkReaderGrade.Click();
    EXPECT_EQ(form.txtRecognitionThreshold.Text(), "6");
    EXPECT_FALSE(aids().differs(form.txtRecognitionThreshold)) << "fixed while the reader grades";
    aids().reset(form.txtRecognitionThreshold);
    EXPECT_EQ(form.txtRecognitionThreshold.Text(), "6");
}

TEST_F(FormSettingsTest, ChangesThatNobodyWantedAreTold)
{
    host.reader().LoadDefaults(kelReaderTypeScantronScanMark2500);
    host.reader().Port(1);
    EXPECT_THAT(aids().unsoughtChanges(), IsEmpty());
}

TEST_F(FormSettingsTest, ASpeedThatIsInNoListAndAPortThatIsGoneAreTold)
{
    host.reader().LoadDefaults(kelReaderTypeScantronScanMark2500);
    host.reader().Port(9);
    host.reader().BaudRate(static_cast<kelReaderBaudRate>(4800));
    host.reader().SleepTime(5);
    frmOptions& form = host.form();
    EXPECT_THAT(aids().unsoughtChanges(),
                AllOf(HasSubstr("\nPort: now 9, then 1"), HasSubstr("\nBaud rate: now 4800, then none"),
                      HasSubstr("\nSystem pause (ms): now 5, then 50")));

    form.cboBaud.CurrentRow(form.cboBaud.FindRow("9600", 0, 0));
    form.txtSystemPause.Text("20");
    EXPECT_THAT(aids().unsoughtChanges(),
                AllOf(HasSubstr("Port: now 9, then 1"), Not(HasSubstr("Baud")), Not(HasSubstr("pause"))));
    form.cboPort.CurrentRow(1);
    EXPECT_THAT(aids().unsoughtChanges(), IsEmpty()) << "the user has touched them all";
}

TEST_F(FormSettingsTest, AnotherModelBringsItsOwnValues)
{
    host.reader().LoadDefaults(kelReaderTypeScantronScanMark2500);
    host.reader().Port(3);
    host.reader().BaudRate(static_cast<kelReaderBaudRate>(4800));
    host.form();
    host.choose(kelReaderTypeScantron8000);
    EXPECT_THAT(aids().unsoughtChanges(), IsEmpty());
}

TEST_F(FormSettingsTest, APortThatNoReaderHadIsNoLoss)
{
    host.reader().Port(9);
    host.form();
    host.choose(kelReaderTypeScantron8000);
    EXPECT_THAT(aids().unsoughtChanges(), IsEmpty());
}

TEST_F(FormSettingsTest, AReaderThatHadNoPortYetLosesNone)
{
    host.reader().LoadDefaults(kelReaderTypeScantronScanMark2500);
    EXPECT_EQ(host.form().cboPort.Text(), "1");
    EXPECT_THAT(aids().unsoughtChanges(), IsEmpty());
}

TEST_F(FormSettingsTest, AUsbModelLeavesTheLineAlone)
{
    host.reader().LoadDefaults(kelReaderTypeSekonicSR3500);
    host.reader().Port(9);
    host.reader().BaudRate(static_cast<kelReaderBaudRate>(4800));
    host.form();
    EXPECT_THAT(aids().unsoughtChanges(), IsEmpty());
}

TEST_F(FormSettingsTest, AModelThatIsNotOfferedIsTold)
{
    host.reader().LoadDefaults(kelReaderTypeScantronScanMark2500);
    host.reader().Profiles()->ProfileType(kelProfileTypeSekonic);
    frmOptions& form = host.form();
    ASSERT_EQ(form.cboReaderType.Text(), "No reader");
    EXPECT_THAT(aids().unsoughtChanges(), HasSubstr("Reader model: now Scantron Scanmark 2500, then No reader"));
}

TEST_F(FormSettingsTest, ANumberThatWasCorrectedIsTold)
{
    frmOptions& form = host.formFor(kelReaderTypeScantronScanMark2500);
    form.txtRecognitionThreshold.Text("300");
    form.txtRecognitionThreshold.Validate();
    EXPECT_EQ(aids().corrected(form.txtRecognitionThreshold, "300"),
              "Recognition threshold: 300 is outside the range, so it became 15. Choose “OK” again to keep that.");
    form.txtSystemPause.Text("0050");
    form.txtSystemPause.Validate();
    EXPECT_THAT(aids().corrected(form.txtSystemPause, "0050"), IsEmpty());
}

} // namespace
} // namespace kel::test
