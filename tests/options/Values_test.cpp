// SPDX-License-Identifier: MIT
#include "tests/options/OptionsHost.h"

#include "simulators/SimulatorTable.h"
#include "strings/VBLMRTSModule.h"

#include <gtest/gtest.h>

namespace kel::test {
namespace {

std::vector<std::string> column(const PowerCombo& list, Int32 column)
{
    std::vector<std::string> texts;
    for (Int32 row = 0; row < list.RowCount(); ++row)
        texts.push_back(list.CellText(column, row));
    return texts;
}

using Texts = std::vector<std::string>;

TEST(LoadValuesTest, OffersThePortsThatOpen)
{
    OptionsHost host({2, 4, 16});
    host.machine.portState(4, PortState::Busy);
    host.machine.portState(9, PortState::NotPermitted);
    EXPECT_EQ(column(host.form().cboPort, 0), (Texts{"2", "16"}));
    EXPECT_FALSE(host.machine.line(2).isOpen());
    EXPECT_TRUE(host.heard().reports.empty());
}

TEST(LoadValuesTest, SelectsTheReadersPortOrTheFirst)
{
    OptionsHost host({2, 4});
    host.reader().Port(4);
    EXPECT_EQ(host.form().cboPort.Text(), "4");

    OptionsHost other({2, 4});
    other.reader().Port(3);
    EXPECT_EQ(other.form().cboPort.Text(), "2");
}

TEST(LoadValuesTest, FillsTheListsOfTheLine)
{
    OptionsHost host;
    const frmOptions& form = host.form();
    EXPECT_EQ(column(form.cboBaud, 0), (Texts{"110", "300", "600", "1200", "2400", "9600", "14400", "19200", "28800",
                                              "38400", "56000", "128000", "256000"}));
    EXPECT_EQ(column(form.cboDataBits, 0), (Texts{"4", "5", "6", "7", "8"}));
    EXPECT_EQ(column(form.cboStopBits, 0), (Texts{"1", "1.5", "2"}));
    EXPECT_EQ(column(form.cboParity, 0), (Texts{"None", "Odd", "Even", "Mark", "Space"}));
    EXPECT_EQ(column(form.cboParity, 1), (Texts{"N", "O", "E", "M", " "}));
    EXPECT_EQ(column(form.cboFlowControl, 0), (Texts{"None", "Xon / Xoff", "Hardware", "Both"}));
    EXPECT_EQ(column(form.cboFlowControl, 1), (Texts{"0", "1", "2", "3"}));
}

TEST(LoadValuesTest, TheReadersValuesGoOnTopOfTheCatalogue)
{
    OptionsHost host;
    clsKELReader& reader = host.reader();
    reader.LoadDefaults(kelReaderTypeNCSOpScan4);
    reader.Port(3);
    reader.BaudRate(kelReaderBaudRate1200);
    reader.DataBits(kelReaderDataBits5);
    reader.StopBits(1.5F);
    reader.Parity("M");
    reader.FlowControl(kelReaderFlowControlBoth);
    reader.Duplex(True);
    reader.Barcode(True);
    reader.Feeder(False);
    reader.Rejecter(True);
    reader.Windowing(True);
    reader.Printer()->Enabled(True);
    reader.RecognitionThreshold(5);
    reader.MarkCutOff(11);
    reader.MarkDiscrimination(2);
    reader.Timeout(8);
    reader.SleepTime(120);
    const frmOptions& form = host.form();
    EXPECT_EQ(form.cboReaderType.Text(), "Scantron OpScan 4/4U");
    EXPECT_EQ(form.cboPort.Text(), "3");
    EXPECT_EQ(form.cboBaud.Text(), "1200");
    EXPECT_EQ(form.cboDataBits.Text(), "5");
    EXPECT_EQ(form.cboStopBits.Text(), "1.5");
    EXPECT_EQ(form.cboParity.Text(), "Mark");
    EXPECT_EQ(form.cboFlowControl.Text(), "Both");
    EXPECT_EQ(form.chkDuplex.Value(), 1);
    EXPECT_EQ(form.chkBarcode.Value(), 1);
    EXPECT_EQ(form.chkFeeder.Value(), 0);
    EXPECT_FALSE(form.chkFeeder.Enabled());
    EXPECT_EQ(form.chkRejecter.Value(), 1);
    EXPECT_EQ(form.chkWindowing.Value(), 1);
    EXPECT_FALSE(form.chkWindowing.Visible());
    EXPECT_EQ(form.chkPrinter.Value(), 1);
    EXPECT_EQ(form.txtRecognitionThreshold.Text(), "5");
    EXPECT_EQ(form.txtMarkCutOff.Text(), "11");
    EXPECT_EQ(form.txtMarkDiscrimination.Text(), "2");
    EXPECT_EQ(form.txtReaderTimeout.Text(), "8");
    EXPECT_EQ(form.txtSystemPause.Text(), "120");
}

TEST(LoadValuesTest, AReaderThatGradesHasItsOwnNumbersLocked)
{
    OptionsHost host;
    host.reader().LoadDefaults(kelReaderTypeNCSOpScan4);
    host.reader().ReaderGrade(True);
    host.reader().RecognitionThreshold(9);
    EXPECT_EQ(host.form().txtRecognitionThreshold.Text(), "9");
    EXPECT_EQ(host.form().txtMarkCutOff.Text(), "10");
    EXPECT_FALSE(host.form().txtRecognitionThreshold.Enabled());
    EXPECT_TRUE(host.boxes().empty());
}

TEST(LoadValuesTest, AModelThatTheFilterHidesBecomesNone)
{
    OptionsHost host;
    host.reader().LoadDefaults(kelReaderTypePDIVMR138);
    host.reader().Profiles()->ProfileType(kelProfileTypeAP);
    EXPECT_EQ(host.form().cboReaderType.RowCount(), 5);
    EXPECT_EQ(host.form().cboReaderType.CurrentRow(), 0);
    EXPECT_FALSE(host.form().frmReader.Visible());
}

TEST(LoadValuesTest, StopBitsAreFoundByTheWholeCell)
{
    OptionsHost host;
    host.reader().LoadDefaults(kelReaderTypePDIVMR138);
    host.reader().StopBits(0);
    EXPECT_EQ(host.form().cboStopBits.CurrentRow(), -1);
}

TEST(LoadValuesTest, ATimeoutBeyondTheBoundsIsShownUntilItIsValidated)
{
    OptionsHost host;
    host.reader().LoadDefaults(kelReaderTypePDIVMR138);
    host.reader().Timeout(60);
    EXPECT_EQ(host.form().txtReaderTimeout.Text(), "60");
    host.form().txtReaderTimeout.Validate();
    EXPECT_EQ(host.form().txtReaderTimeout.Text(), "10");
    EXPECT_EQ(host.machine.screen().beeps(), 1);
}

TEST(LoadValuesTest, APauseBelowTheMinimumIsTheCataloguesAndStaysThat)
{
    OptionsHost host;
    host.reader().LoadDefaults(kelReaderTypePDIVMR138);
    host.reader().SleepTime(5);
    EXPECT_EQ(host.form().txtSystemPause.Text(), "50");
    host.form().cmdOK.Click();
    EXPECT_EQ(host.reader().SleepTime(), 50);
}

TEST(SaveValuesTest, OkWritesEverything)
{
    OptionsHost host({1, 3});
    frmOptions& form = host.form();
    host.choose(kelReaderTypeScanningSystemsSR607);
    form.cboPort.CurrentRow(1);
    form.cboBaud.CurrentRow(form.cboBaud.FindRow("19200", 0, 0));
    form.cboDataBits.CurrentRow(4);
    form.cboStopBits.CurrentRow(1);
    form.cboParity.CurrentRow(4);
    form.cboFlowControl.CurrentRow(1);
    form.chkBarcode.Click();
    form.chkPrinter.Click();
    form.chkRejecter.Click();
    form.chkWindowing.Click();
    form.txtRecognitionThreshold.Text("9");
    form.txtMarkCutOff.Text("12");
    form.txtMarkDiscrimination.Text("4");
    form.txtReaderTimeout.Text("7");
    form.txtSystemPause.Text("250");
    form.cmdOK.Click();
    EXPECT_FALSE(form.Visible());
    EXPECT_FALSE(frmOptions::Cancelled());
    EXPECT_EQ(form.iReaderIndex(), -1);

    const clsKELReader& reader = host.reader();
    EXPECT_EQ(reader.ReaderType(), kelReaderTypeScanningSystemsSR607);
    EXPECT_EQ(reader.Port(), 3);
    EXPECT_EQ(reader.BaudRate(), kelReaderBaudRate19200);
    EXPECT_EQ(reader.DataBits(), kelReaderDataBits8);
    EXPECT_EQ(reader.StopBits(), 1.5F);
    EXPECT_EQ(reader.Parity(), " ");
    EXPECT_EQ(reader.FlowControl(), kelReaderFlowControlXonXoff);
    EXPECT_EQ(reader.Barcode(), True);
    EXPECT_EQ(reader.Duplex(), True);
    EXPECT_EQ(reader.Feeder(), True);
    EXPECT_EQ(reader.Rejecter(), True);
    EXPECT_EQ(reader.Windowing(), False);
    EXPECT_EQ(reader.ReaderGrade(), False);
    EXPECT_EQ(reader.Printer()->Enabled(), True);
    EXPECT_EQ(reader.RecognitionThreshold(), 9);
    EXPECT_EQ(reader.MarkCutOff(), 12);
    EXPECT_EQ(reader.MarkDiscrimination(), 4);
    EXPECT_EQ(reader.Timeout(), 7);
    EXPECT_EQ(reader.SleepTime(), 250);
    EXPECT_TRUE(host.heard().reports.empty());
}

TEST(SaveValuesTest, AUsbModelLeavesTheLineAsItWas)
{
    OptionsHost host({});
    clsKELReader& reader = host.reader();
    reader.LoadDefaults(kelReaderTypeNCSOpScan4);
    reader.Port(5);
    host.form();
    host.choose(kelReaderTypeSekonicSR3500);
    host.form().txtMarkCutOff.Text("8");
    host.form().cmdOK.Click();
    EXPECT_FALSE(host.form().Visible());
    EXPECT_EQ(reader.ReaderType(), kelReaderTypeSekonicSR3500);
    EXPECT_EQ(reader.MarkCutOff(), 8);
    EXPECT_EQ(reader.Port(), 5);
    EXPECT_EQ(reader.BaudRate(), kelReaderBaudRate38400);
    EXPECT_EQ(reader.DataBits(), kelReaderDataBits7);
    EXPECT_EQ(reader.Parity(), "O");
    EXPECT_EQ(reader.StopBits(), 2);
    EXPECT_EQ(reader.FlowControl(), kelReaderFlowControlHardware);
}

TEST(SaveValuesTest, NoneTakesTheDefaultsOfNone)
{
    OptionsHost host({});
    host.formFor(kelReaderTypeNCSOpScan4);
    host.choose(kelReaderTypeNone);
    host.form().txtMarkCutOff.Text("9");
    host.form().cmdOK.Click();
    EXPECT_FALSE(host.form().Visible());
    EXPECT_EQ(host.reader().ReaderType(), kelReaderTypeNone);
    EXPECT_EQ(host.reader().MarkCutOff(), 0);
    EXPECT_EQ(host.reader().BaudRate(), kelReaderBaudRate9600);
    EXPECT_EQ(host.reader().DataBits(), 0);
}

TEST(SaveValuesTest, AFlowControlWithoutASelectionIsReported)
{
    OptionsHost host;
    host.reader().LoadDefaults(kelReaderTypePDIVMR138);
    host.reader().FlowControl(static_cast<kelReaderFlowControl>(9));
    host.form().cmdOK.Click();
    ASSERT_EQ(host.heard().reports.size(), 1U);
    EXPECT_EQ(host.heard().reports[0].ErrorNumber, 13);
    EXPECT_EQ(host.heard().reports[0].ErrorSource.substr(0, 21), "frmOptions.SaveValues");
}

TEST(OkTest, ASerialModelNeedsAPort)
{
    OptionsHost host({});
    frmOptions& form = host.formFor(kelReaderTypeScantronScanMark4000);
    EXPECT_EQ(form.cboPort.RowCount(), 0);
    form.txtMarkCutOff.Text("9");
    form.cmdOK.Click();
    EXPECT_TRUE(form.Visible());
    EXPECT_EQ(host.reader().MarkCutOff(), 10);
    EXPECT_EQ(host.boxes(), (std::vector<ShownBox>{{VBLM_RTString(TextNumber(174)), BoxIcon::Exclamation,
                                                    BoxButtons::Ok, VBLM_RTString(TextNumber(176))}}));
}

TEST(CancelTest, WritesNothing)
{
    OptionsHost host;
    frmOptions& form = host.formFor(kelReaderTypeScantronScanMark4000);
    form.txtMarkCutOff.Text("9");
    host.choose(kelReaderTypePDIVMR138);
    form.cmdCancel.Click();
    EXPECT_FALSE(form.Visible());
    EXPECT_TRUE(frmOptions::Cancelled());
    EXPECT_EQ(form.iReaderIndex(), -1);
    EXPECT_EQ(host.reader().ReaderType(), kelReaderTypeScantronScanMark4000);
    EXPECT_EQ(host.reader().MarkCutOff(), 10);
}

TEST(DefaultsTest, BringBackTheCatalogueButNotThePort)
{
    OptionsHost host({1, 3});
    frmOptions& form = host.formFor(kelReaderTypeScantronScanMark4000);
    form.cboPort.CurrentRow(1);
    form.txtMarkCutOff.Text("9");
    form.cboBaud.CurrentRow(0);
    form.chkRejecter.Click();
    std::vector<std::pair<Int32, Int32>> changes;
    const auto handler = form.cboReaderType.onSelChangeEx;
    form.cboReaderType.onSelChangeEx = [&](Int32 before, Int32 now) {
        changes.emplace_back(before, now);
        handler(before, now);
    };
    const Int32 row = form.cboReaderType.CurrentRow();
    form.cmdDefaults.Click();
    EXPECT_EQ(changes, (std::vector<std::pair<Int32, Int32>>{{row, 0}, {0, row}}));
    EXPECT_EQ(form.txtMarkCutOff.Text(), "10");
    EXPECT_EQ(form.cboBaud.Text(), "19200");
    EXPECT_EQ(form.chkRejecter.Value(), 1);
    EXPECT_EQ(form.cboPort.Text(), "3");
}

TEST(DefaultsTest, DoNothingForNone)
{
    OptionsHost host;
    host.form().cmdDefaults_Click();
    EXPECT_EQ(host.form().cboReaderType.CurrentRow(), 0);
}

/// A search for an EZData at port 3, while the reader object is set for something else.
class LocateTest : public testing::Test {
protected:
    explicit LocateTest(std::initializer_list<Int16> silent = {1}) : host(silent)
    {
        clsKELReader& reader = host.reader();
        reader.LoadDefaults(kelReaderTypeNCSOpScan4);
        reader.Port(1);
    }

    void expectReaderUnchanged()
    {
        const clsKELReader& reader = host.reader();
        EXPECT_EQ(reader.ReaderType(), kelReaderTypeNCSOpScan4);
        EXPECT_EQ(reader.Port(), 1);
        EXPECT_EQ(reader.BaudRate(), kelReaderBaudRate38400);
        EXPECT_EQ(reader.DataBits(), kelReaderDataBits7);
        EXPECT_EQ(reader.Parity(), "O");
        EXPECT_EQ(reader.StopBits(), 2);
        EXPECT_EQ(reader.FlowControl(), kelReaderFlowControlHardware);
    }

    OptionsHost host;
    std::unique_ptr<Simulator> device = makeSimulator(kelReaderTypeNCSEZData, {});
};

TEST_F(LocateTest, AFoundReaderIsSelected)
{
    host.machine.attach(3, *device);
    host.form();
    host.choose(kelReaderTypeNCSEZData);
    host.form().cmdLocate.Click();
    EXPECT_EQ(host.form().cboPort.Text(), "3");
    EXPECT_EQ(host.boxes(), (std::vector<ShownBox>{{VBLM_RTString(TextNumber(160)) + "3", BoxIcon::Information,
                                                    BoxButtons::Ok, VBLM_RTString(TextNumber(162))}}));
    // The port without a device in between is a failure that is reported, and a report shows the usual pointer.
    EXPECT_EQ(host.machine.screen().pointers(), (std::vector<Int32>{11, 0, 0}));
    expectReaderUnchanged();
    host.form().cmdCancel.Click();
    expectReaderUnchanged();
}

TEST_F(LocateTest, ThePortsAreTriedWithTheLineOfTheDialog)
{
    host.machine.attach(3, *device);
    host.form();
    host.choose(kelReaderTypeNCSEZData);
    host.form().cmdLocate.Click();
    const auto& actions = host.machine.line(3).actions();
    const auto opened = std::ranges::find_if(actions, [](const HostAction& action) {
        return action.kind == HostAction::Kind::Open && action.text == "9600,E,7,1";
    });
    EXPECT_NE(opened, actions.end());
}

TEST_F(LocateTest, NothingFoundIsTold)
{
    host.form();
    host.choose(kelReaderTypeNCSEZData);
    host.form().cmdLocate.Click();
    EXPECT_EQ(host.form().cboPort.Text(), "1");
    ASSERT_FALSE(host.boxes().empty());
    EXPECT_EQ(host.boxes().back(), (ShownBox{VBLM_RTString(TextNumber(164)), BoxIcon::Exclamation, BoxButtons::Ok,
                                             VBLM_RTString(TextNumber(166))}));
    expectReaderUnchanged();
}

TEST_F(LocateTest, APortThatTheListDoesNotOfferCountsAsNotFound)
{
    host.form();
    host.machine.attach(3, *device); // plugged in after the list was filled
    host.choose(kelReaderTypeNCSEZData);
    host.form().cmdLocate.Click();
    ASSERT_FALSE(host.boxes().empty());
    EXPECT_EQ(host.boxes().back().text, VBLM_RTString(TextNumber(164)));
    expectReaderUnchanged();
}

TEST_F(LocateTest, AFailureLeavesTheReaderAsItWasToo)
{
    host.form();
    host.choose(kelReaderTypeNCSEZData);
    host.form().cboBaud.CurrentRow(-1);
    host.form().cmdLocate.Click();
    ASSERT_EQ(host.heard().reports.size(), 1U);
    EXPECT_EQ(host.heard().reports[0].ErrorNumber, 13);
    EXPECT_EQ(host.heard().reports[0].ErrorSource.substr(0, 26), "frmOptions.cmdLocate_Click");
    expectReaderUnchanged();
}

class LocateWithoutPortsTest : public LocateTest {
protected:
    LocateWithoutPortsTest() : LocateTest({}) {}
};

TEST_F(LocateWithoutPortsTest, BeginsAtPortOneAndFindsNothing)
{
    host.form();
    host.choose(kelReaderTypeNCSEZData);
    host.form().cmdLocate.Click();
    ASSERT_FALSE(host.boxes().empty());
    EXPECT_EQ(host.boxes().back().text, VBLM_RTString(TextNumber(164)));
    expectReaderUnchanged();
}

} // namespace
} // namespace kel::test
