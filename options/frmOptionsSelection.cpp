// SPDX-License-Identifier: MIT
// What a change of the model does to the dialog.

#include "options/frmOptions.h"

#include "failure/guarded.h"
#include "options/ListSelection.h"
#include "platform/Platform.h"
#include "reader/clsKELReader.h"
#include "strings/VBLMRTSModule.h"
#include "types/ModelTable.h"

namespace kel {

namespace {

/// Space between the list of the ports and the button beside it, in twips.
constexpr double kLocateGap = 120;

/// The three numbers while the reader grades. The threshold is not the catalogue's.
constexpr const char* kGradingMarkCutOff = "10";
constexpr const char* kGradingRecognitionThreshold = "6";
constexpr const char* kGradingMarkDiscrimination = "3";

/// Whether a model evaluates the marks itself when it grades: the option then has its own caption, and disables its
/// three numbers.
bool gradesMarks(const std::string& type)
{
    for (const ModelRow& row : kModels) {
        if (type == CStr(row.number))
            return Wire("OpScan").isOf(row.number) || row.number == kelReaderTypeNCSEZData;
    }
    return false;
}

Int16 tick(Boolean value)
{
    return value ? Int16{1} : Int16{0};
}

/// Enabled and visible for a control and the label before it; the control follows its label.
void setState(Label& label, Control& control, Boolean enabled, Boolean visible)
{
    label.Enabled(enabled);
    control.Enabled(label.Enabled());
    label.Visible(visible);
    control.Visible(label.Visible());
}

void setState(CheckBox& box, Boolean value, Boolean enabled, Boolean visible)
{
    box.Value(tick(value));
    box.Enabled(enabled);
    box.Visible(visible);
}

} // namespace

void frmOptions::cboReaderType_SelChangeEx(Int32 PreviousRowNum, Int32 CurrentRowNum)
{
    Int32 eReaderType = kelReaderTypeNone;
    const auto variables = KEL_PARAMETERS(PreviousRowNum, CurrentRowNum) + KEL_LOCALS(eReaderType) + moduleOf(*this);
    guarded("KELReader81 - frmOptions.cboReaderType_SelChangeEx", variables, [&] {
        struct Loading {
            explicit Loading(bool& flag) : flag_(flag) { flag_ = true; }
            ~Loading() { flag_ = false; }
            bool& flag_;
        } const loading(bLoadingValues_);

        frmComPort.Visible(CurrentRowNum > 0);
        frmReader.Visible(CurrentRowNum > 0);
        eReaderType = integerOf(cboReaderType.CellText(1, CurrentRowNum));
        cmdDefaults.Enabled(eReaderType != kelReaderTypeNone);
        const auto profile = [this, eReaderType] { return reader().Profiles()->Item(CStr(eReaderType)); };

        cmdLocate.Visible(profile()->LocateEnabled());
        if (cmdLocate.Visible())
            cboPort.Width(cboBaud.Width() - cmdLocate.Width() - kLocateGap);
        else
            cboPort.Width(cboBaud.Width());
        chkReaderGrade.Caption(gradesMarks(CStr(eReaderType)) ? VBLM_RTString(text::kMarkGradingCaption)
                                                              : VBLM_RTString(text::kGradingCaption));

        setState(chkReaderGrade, profile()->ReaderGrade(), profile()->ReaderGradeEnabled(),
                 profile()->ReaderGradeVisible());
        setState(chkBarcode, profile()->Barcode(), profile()->BarcodeEnabled(), profile()->BarcodeVisible());
        setState(chkDuplex, profile()->Duplex(), profile()->DuplexEnabled(), profile()->DuplexVisible());
        setState(chkFeeder, profile()->Feeder(), profile()->FeederEnabled(), profile()->FeederVisible());
        setState(chkPrinter, profile()->Printer(), profile()->PrinterEnabled(), profile()->PrinterVisible());
        setState(chkRejecter, profile()->Rejecter(), profile()->RejecterEnabled(), profile()->RejecterVisible());
        setState(chkWindowing, profile()->Windowing(), profile()->WindowingEnabled(), profile()->WindowingVisible());

        SetSpinMinMax(txtRecognitionThreshold, profile()->RecognitionThresholdMinimum(),
                      profile()->RecognitionThresholdMaximum());
        txtRecognitionThreshold.Text(CStr(profile()->RecognitionThreshold()));
        setState(lblRecognitionThreshold, txtRecognitionThreshold, profile()->RecognitionThresholdEnabled(),
                 profile()->RecognitionThresholdVisible());

        SetSpinMinMax(txtMarkDiscrimination, 0, profile()->RecognitionThresholdMaximum());
        txtMarkDiscrimination.Text(CStr(profile()->MarkDiscrimination()));
        setState(lblMarkDiscrimination, txtMarkDiscrimination, profile()->MarkDiscriminationEnabled(),
                 profile()->MarkDiscriminationVisible());

        SetSpinMinMax(txtMarkCutOff, profile()->RecognitionThresholdMinimum(),
                      profile()->RecognitionThresholdMaximum());
        txtMarkCutOff.Text(CStr(profile()->MarkCutOff()));
        setState(lblMarkCutOff, txtMarkCutOff, profile()->MarkDiscriminationEnabled(),
                 profile()->MarkDiscriminationVisible());

        txtReaderTimeout.Text(CStr(profile()->Timeout()));
        setState(lblReaderTimeout, txtReaderTimeout, profile()->TimeOutEnabled(), profile()->TimeOutVisible());
        if (profile()->Timeout() >= txtReaderTimeout.Minimum())
            txtReaderTimeout.Text(CStr(profile()->Timeout()));

        setState(lblSystemPause, txtSystemPause, profile()->SleepTimeEnabled(), profile()->SleepTimeVisible());
        if (profile()->SleepTime() >= txtSystemPause.Minimum())
            txtSystemPause.Text(CStr(profile()->SleepTime()));

        setState(lblPort, cboPort, profile()->PortEnabled(), profile()->PortVisible());
        setState(lblBaud, cboBaud, profile()->BaudRateEnabled(), profile()->BaudRateVisible());
        setState(lblDataBits, cboDataBits, profile()->DataBitsEnabled(), profile()->DataBitsVisible());
        setState(lblParity, cboParity, profile()->ParityEnabled(), profile()->ParityVisible());
        setState(lblStopBits, cboStopBits, profile()->StopBitsEnabled(), profile()->StopBitsVisible());
        setState(lblFlowControl, cboFlowControl, profile()->FlowControlEnabled(), profile()->FlowControlVisible());

        selectText(cboBaud, CStr(profile()->BaudRate()), 0);
        selectText(cboDataBits, CStr(profile()->DataBits()), 0);
        selectText(cboStopBits, CStr(profile()->StopBits()), 0);
        if (!profile()->Parity().empty())
            selectText(cboParity, profile()->Parity(), 1);
        else
            cboParity.CurrentRow(-1);
        selectText(cboFlowControl, CStr(profile()->FlowControl()), 1);

        if (cboReaderType.Enabled() && cboReaderType.Visible())
            cboReaderType.SetFocus();
    });
}

void frmOptions::chkReaderGrade_Click()
{
    Boolean bEnabled = False;
    guarded("KELReader81 - frmOptions.chkReaderGrade_Click", KEL_LOCALS(bEnabled) + moduleOf(*this), [&] {
        if (cboReaderType.CurrentRow() == -1 || !gradesMarks(selectedValue(cboReaderType)))
            return;
        bEnabled = chkReaderGrade.Value() != 1;
        const auto lock = [&](Label& label, PowerEdit& field, const char* fixedText) {
            label.Enabled(bEnabled);
            field.Enabled(bEnabled);
            if (!bEnabled)
                field.Text(fixedText);
        };
        lock(lblMarkCutOff, txtMarkCutOff, kGradingMarkCutOff);
        lock(lblRecognitionThreshold, txtRecognitionThreshold, kGradingRecognitionThreshold);
        lock(lblMarkDiscrimination, txtMarkDiscrimination, kGradingMarkDiscrimination);
        if (bEnabled && !bLoadingValues_)
            platform().screen().MsgBox(VBLM_RTString(text::kReaderNoLongerGrades), BoxIcon::Information, BoxButtons::Ok,
                                       VBLM_RTString(text::kReaderOptions));
    });
}

} // namespace kel
