// SPDX-License-Identifier: MIT
#pragma once

#include "options/Form.h"
#include "types/Enumerations.h"
#include "types/Export.h"

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace kel {

class FormAids;
class FormSettings;
class ObjectLife;
class SerialControl;
class clsKELReader;
template <class Object>
class StatedModule;

/// The options dialog without a toolkit: the user chooses a model and adjusts its settings.
///
/// The catalogue decides: a change of the model sets the value, the bounds, and the enabled and visible state of every
/// control again, except the port. The reader's settings do not change before OK.
///
/// A view reads the controls and passes on what its user does through them (see `OptionsPresenter`):
///
///     form.cboReaderType.CurrentRow(3);       a row is selected; so with all lists
///     form.chkDuplex.Click();                 a box is clicked
///     form.txtMarkCutOff.GotFocus();          a field is entered, then
///     key = form.txtMarkCutOff.KeyPress(key)  for each character that is typed,
///     form.txtMarkCutOff.Text("12");          with the whole text now,
///     form.txtMarkCutOff.Validate();          and left
///     form.cmdLocate.Click();                 a button is clicked
///
/// Any of these may change any control, so the view then shows all of them again.
class KEL_PUBLIC frmOptions final : public Form {
public:
    /// The class's name, as dumps of variables show it.
    static constexpr const char* kClassName = "frmOptions";

    frmOptions();
    ~frmOptions() override;

    /// The reader whose settings are edited; it must outlive the form. True when it is set.
    Boolean SetReader(clsKELReader& oReader);

    /// Whether the last dialog of this thread was cancelled. Also True while it is still open.
    [[nodiscard]] static Boolean Cancelled();

    // --- The controls, in tab order

    /// The title band.
    Ornament picHeader{*this, "PictureBox", "picHeader"};
    Label lblTitle{*this, "lblTitle"};
    Label lblSubtitle{*this, "lblSubtitle"};

    /// The model: column 0 its name, column 1 its number.
    Label lblReaderType{*this, "lblReaderType"};
    PowerCombo cboReaderType{*this, "cboReaderType"};

    /// The frame of the reader's options.
    Frame frmReader{*this, "frmReader"};

    /// An option that the model may have.
    CheckBox chkFeeder{*this, "chkFeeder", &frmReader};
    CheckBox chkDuplex{*this, "chkDuplex", &frmReader};
    CheckBox chkRejecter{*this, "chkRejecter", &frmReader};
    CheckBox chkReaderGrade{*this, "chkReaderGrade", &frmReader};
    CheckBox chkBarcode{*this, "chkBarcode", &frmReader};
    CheckBox chkPrinter{*this, "chkPrinter", &frmReader};
    CheckBox chkWindowing{*this, "chkWindowing", &frmReader};

    /// A number on the model's scale of darkness.
    Label lblRecognitionThreshold{*this, "lblRecognitionThreshold", &frmReader};
    PowerEdit txtRecognitionThreshold{*this, "txtRecognitionThreshold", &frmReader};
    Label lblMarkDiscrimination{*this, "lblMarkDiscrimination", &frmReader};
    PowerEdit txtMarkDiscrimination{*this, "txtMarkDiscrimination", &frmReader};
    Label lblMarkCutOff{*this, "lblMarkCutOff", &frmReader};
    PowerEdit txtMarkCutOff{*this, "txtMarkCutOff", &frmReader};

    /// How long the reader may take to answer, in seconds.
    Label lblReaderTimeout{*this, "lblReaderTimeout", &frmReader};
    PowerEdit txtReaderTimeout{*this, "txtReaderTimeout", &frmReader};

    /// The base of all pauses, in milliseconds.
    Label lblSystemPause{*this, "lblSystemPause", &frmReader};
    PowerEdit txtSystemPause{*this, "txtSystemPause", &frmReader};

    /// The frame of the line's settings.
    Frame frmComPort{*this, "frmComPort"};

    /// The ports that can be opened, and the search for the reader.
    Label lblPort{*this, "lblPort", &frmComPort};
    PowerCombo cboPort{*this, "cboPort", &frmComPort};
    PowerButton cmdLocate{*this, "cmdLocate", &frmComPort};

    /// A setting of the line. Parity has its name in column 0 and its letter in column 1, flow control its name and its
    /// number.
    Label lblBaud{*this, "lblBaud", &frmComPort};
    PowerCombo cboBaud{*this, "cboBaud", &frmComPort};
    Label lblDataBits{*this, "lblDataBits", &frmComPort};
    PowerCombo cboDataBits{*this, "cboDataBits", &frmComPort};
    Label lblParity{*this, "lblParity", &frmComPort};
    PowerCombo cboParity{*this, "cboParity", &frmComPort};
    Label lblStopBits{*this, "lblStopBits", &frmComPort};
    PowerCombo cboStopBits{*this, "cboStopBits", &frmComPort};
    Label lblFlowControl{*this, "lblFlowControl", &frmComPort};
    PowerCombo cboFlowControl{*this, "cboFlowControl", &frmComPort};

    /// The line above the buttons.
    Ornament linBottom{*this, "Line", "linBottom"};

    /// The buttons. OK is the default; the Escape key is Cancel.
    PowerButton cmdDefaults{*this, "cmdDefaults"};
    PowerButton cmdOK{*this, "cmdOK"};
    PowerButton cmdCancel{*this, "cmdCancel"};

    // --- Its procedures, which run when the form is loaded and when its controls are used

    /// Captions, the host's font, layout and values, in this order.
    void Form_Load();

    /// Sets all captions from the language database.
    void VBLM_SetProperties();

    /// Makes room for the captions: fields and lists go right of the longest label.
    void RepositionControls();

    /// Fills the lists and shows the reader's settings. Each port from 1 to 16 is opened for a moment, unless the view
    /// has called `showPortsAsTheyCome`.
    void LoadValues();

    /// Writes the settings to a reader: those of the line only for a serial model; without a model, the defaults of "No
    /// reader".
    void SaveValues(clsKELReader& cSaveReader);

    /// Whether a port can be opened at this moment; nothing is reported.
    [[nodiscard]] Boolean IsValidPort(Int16 iPort);

    /// Sets a cell: of a new row if `bAddNewRow`; in the row `lRowIndex`, or the last one for -1.
    static void AddComboItem(PowerCombo& cboCombo, std::string sItem, Boolean bAddNewRow, Int16 iColIndex,
                             Int32 lRowIndex);

    /// Sets both bounds of a field, in the order in which neither is refused.
    static void SetSpinMinMax(PowerEdit& txtSpin, Int32 lMinValue, Int32 lMaxValue);

    /// Formats the number of a field and moves it to a bound if it lies outside, with a beep unless `bQuiet`.
    static void ValidateSpinValue(PowerEdit& txtEdit, Boolean bQuiet);

    /// The number of a text: with a decimal point as `Val` reads it, else by the locale; failure 13 "Type mismatch" if
    /// it is not a number.
    [[nodiscard]] static double CVal(std::string_view vValue);

    /// Sets every control but the port from the catalogue's record of the model that was chosen.
    void cboReaderType_SelChangeEx(Int32 PreviousRowNum, Int32 CurrentRowNum);

    /// Disables or enables the three numbers on models that evaluate the marks themselves when they grade.
    void chkReaderGrade_Click();

    /// Saves and closes, unless a serial model has no port.
    void cmdOK_Click();

    /// Closes; nothing is written.
    void cmdCancel_Click();

    /// Shows the catalogue's values for the model again; the port stays.
    void cmdDefaults_Click();

    /// Searches the ports with the values of the dialog, and selects the one that answers. The reader's own settings
    /// stay as they were.
    void cmdLocate_Click();

    /// -1 once the dialog was closed with OK or Cancel.
    [[nodiscard]] Int16 iReaderIndex() const { return iReaderIndex_; }

private:
    friend class FormSettings;
    template <class Object>
    friend class StatedModule;

    [[nodiscard]] std::string dumpMembers() const;
    [[nodiscard]] std::array<PowerEdit*, 5> numberFields();
    [[nodiscard]] static std::optional<double> numberIn(const std::string& text);
    static void undecided();
    void connectEvents();
    void connectField(PowerEdit& field, const char* gotFocusSource, const char* validateSource,
                      const char* validationErrorSource);
    void filterKeys(PowerEdit& field, const char* source);
    void placeControls();
    void fillLineLists();
    [[nodiscard]] bool locateWithDialogValues(Int16 iPortIndex, Int16& iStartPort, Int16& iPortLocated);
    void fillPorts(Int16& iPort);
    [[nodiscard]] clsKELReader& reader() const;

    std::unique_ptr<ObjectLife> life_; // from loading to unloading
    Int16 iReaderIndex_ = 0;
    clsKELReader* cReaderOptions_ = nullptr;
    bool bLoadingValues_ = false;
    std::unique_ptr<SerialControl> mscScanner_; // the carrier of the port test alone
    std::unique_ptr<FormAids> ownAids_;
};

} // namespace kel
