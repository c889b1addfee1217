// SPDX-License-Identifier: MIT
// What the dialog shows for each model: written out here a second time, from what the makers' models can do, so that
// neither the catalogue nor the dialog can be wrong without the other.

#include "tests/options/OptionsHost.h"

#include "strings/VBLMRTSModule.h"

#include <gtest/gtest.h>

#include <sstream>

namespace kel::test {
namespace {

/// How a model is connected, which decides what of the line can be seen and changed.
enum class Link {
    Serial, ///< all can be changed
    Usb,    ///< all stand there, greyed out
    Fixed,  ///< the port alone is seen
};

/// One model. The options are grading, barcode, duplex, feeder, rejecter, printer, windowing: "-" off and fixed, "+" on
/// and fixed, "o" off and the user's, "x" on and the user's; in parentheses what is not seen.
/// An empty text is a list without a selection.
struct Model {
    kelReaderType type;
    const char* name;
    const char* options;
    const char* baudRate;
    const char* dataBits;
    const char* parity;
    const char* stopBits;
    const char* flowControl;
    Link link;
    bool canBeLocated;
    int markCutOff;
    int markDiscrimination;
    bool markDiscriminationEnabled;
    int threshold;
    bool thresholdEnabled;
    int thresholdMinimum;
    int thresholdMaximum;
};

// In the order of the list. The first one has its name from the language file.
// clang-format off
const Model kModels[] = {
    {kelReaderTypeNone, "", "- - - - - - -", "9600", "", "", "", "None", Link::Serial, false, 0, 0, false, 0, false, 0, 0},
    {kelReaderTypeAppersonAdvantage1200, "Apperson Advantage 1200", "o + + - - - (-)", "38400", "8", "N", "1", "None", Link::Serial, false, 0, 0, false, 1, false, 0, 0},
    {kelReaderTypeAppersonAdvantageLink, "Apperson Advantage Link", "o + - - - - -", "19200", "8", "N", "1", "None", Link::Serial, false, 20, 10, true, 15, true, 0, 31},
    {kelReaderTypeAppersonBenchMark3000, "Apperson BenchMark 3000", "o + - - + - (-)", "38400", "8", "N", "1", "None", Link::Serial, false, 0, 0, false, 1, false, 0, 0},
    {kelReaderTypeAppersonGradeMaster, "Apperson GradeMaster", "- - - - - - -", "19200", "8", "N", "1", "None", Link::Serial, false, 1, 1, false, 1, false, 0, 0},
    {kelReaderTypeChatsworthACF100, "Chatsworth Data ACP-100", "(-) (-) (-) (-) (+) (-) (-)", "9600", "7", "E", "1", "None", Link::Fixed, true, 4, 9, false, 8, true, 0, 9},
    {kelReaderTypeChatsworthACF200, "Chatsworth Data ACF-200", "- - - o - - -", "9600", "7", "E", "1", "None", Link::Serial, false, 1, 1, false, 1, false, 0, 0},
    {kelReaderTypeChatsworthACP200, "Chatsworth Data ACP-200", "- - - - - - -", "9600", "7", "E", "1", "None", Link::Serial, false, 1, 1, false, 1, false, 0, 0},
    {kelReaderTypeChatsworthALSAccelScanOMR, "Chatsworth Data ALS AccelScan OMR", "- - - - x - -", "9600", "7", "E", "1", "None", Link::Serial, true, 1, 1, false, 1, false, 0, 0},
    {kelReaderTypeChatsworthOMR1100, "Chatsworth Data OMR1100", "- - - - - - -", "9600", "7", "E", "1", "None", Link::Serial, true, 1, 1, false, 1, false, 0, 0},
    {kelReaderTypeChatsworthOMR2000, "Chatsworth Data OMR2000", "- - - + - - -", "9600", "7", "E", "1", "None", Link::Serial, true, 1, 1, false, 1, false, 0, 0},
    {kelReaderTypePDIVMR138, "Peripheral Dynamics Inc. VMR138", "- - - - x - -", "9600", "8", "N", "1", "None", Link::Serial, false, 250, 5, true, 240, true, 192, 254},
    {kelReaderTypeScantron8000, "Scantron 8000", "- - x x - - -", "9600", "8", "N", "2", "None", Link::Serial, false, 65, 10, true, 35, true, 0, 99},
    {kelReaderTypeScantron8400, "Scantron 8400", "- - x x - - -", "9600", "8", "N", "2", "None", Link::Serial, false, 65, 10, true, 35, true, 0, 99},
    {kelReaderTypeNCSEZData, "Scantron EZData", "(-) (-) (-) (-) (+) (-) (-)", "9600", "7", "E", "1", "None", Link::Fixed, true, 4, 9, false, 4, true, 0, 9},
    {kelReaderTypeNCSOpScan2, "Scantron OpScan 2", "o o o - - o (-)", "38400", "7", "O", "2", "Hardware", Link::Serial, false, 10, 3, true, 7, true, 0, 15},
    {kelReaderTypeNCSOpScaniNSIGHT2, "Scantron iNSIGHT 2 (OMR)", "o o o - - o (-)", "38400", "7", "O", "2", "Hardware", Link::Serial, false, 10, 3, true, 7, true, 0, 15},
    {kelReaderTypeNCSOpScan3, "Scantron OpScan 3", "o o o + o o (-)", "38400", "7", "O", "2", "Hardware", Link::Serial, false, 10, 3, true, 7, true, 0, 15},
    {kelReaderTypeNCSOpScan4, "Scantron OpScan 4/4U", "o o o + o o (-)", "38400", "7", "O", "2", "Hardware", Link::Serial, false, 10, 3, true, 7, true, 0, 15},
    {kelReaderTypeNCSOpScaniNSIGHT4, "Scantron iNSIGHT 4 (OMR)", "o o o + o o (-)", "38400", "7", "O", "2", "Hardware", Link::Serial, false, 10, 3, true, 7, true, 0, 15},
    {kelReaderTypeNCSOpScan5, "Scantron OpScan 5", "- o o + - o (-)", "38400", "7", "O", "2", "Hardware", Link::Serial, false, 10, 3, true, 7, true, 0, 15},
    {kelReaderTypeNCSOpScan6, "Scantron OpScan 6", "- o o + - o (-)", "38400", "7", "O", "2", "Hardware", Link::Serial, false, 10, 3, true, 7, true, 0, 15},
    {kelReaderTypeNCSOpScan7, "Scantron OpScan 7", "- o o + + o (-)", "38400", "7", "O", "2", "Hardware", Link::Serial, false, 10, 3, true, 7, true, 0, 15},
    {kelReaderTypeNCSOpScan8, "Scantron OpScan 8", "- o o + + o (-)", "38400", "7", "O", "2", "Hardware", Link::Serial, false, 10, 3, true, 7, true, 0, 15},
    {kelReaderTypeScantronScanMark2000, "Scantron Scanmark 2000", "- - - - - o x", "19200", "8", "N", "2", "None", Link::Serial, false, 10, 3, true, 7, true, 0, 15},
    {kelReaderTypeScantronScanMark2250, "Scantron Scanmark 2250", "- - + - - o x", "19200", "8", "N", "2", "None", Link::Serial, false, 10, 3, true, 7, true, 0, 15},
    {kelReaderTypeScantronScanMark2500, "Scantron Scanmark 2500", "- - x + o o x", "19200", "8", "N", "2", "None", Link::Serial, false, 10, 3, true, 7, true, 0, 15},
    {kelReaderTypeScantronScanMark4000, "Scantron Scanmark 4000", "- - + + x o x", "19200", "8", "N", "2", "None", Link::Serial, false, 10, 3, true, 7, true, 0, 15},
    {kelReaderTypeScantronScanMark5500, "Scantron Scanmark 5500", "- - + + x o x", "19200", "8", "N", "2", "None", Link::Serial, false, 10, 3, true, 7, true, 0, 15},
    {kelReaderTypeScantronScanMarkES2010, "Scantron Scanmark ES 2010", "- - - - - o x", "19200", "8", "N", "2", "None", Link::Serial, false, 10, 3, true, 7, true, 0, 15},
    {kelReaderTypeScantronScanMarkES2260, "Scantron Scanmark ES 2260", "- - + x - o x", "19200", "8", "N", "2", "None", Link::Serial, false, 10, 3, true, 7, true, 0, 15},
    {kelReaderTypeScantronScanMarkES2800, "Scantron Scanmark ES 2800", "- - x + o o x", "9600", "8", "N", "2", "None", Link::Serial, false, 10, 3, true, 7, true, 0, 15},
    {kelReaderTypeScanningSystemsSR410, "Sekonic SR-410", "- - - + - - -", "9600", "7", "N", "2", "Hardware", Link::Serial, false, 6, 3, true, 1, true, 1, 8},
    {kelReaderTypeSekonicSR430, "Sekonic SR-430", "- - - + - - -", "38400", "7", "N", "2", "Hardware", Link::Serial, false, 6, 3, true, 1, true, 1, 16},
    {kelReaderTypeScanningSystemsSR601, "Sekonic SR-601", "- o - + o o x", "9600", "7", "N", "2", "Hardware", Link::Serial, false, 10, 2, true, 5, true, 0, 15},
    {kelReaderTypeScanningSystemsSR607, "Sekonic SR-607", "- o + + o o x", "9600", "7", "N", "2", "Hardware", Link::Serial, false, 10, 2, true, 5, true, 0, 15},
    {kelReaderTypeScanningSystemsSR700351, "Sekonic SR-700-351", "- o - + o o x", "9600", "7", "N", "2", "Hardware", Link::Serial, false, 10, 2, true, 5, true, 0, 15},
    {kelReaderTypeScanningSystemsSR700352, "Sekonic SR-700-352", "- o + + o o x", "9600", "7", "N", "2", "Hardware", Link::Serial, false, 10, 2, true, 5, true, 0, 15},
    {kelReaderTypeSekonicSR1800, "Sekonic SR1800 (USB)", "- o o + - o -", "9600", "", "", "", "None", Link::Usb, false, 10, 2, true, 5, true, 0, 15},
    {kelReaderTypeSekonicSR2300, "Sekonic SR2300 (USB)", "- o x + o o -", "9600", "", "", "", "None", Link::Usb, false, 10, 2, true, 5, true, 0, 15},
    {kelReaderTypeSekonicSR3500, "Sekonic SR3500 (USB)", "- o x + o o -", "9600", "", "", "", "None", Link::Usb, false, 10, 2, true, 5, true, 0, 15},
    {kelReaderTypeSekonicSR6500, "Sekonic SR6500 (USB)", "- o x + o o -", "9600", "", "", "", "None", Link::Usb, false, 10, 2, true, 5, true, 0, 15},
};
// clang-format on

std::string state(bool enabled, bool visible)
{
    return std::string(enabled ? "enabled" : "locked") + (visible ? ", visible" : ", hidden");
}

std::string state(const Control& control)
{
    return state(static_cast<bool>(control.Enabled()), static_cast<bool>(control.Visible()));
}

class ModelStatesTest : public testing::TestWithParam<Model> {
protected:
    ModelStatesTest()
    {
        // From another model, so that the first one too is a change.
        host_.choose(kelReaderTypePDIVMR138);
        host_.choose(GetParam().type);
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
        const bool isFree = GetParam().link == Link::Serial;
        EXPECT_EQ(list.Text(), text);
        EXPECT_EQ(state(list), state(isFree, GetParam().link != Link::Fixed));
        EXPECT_EQ(state(label), state(list));
    }

    OptionsHost host_;
};

TEST_P(ModelStatesTest, TheListNamesTheModelAtItsPlace)
{
    EXPECT_EQ(form().cboReaderType.CellText(1, form().cboReaderType.CurrentRow()), CStr(GetParam().type));
    EXPECT_EQ(form().cboReaderType.Text(),
              GetParam().type == kelReaderTypeNone ? VBLM_RTString(TextNumber(372)) : GetParam().name);
}

TEST_P(ModelStatesTest, OptionsAreAsTheModelHasThem)
{
    const CheckBox* const boxes[] = {&form().chkReaderGrade, &form().chkBarcode, &form().chkDuplex,   &form().chkFeeder,
                                     &form().chkRejecter,    &form().chkPrinter, &form().chkWindowing};
    std::istringstream signs(GetParam().options);
    for (const CheckBox* const box : boxes) {
        SCOPED_TRACE(box->Name());
        std::string sign;
        signs >> sign;
        const bool visible = sign.size() == 1;
        const char value = visible ? sign.front() : sign.at(1);
        EXPECT_EQ(box->Value(), value == '+' || value == 'x' ? 1 : 0);
        EXPECT_EQ(state(*box), state(value == 'o' || value == 'x', visible));
    }
}

TEST_P(ModelStatesTest, NumbersHaveTheModelsValuesAndBounds)
{
    const Model& model = GetParam();
    const bool all = model.link != Link::Fixed;
    expectField(form().lblRecognitionThreshold, form().txtRecognitionThreshold, model.threshold, model.thresholdEnabled,
                true, model.thresholdMinimum, model.thresholdMaximum);
    expectField(form().lblMarkDiscrimination, form().txtMarkDiscrimination, model.markDiscrimination,
                model.markDiscriminationEnabled, all, 0, model.thresholdMaximum);
    expectField(form().lblMarkCutOff, form().txtMarkCutOff, model.markCutOff, model.markDiscriminationEnabled, all,
                model.thresholdMinimum, model.thresholdMaximum);
    expectField(form().lblReaderTimeout, form().txtReaderTimeout, 10, all, all, 0, 10);
    expectField(form().lblSystemPause, form().txtSystemPause, 50, all, all, 10, 10000);
}

TEST_P(ModelStatesTest, TheLineIsAsTheModelNeedsIt)
{
    const Model& model = GetParam();
    const std::map<std::string, std::string> parities = {{"", ""}, {"N", "None"}, {"O", "Odd"}, {"E", "Even"}};
    expectList(form().lblBaud, form().cboBaud, model.baudRate);
    expectList(form().lblDataBits, form().cboDataBits, model.dataBits);
    expectList(form().lblParity, form().cboParity, parities.at(model.parity));
    expectList(form().lblStopBits, form().cboStopBits, model.stopBits);
    expectList(form().lblFlowControl, form().cboFlowControl, model.flowControl);
    EXPECT_EQ(state(form().cboPort), state(model.link != Link::Usb, true));
    EXPECT_EQ(state(form().lblPort), state(form().cboPort));
}

TEST_P(ModelStatesTest, FramesAndButtonsFollowTheModel)
{
    const Model& model = GetParam();
    const bool isReader = model.type != kelReaderTypeNone;
    EXPECT_EQ(state(form().frmReader), state(true, isReader));
    EXPECT_EQ(state(form().frmComPort), state(true, isReader));
    EXPECT_EQ(state(form().cmdDefaults), state(isReader, true));
    EXPECT_EQ(state(form().cmdLocate), state(true, model.canBeLocated));
    EXPECT_EQ(form().cboPort.Width(),
              form().cboBaud.Width() - (model.canBeLocated ? form().cmdLocate.Width() + 120 : 0));
}

TEST_P(ModelStatesTest, GradingIsNamedAfterTheFamily)
{
    const std::string name = GetParam().name;
    const bool gradesMarks = name.find("OpScan") != std::string::npos || name.find("iNSIGHT") != std::string::npos ||
                             name.find("EZData") != std::string::npos;
    EXPECT_EQ(form().chkReaderGrade.Caption(),
              gradesMarks ? VBLM_RTString(TextNumber(168)) : VBLM_RTString(TextNumber(170)));
}

INSTANTIATE_TEST_SUITE_P(AllModels, ModelStatesTest, testing::ValuesIn(kModels),
                         [](const auto& model) { return "Type" + std::to_string(model.param.type); });

TEST(ModelListTest, HoldsAllModelsInTheOrderOfTheCatalogue)
{
    OptionsHost host;
    const PowerCombo& list = host.form().cboReaderType;
    ASSERT_EQ(list.RowCount(), std::ssize(kModels));
    for (Int32 row = 0; row < list.RowCount(); ++row)
        EXPECT_EQ(list.CellText(1, row), CStr(kModels[row].type)) << row;
}

} // namespace
} // namespace kel::test
