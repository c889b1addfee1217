#pragma once

#include "options/Form.h"
#include "types/Enumerations.h"
#include "types/Export.h"

#include <memory>
#include <string_view>

namespace kel {

class SerialControl;
class clsKELReader;

/// The options dialog without a toolkit: the user chooses a model and adjusts its settings.
///
/// The catalogue rules it: a change of the model sets the value, the bounds, and the enabled and visible state of every
/// control anew. The port alone stays. Nothing goes into the reader before OK.
///
/// A view reads the controls and hands on what its user does through them (see `OptionsPresenter`):
///
///     form.cboReaderType.CurrentRow(3);       a row is selected; so with all lists
///     form.chkDuplex.Click();                 a box is clicked
///     form.txtMarkCutOff.GotFocus();          a field is entered, then
///     key = form.txtMarkCutOff.KeyPress(key)  for each character that is typed,
///     form.txtMarkCutOff.Text("12");          with what stands there now,
///     form.txtMarkCutOff.Validate();          and left
///     form.cmdLocate.Click();                 a button is clicked
///
/// Any of these may change any control, so the view then shows all of them anew.
class KEL_PUBLIC frmOptions final : public Form {
public:
    frmOptions();
    ~frmOptions() override;

    /// The reader under edit, which must outlive the form. True when it is set.
    Boolean SetReader(clsKELReader& oReader);

    /// Whether the last dialog of this thread was cancelled. True, too, for one that is not decided yet.
    [[nodiscard]] static Boolean Cancelled();

    // --- The controls, in tab order

    Ornament picHeader{*this, "PictureBox", "picHeader"};
    Label lblTitle{*this, "lblTitle"};
    Label lblSubtitle{*this, "lblSubtitle"};
    Label lblReaderType{*this, "lblReaderType"};
    PowerCombo cboReaderType{*this, "cboReaderType"}; ///< column 0 the model's name, column 1 its number

    Frame frmReader{*this, "frmReader"};
    CheckBox chkFeeder{*this, "chkFeeder", &frmReader};
    CheckBox chkDuplex{*this, "chkDuplex", &frmReader};
    CheckBox chkRejecter{*this, "chkRejecter", &frmReader};
    CheckBox chkReaderGrade{*this, "chkReaderGrade", &frmReader};
    CheckBox chkBarcode{*this, "chkBarcode", &frmReader};
    CheckBox chkPrinter{*this, "chkPrinter", &frmReader};
    CheckBox chkWindowing{*this, "chkWindowing", &frmReader};
    Label lblRecognitionThreshold{*this, "lblRecognitionThreshold", &frmReader};
    PowerEdit txtRecognitionThreshold{*this, "txtRecognitionThreshold", &frmReader};
    Label lblMarkDiscrimination{*this, "lblMarkDiscrimination", &frmReader};
    PowerEdit txtMarkDiscrimination{*this, "txtMarkDiscrimination", &frmReader};
    Label lblMarkCutOff{*this, "lblMarkCutOff", &frmReader};
    PowerEdit txtMarkCutOff{*this, "txtMarkCutOff", &frmReader};
    Label lblReaderTimeout{*this, "lblReaderTimeout", &frmReader};
    PowerEdit txtReaderTimeout{*this, "txtReaderTimeout", &frmReader}; ///< seconds
    Label lblSystemPause{*this, "lblSystemPause", &frmReader};
    PowerEdit txtSystemPause{*this, "txtSystemPause", &frmReader}; ///< milliseconds

    Frame frmComPort{*this, "frmComPort"};
    Label lblPort{*this, "lblPort", &frmComPort};
    PowerCombo cboPort{*this, "cboPort", &frmComPort};
    PowerButton cmdLocate{*this, "cmdLocate", &frmComPort};
    Label lblBaud{*this, "lblBaud", &frmComPort};
    PowerCombo cboBaud{*this, "cboBaud", &frmComPort};
    Label lblDataBits{*this, "lblDataBits", &frmComPort};
    PowerCombo cboDataBits{*this, "cboDataBits", &frmComPort};
    Label lblParity{*this, "lblParity", &frmComPort};
    PowerCombo cboParity{*this, "cboParity", &frmComPort}; ///< column 0 the parity's name, column 1 its letter
    Label lblStopBits{*this, "lblStopBits", &frmComPort};
    PowerCombo cboStopBits{*this, "cboStopBits", &frmComPort};
    Label lblFlowControl{*this, "lblFlowControl", &frmComPort};
    PowerCombo cboFlowControl{*this, "cboFlowControl", &frmComPort}; ///< column 0 the name, column 1 the number

    Ornament linBottom{*this, "Line", "linBottom"};
    PowerButton cmdDefaults{*this, "cmdDefaults"};
    PowerButton cmdOK{*this, "cmdOK"};         ///< the default button
    PowerButton cmdCancel{*this, "cmdCancel"}; ///< the button of the Escape key

    // --- Its procedures, which run by themselves when the form is loaded and its controls are worked

    void Form_Load();
    void VBLM_SetProperties();
    void RepositionControls();
    void LoadValues();
    void SaveValues(clsKELReader& cSaveReader);

    /// Whether a port can be opened at this moment; nothing is reported.
    [[nodiscard]] Boolean IsValidPort(Int16 iPort);

    /// Sets a cell: of a new row if `bAddNewRow`; in the row `lRowIndex`, or the last one for -1.
    static void AddComboItem(PowerCombo& cboCombo, std::string sItem, Boolean bAddNewRow, Int16 iColIndex,
                             Int32 lRowIndex);

    /// Sets both bounds of a field in an order in which neither is refused.
    static void SetSpinMinMax(PowerEdit& txtSpin, Int32 lMinValue, Int32 lMaxValue);

    /// Writes the number of a field the usual way and brings it within the bounds, with a beep unless `bQuiet`.
    static void ValidateSpinValue(PowerEdit& txtEdit, Boolean bQuiet);

    /// The number of a text: with a decimal point as `Val` reads it, else by the locale; 13 "Type mismatch" if it is
    /// none.
    [[nodiscard]] static double CVal(std::string_view vValue);

    void cboReaderType_SelChangeEx(Int32 PreviousRowNum, Int32 CurrentRowNum);
    void chkReaderGrade_Click();
    void cmdOK_Click();
    void cmdCancel_Click();
    void cmdDefaults_Click();
    void cmdLocate_Click();

    /// -1 once the dialog was closed with OK or Cancel.
    [[nodiscard]] Int16 iReaderIndex() const { return iReaderIndex_; }

private:
    static void undecided();
    void connectEvents();
    void connectField(PowerEdit& field, const char* gotFocusSource, const char* validateSource,
                      const char* validationErrorSource);
    void filterKeys(PowerEdit& field, const char* source);
    void placeControls();
    void fillLineLists();
    [[nodiscard]] bool locateWithDialogValues();
    [[nodiscard]] clsKELReader& reader() const;

    Int16 iReaderIndex_ = 0;
    clsKELReader* cReaderOptions_ = nullptr;
    bool bLoadingValues_ = false;
    std::unique_ptr<SerialControl> mscScanner_; // the carrier of the port test alone
};

} // namespace kel
