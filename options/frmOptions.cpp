// SPDX-License-Identifier: MIT
#include "options/frmOptions.h"

#include "failure/ObjectLife.h"
#include "failure/basError.h"
#include "failure/guarded.h"
#include "options/FormAids.h"
#include "options/basPublic.h"
#include "options/basUtils.h"
#include "platform/Platform.h"
#include "reader/clsKELReader.h"
#include "strings/VBLMRTSModule.h"

namespace kel {

namespace {

/// Space between a label and its field, in twips.
constexpr Int32 kLabelGap = 60;

} // namespace

frmOptions::frmOptions() : mscScanner_(platform().newSerialControl()), ownAids_(std::make_unique<FormAids>(*this))
{
    Aids(*ownAids_);
    undecided();
    connectEvents();
    placeControls();
    txtReaderTimeout.Text("10");
    SetSpinMinMax(txtReaderTimeout, 0, 10);
    txtSystemPause.Text("50");
    SetSpinMinMax(txtSystemPause, 10, 10000);
}

frmOptions::~frmOptions() = default;

Boolean frmOptions::SetReader(clsKELReader& oReader)
{
    Boolean bResult = False;
    guarded("KELReader81 - frmOptions.SetReader", KEL_PARAMETERS(oReader) + moduleOf(*this), [&] {
        cReaderOptions_ = &oReader;
        bResult = cReaderOptions_ != nullptr;
    });
    return bResult;
}

clsKELReader& frmOptions::reader() const
{
    if (!cReaderOptions_)
        throw RuntimeFailure(FailureCode::ObjectNotSet);
    return *cReaderOptions_;
}

void frmOptions::connectEvents()
{
    onLoad = [this] { Form_Load(); };
    onUnload = [this] { life_.reset(); };
    cboReaderType.onSelChangeEx = [this](Int32 before, Int32 now) { cboReaderType_SelChangeEx(before, now); };
    chkReaderGrade.onClick = [this] { chkReaderGrade_Click(); };
    cmdOK.onClick = [this] { cmdOK_Click(); };
    cmdCancel.onClick = [this] { cmdCancel_Click(); };
    cmdDefaults.onClick = [this] { cmdDefaults_Click(); };
    cmdLocate.onClick = [this] { cmdLocate_Click(); };
    for (PowerEdit* const field : numberFields())
        field->onNumber = numberIn;

#define KEL_SOURCE(field, event) "KELReader81 - frmOptions." #field "_" #event
#define KEL_FIELD(field)                                                                                               \
    connectField(field, KEL_SOURCE(field, GotFocus), KEL_SOURCE(field, Validate), KEL_SOURCE(field, ValidationError))
    KEL_FIELD(txtRecognitionThreshold);
    KEL_FIELD(txtMarkDiscrimination);
    KEL_FIELD(txtMarkCutOff);
    KEL_FIELD(txtReaderTimeout);
    KEL_FIELD(txtSystemPause);
    // The pause has no filter: what gets through is caught when it is left.
    filterKeys(txtRecognitionThreshold, KEL_SOURCE(txtRecognitionThreshold, KeyPress));
    filterKeys(txtMarkDiscrimination, KEL_SOURCE(txtMarkDiscrimination, KeyPress));
    filterKeys(txtMarkCutOff, KEL_SOURCE(txtMarkCutOff, KeyPress));
    filterKeys(txtReaderTimeout, KEL_SOURCE(txtReaderTimeout, KeyPress));
#undef KEL_FIELD
#undef KEL_SOURCE
}

void frmOptions::connectField(PowerEdit& field, const char* gotFocusSource, const char* validateSource,
                              const char* validationErrorSource)
{
    field.onGotFocus = [this, &field, gotFocusSource] {
        guarded(gotFocusSource, moduleOf(*this), [&] { field.SelectRange(0, -1); });
    };
    field.onValidate = [this, &field, validateSource] {
        guarded(validateSource, moduleOf(*this), [&] { ValidateSpinValue(field, False); });
    };
    field.onValidationError = [this, &field, validationErrorSource] {
        guarded(validationErrorSource, moduleOf(*this), [&] { ValidateSpinValue(field, False); });
    };
}

void frmOptions::filterKeys(PowerEdit& field, const char* source)
{
    field.onKeyPress = [this, source](Int16& KeyAscii) {
        guarded(source, KEL_PARAMETERS(KeyAscii) + moduleOf(*this),
                [&] { KeyAscii = ValidKeyPress(KeyAscii, kValidKeysNumbers, False, False, False); });
    };
}

void frmOptions::Form_Load()
{
    life_ = std::make_unique<ObjectLife>("frmOptions,3");
    guarded("KELReader81 - frmOptions.Form_Load", moduleOf(*this), [&] {
        VBLM_SetProperties();
        if (const auto oError = errorObject())
            oError->SetFont(Window());
        RepositionControls();
        LoadValues();
    });
}

void frmOptions::VBLM_SetProperties()
{
    Caption(VBLM_RTString(text::kReaderSettings));
    lblTitle.Caption(VBLM_RTString(text::kReaderSettings));
    cmdDefaults.Caption(VBLM_RTString(text::kDefaultsButton));
    lblSubtitle.Caption(VBLM_RTString(text::kSettingsAdvice));
    frmReader.Caption(VBLM_RTString(text::kReaderOptions));
    chkFeeder.Caption(VBLM_RTString(text::kFeederCaption));
    chkDuplex.Caption(VBLM_RTString(text::kDuplexCaption));
    chkRejecter.Caption(VBLM_RTString(text::kRejecterCaption));
    chkReaderGrade.Caption(VBLM_RTString(text::kReaderGradeCaption));
    chkBarcode.Caption(VBLM_RTString(text::kBarcodeCaption));
    chkPrinter.Caption(VBLM_RTString(text::kPrinterCaption));
    chkWindowing.Caption(VBLM_RTString(text::kWindowingCaption));
    lblMarkDiscrimination.Caption(VBLM_RTString(text::kMarkDiscriminationCaption));
    lblReaderTimeout.Caption(VBLM_RTString(text::kTimeoutCaption));
    lblRecognitionThreshold.Caption(VBLM_RTString(text::kRecognitionThresholdCaption));
    lblSystemPause.Caption(VBLM_RTString(text::kSystemPauseCaption));
    lblMarkCutOff.Caption(VBLM_RTString(text::kMarkCutOffCaption));
    frmComPort.Caption(VBLM_RTString(text::kSerialPortCaption));
    cmdLocate.Caption(VBLM_RTString(text::kLocateButton));
    lblPort.Caption(VBLM_RTString(text::kPortCaption));
    lblStopBits.Caption(VBLM_RTString(text::kStopBitsCaption));
    lblParity.Caption(VBLM_RTString(text::kParityCaption));
    lblDataBits.Caption(VBLM_RTString(text::kDataBitsCaption));
    lblBaud.Caption(VBLM_RTString(text::kBaudRateCaption));
    lblFlowControl.Caption(VBLM_RTString(text::kFlowControlCaption));
    cmdOK.Caption(VBLM_RTString(text::kOkButton));
    cmdCancel.Caption(VBLM_RTString(text::kCancelButton));
    lblReaderType.Caption(VBLM_RTString(text::kModelCaption));
    for (PowerCombo* const list : {&cboPort, &cboBaud, &cboDataBits, &cboStopBits})
        list->Prompt(VBLM_RTString(text::kChooseValue));
    for (PowerCombo* const list : {&cboParity, &cboFlowControl})
        list->Prompt(VBLM_RTString(text::kChooseSetting));
}

void frmOptions::RepositionControls()
{
    // The source bears the name that the form once had.
    guarded("KELReader81 - frmPreferences.RepositionControls", moduleOf(*this), [&] {
        const auto putRight = [this](Label& label, Control& field) {
            ControlPositionRight(*this, label, field, nullptr, True, kLabelGap, False);
        };
        ControlAutoSize(*this, {&lblTitle, &lblReaderType});
        putRight(lblRecognitionThreshold, txtRecognitionThreshold);
        putRight(lblMarkDiscrimination, txtMarkDiscrimination);
        putRight(lblMarkCutOff, txtMarkCutOff);
        putRight(lblReaderTimeout, txtReaderTimeout);
        putRight(lblSystemPause, txtSystemPause);
        ControlAlignLeft(
            {&txtRecognitionThreshold, &txtMarkDiscrimination, &txtMarkCutOff, &txtReaderTimeout, &txtSystemPause},
            True);
        putRight(lblPort, cboPort);
        putRight(lblBaud, cboBaud);
        putRight(lblDataBits, cboDataBits);
        putRight(lblParity, cboParity);
        putRight(lblStopBits, cboStopBits);
        putRight(lblFlowControl, cboFlowControl);
        ControlAlignLeft({&cboPort, &cboBaud, &cboDataBits, &cboParity, &cboStopBits, &cboFlowControl}, True);
    });
}

void frmOptions::placeControls()
{
    constexpr double kLine = 360;  // from one row of controls to the next
    constexpr double kField = 285; // height of a field
    const auto column = [](double left, double width, double top, std::initializer_list<Control*> controls) {
        for (Control* const control : controls) {
            control->Move(left, top, width, kField);
            top += kLine;
        }
    };
    picHeader.Move(0, 0, 10800, 900);
    lblTitle.Move(180, 120, 6000, 300);
    lblSubtitle.Move(180, 480, 10440, 300);
    lblReaderType.Move(180, 1080, 1500, kField);
    cboReaderType.Move(2160, 1050, 8460, 315);

    frmReader.Move(180, 1560, 5220, 4800);
    column(180, 4860, 300,
           {&chkFeeder, &chkDuplex, &chkRejecter, &chkReaderGrade, &chkBarcode, &chkPrinter, &chkWindowing});
    column(180, 2700, 2880,
           {&lblRecognitionThreshold, &lblMarkDiscrimination, &lblMarkCutOff, &lblReaderTimeout, &lblSystemPause});
    column(3600, 1440, 2850,
           {&txtRecognitionThreshold, &txtMarkDiscrimination, &txtMarkCutOff, &txtReaderTimeout, &txtSystemPause});

    frmComPort.Move(5580, 1560, 5040, 4800);
    column(180, 1500, 330, {&lblPort, &lblBaud, &lblDataBits, &lblParity, &lblStopBits, &lblFlowControl});
    column(1800, 3060, 300, {&cboPort, &cboBaud, &cboDataBits, &cboParity, &cboStopBits, &cboFlowControl});
    cmdLocate.Move(3660, 300, 1200, 315);

    linBottom.Move(0, 6540, 10800, 15);
    cmdDefaults.Move(180, 6720, 1800, 375);
    cmdOK.Move(7200, 6720, 1620, 375);
    cmdCancel.Move(9000, 6720, 1620, 375);
}

} // namespace kel
