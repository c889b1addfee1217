// SPDX-License-Identifier: MIT
// What the dialog shows for each model. What a model has stands in the tables of tests/profiles/ExpectedTables.h, apart
// from the catalogue, so that neither the catalogue nor the dialog can be wrong without the other.

#include "tests/options/OptionsHost.h"
#include "tests/profiles/ExpectedCatalogue.h"

#include "strings/VBLMRTSModule.h"

#include <gtest/gtest.h>

namespace kel::test {
namespace {

/// How a model is connected, which decides what of the line can be seen and changed.
enum class Link {
    Serial, ///< all can be changed
    Usb,    ///< all stand there, greyed out
    Fixed,  ///< the port alone is seen
};

Link linkOf(const ExpectedModel& model)
{
    if (model.number("InterfaceType") == kelReaderInterfaceTypeUSB)
        return Link::Usb;
    return model.is("BaudRateVisible") ? Link::Serial : Link::Fixed;
}

/// A value of the line as a list shows it; an empty text is a list without a selection.
std::string shown(const std::string& value)
{
    const std::string whole = value.substr(0, value.find('.'));
    return whole == "0" ? "" : whole;
}

std::string state(bool enabled, bool visible)
{
    return std::string(enabled ? "enabled" : "locked") + (visible ? ", visible" : ", hidden");
}

std::string state(const Control& control)
{
    return state(static_cast<bool>(control.Enabled()), static_cast<bool>(control.Visible()));
}

class ModelStatesTest : public testing::TestWithParam<Int32> {
protected:
    ModelStatesTest()
    {
        // From another model, so that the first one too is a change.
        host_.choose(kelReaderTypePDIVMR138);
        host_.choose(model_.type());
    }

    frmOptions& form() { return host_.form(); }

    void expectField(const Label& label, const PowerEdit& field, int value, bool enabled, bool visible, int minimum,
                     int maximum)
    {
        SCOPED_TRACE(field.Name());
        EXPECT_EQ(field.Text(), std::to_string(value));
        EXPECT_EQ(state(field), state(enabled, visible));
        EXPECT_EQ(state(label), state(enabled, visible));
        EXPECT_EQ(field.Minimum(), minimum);
        EXPECT_EQ(field.Maximum(), maximum);
    }

    void expectList(const Label& label, const PowerCombo& list, const std::string& text)
    {
        SCOPED_TRACE(list.Name());
        const bool isFree = link_ == Link::Serial;
        EXPECT_EQ(list.Text(), text);
        EXPECT_EQ(state(list), state(isFree, link_ != Link::Fixed));
        EXPECT_EQ(state(label), state(list));
    }

    OptionsHost host_;
    const ExpectedModel model_ = ExpectedCatalogue().of(GetParam());
    const Link link_ = linkOf(model_);
};

TEST_P(ModelStatesTest, TheListNamesTheModelAtItsPlace)
{
    EXPECT_EQ(form().cboReaderType.CellText(1, form().cboReaderType.CurrentRow()), model_.Number);
    EXPECT_EQ(form().cboReaderType.Text(), model_.Record.at("ReaderName"));
}

TEST_P(ModelStatesTest, OptionsAreAsTheModelHasThem)
{
    const std::pair<const CheckBox&, std::string> boxes[] = {
        {form().chkReaderGrade, "ReaderGrade"}, {form().chkBarcode, "Barcode"},   {form().chkDuplex, "Duplex"},
        {form().chkFeeder, "Feeder"},           {form().chkRejecter, "Rejecter"}, {form().chkPrinter, "Printer"},
        {form().chkWindowing, "Windowing"}};
    for (const auto& [box, option] : boxes) {
        SCOPED_TRACE(option);
        EXPECT_EQ(box.Value(), model_.is(option) ? 1 : 0);
        EXPECT_EQ(state(box), state(model_.is(option + "Enabled"), model_.is(option + "Visible")));
    }
}

TEST_P(ModelStatesTest, NumbersHaveTheModelsValuesAndBounds)
{
    const bool all = link_ != Link::Fixed;
    const int minimum = model_.number("RecognitionThresholdMinimum");
    const int maximum = model_.number("RecognitionThresholdMaximum");
    const bool marksEnabled = model_.is("MarkDiscriminationEnabled");
    expectField(form().lblRecognitionThreshold, form().txtRecognitionThreshold, model_.number("RecognitionThreshold"),
                model_.is("RecognitionThresholdEnabled"), true, minimum, maximum);
    expectField(form().lblMarkDiscrimination, form().txtMarkDiscrimination, model_.number("MarkDiscrimination"),
                marksEnabled, all, 0, maximum);
    expectField(form().lblMarkCutOff, form().txtMarkCutOff, model_.number("MarkCutOff"), marksEnabled, all, minimum,
                maximum);
    expectField(form().lblReaderTimeout, form().txtReaderTimeout, 10, all, all, 0, 10);
    expectField(form().lblSystemPause, form().txtSystemPause, 50, all, all, 10, 10000);
}

TEST_P(ModelStatesTest, TheLineIsAsTheModelNeedsIt)
{
    const std::map<std::string, std::string> flows = {{"0", "None"}, {"2", "Hardware"}};
    const std::map<std::string, std::string> parities = {{"", ""}, {"N", "None"}, {"O", "Odd"}, {"E", "Even"}};
    expectList(form().lblBaud, form().cboBaud, model_.Record.at("BaudRate"));
    expectList(form().lblDataBits, form().cboDataBits, shown(model_.Record.at("DataBits")));
    expectList(form().lblParity, form().cboParity, parities.at(model_.Record.at("Parity")));
    expectList(form().lblStopBits, form().cboStopBits, shown(model_.Record.at("StopBits")));
    expectList(form().lblFlowControl, form().cboFlowControl, flows.at(model_.Record.at("FlowControl")));
    EXPECT_EQ(state(form().cboPort), state(link_ != Link::Usb, true));
    EXPECT_EQ(state(form().lblPort), state(form().cboPort));
}

TEST_P(ModelStatesTest, FramesAndButtonsFollowTheModel)
{
    const bool isReader = model_.type() != kelReaderTypeNone;
    const bool canBeLocated = model_.is("LocateEnabled");
    EXPECT_EQ(state(form().frmReader), state(true, isReader));
    EXPECT_EQ(state(form().frmComPort), state(true, isReader));
    EXPECT_EQ(state(form().cmdDefaults), state(isReader, true));
    EXPECT_EQ(state(form().cmdLocate), state(true, canBeLocated));
    EXPECT_EQ(form().cboPort.Width(), form().cboBaud.Width() - (canBeLocated ? form().cmdLocate.Width() + 120 : 0));
}

TEST_P(ModelStatesTest, GradingIsNamedAfterTheFamily)
{
    const std::string name = model_.Record.at("ReaderName");
    const bool gradesMarks = name.find("OpScan") != std::string::npos || name.find("iNSIGHT") != std::string::npos ||
                             name.find("EZData") != std::string::npos;
    EXPECT_EQ(form().chkReaderGrade.Caption(),
              gradesMarks ? VBLM_RTString(TextNumber(168)) : VBLM_RTString(TextNumber(170)));
}

INSTANTIATE_TEST_SUITE_P(AllModels, ModelStatesTest, testing::Range(Int32{0}, kReaderTypeCount),
                         [](const auto& model) { return "Type" + std::to_string(model.param); });

TEST(ModelListTest, HoldsAllModelsInTheOrderOfTheCatalogue)
{
    OptionsHost host;
    const PowerCombo& list = host.form().cboReaderType;
    std::vector<std::string> listed;
    for (Int32 row = 0; row < list.RowCount(); ++row)
        listed.push_back(list.CellText(1, row));
    std::vector<std::string> expected;
    for (const ExpectedModel& model : ExpectedCatalogue().inOrder())
        expected.push_back(model.Number);
    EXPECT_EQ(listed, expected);
}

} // namespace
} // namespace kel::test
