// SPDX-License-Identifier: MIT
// How the dialog shows the reader's settings and writes them back.

#include "options/frmOptions.h"

#include "failure/guarded.h"
#include "options/ControlValues.h"
#include "options/FormAids.h"
#include "options/ListSelection.h"
#include "platform/Platform.h"
#include "platform/PortMap.h"
#include "reader/clsKELReader.h"
#include "strings/VBLMRTSModule.h"

#include <array>

namespace kel {

namespace {

struct NamedValue {
    const char* name;
    const char* value;
};

constexpr std::array kBaudRates = {"110",   "300",   "600",   "1200",  "2400",   "9600",  "14400",
                                   "19200", "28800", "38400", "56000", "128000", "256000"};
constexpr std::array kDataBits = {"4", "5", "6", "7", "8"};
constexpr std::array kStopBits = {"1", "1.5", "2"};
// The last one is a blank, not a letter.
constexpr std::array kParities = {NamedValue{"None", "N"}, NamedValue{"Odd", "O"}, NamedValue{"Even", "E"},
                                  NamedValue{"Mark", "M"}, NamedValue{"Space", " "}};
constexpr std::array kFlowControls = {NamedValue{"None", "0"}, NamedValue{"Xon / Xoff", "1"},
                                      NamedValue{"Hardware", "2"}, NamedValue{"Both", "3"}};

template <std::size_t count>
void fill(PowerCombo& list, const std::array<const char*, count>& texts)
{
    list.ClearRows();
    for (const char* const text : texts)
        frmOptions::AddComboItem(list, text, True, 0, -1);
}

template <std::size_t count>
void fill(PowerCombo& list, const std::array<NamedValue, count>& rows)
{
    list.ClearRows();
    for (const NamedValue& row : rows) {
        frmOptions::AddComboItem(list, row.name, True, 0, -1);
        frmOptions::AddComboItem(list, row.value, False, 1, -1);
    }
}

Boolean ticked(const CheckBox& box)
{
    return box.Value() == 1;
}

void setTick(CheckBox& box, Boolean value)
{
    box.Value(value ? Int16{1} : Int16{0});
}

/// The number in a field, or the former one if the field has none.
double numberOr(const PowerEdit& field, Int32 otherwise)
{
    return field.Number().value_or(otherwise);
}

// Whether the last dialog of a thread was cancelled; an open one counts as cancelled.
thread_local Boolean bCancelled = True;

} // namespace

void frmOptions::undecided()
{
    bCancelled = True;
}

std::string frmOptions::dumpMembers() const
{
    VariableLines lines;
    lines.add("iReaderIndex, cReaderOptions, bLoadingValues, bCancelled", iReaderIndex_,
              cReaderOptions_ ? toVariant(*cReaderOptions_) : Variant(ObjectValue{}), bLoadingValues_, bCancelled);
    return lines.text();
}

std::array<PowerEdit*, 5> frmOptions::numberFields()
{
    return {&txtRecognitionThreshold, &txtMarkDiscrimination, &txtMarkCutOff, &txtReaderTimeout, &txtSystemPause};
}

Boolean frmOptions::Cancelled()
{
    return bCancelled;
}

void frmOptions::AddComboItem(PowerCombo& cboCombo, std::string sItem, Boolean bAddNewRow, Int16 iColIndex,
                              Int32 lRowIndex)
{
    Int32 lRow = -1;
    const auto variables = KEL_PARAMETERS(cboCombo, sItem, bAddNewRow, iColIndex, lRowIndex) + KEL_LOCALS(lRow);
    guarded("KELReader81 - frmOptions.AddComboItem", variables, [&] {
        if (bAddNewRow)
            cboCombo.AddRow();
        lRow = lRowIndex != -1 ? lRowIndex : cboCombo.RowCount() - 1;
        cboCombo.SetCell(lRow, iColIndex, std::move(sItem));
    });
}

Boolean frmOptions::IsValidPort(Int16 iPort)
{
    return ignoringFailures([&] {
        mscScanner_->CommPort(iPort);
        mscScanner_->PortOpen(True);
        mscScanner_->PortOpen(False);
    });
}

void frmOptions::fillLineLists()
{
    fill(cboBaud, kBaudRates);
    fill(cboDataBits, kDataBits);
    fill(cboStopBits, kStopBits);
    fill(cboParity, kParities);
    fill(cboFlowControl, kFlowControls);
}

void frmOptions::fillPorts(Int16& iPort)
{
    cboPort.ClearRows();
    for (iPort = PortMap::kFirstPort; iPort <= PortMap::kLastPort; ++iPort) {
        if (IsValidPort(iPort))
            AddComboItem(cboPort, CStr(iPort), True, 0, -1);
    }
    selectText(cboPort, CStr(reader().Port()), 0);
    if (cboPort.CurrentRow() == -1)
        cboPort.CurrentRow(0);
}

void frmOptions::LoadValues()
{
    Int16 iPort = 0;
    Int32 lPosition = 0;
    guarded("KELReader81 - frmOptions.LoadValues", KEL_LOCALS(iPort, lPosition) + moduleOf(*this), [&] {
        if (!ownAids_->beginsToLook(reader().Port()))
            fillPorts(iPort);

        cboReaderType.ClearRows();
        for (lPosition = 1; lPosition <= reader().Profiles()->Count(); ++lPosition) {
            AddComboItem(cboReaderType, reader().Profiles()->Item(lPosition)->ReaderName(), True, 0, -1);
            AddComboItem(cboReaderType, CStr(reader().Profiles()->Item(lPosition)->ReaderType()), False, 1,
                         lPosition - 1);
        }
        fillLineLists();

        // This sets every control from the catalogue; the reader's own values replace those.
        cboReaderType.CurrentRow(cboReaderType.FindRow(CStr(reader().ReaderType()), 0, 1));
        if (cboReaderType.CurrentRow() == -1)
            selectText(cboReaderType, CStr(kelReaderTypeNone), 1);

        selectText(cboBaud, CStr(reader().BaudRate()), 0);
        selectText(cboDataBits, CStr(reader().DataBits()), 0);
        selectText(cboStopBits, CStr(reader().StopBits()), 0);
        if (!reader().Parity().empty())
            selectText(cboParity, reader().Parity(), 1);
        else
            cboParity.CurrentRow(-1);
        selectText(cboFlowControl, CStr(reader().FlowControl()), 1);

        setTick(chkReaderGrade, reader().ReaderGrade());
        setTick(chkDuplex, reader().Duplex());
        setTick(chkBarcode, reader().Barcode());
        setTick(chkFeeder, reader().Feeder());
        setTick(chkRejecter, reader().Rejecter());
        setTick(chkWindowing, reader().Windowing());
        setTick(chkPrinter, reader().Printer()->Enabled());

        txtRecognitionThreshold.Text(CStr(reader().RecognitionThreshold()));
        txtMarkCutOff.Text(CStr(reader().MarkCutOff()));
        txtMarkDiscrimination.Text(CStr(reader().MarkDiscrimination()));
        txtReaderTimeout.Text(CStr(reader().Timeout()));
        if (reader().SleepTime() >= txtSystemPause.Minimum())
            txtSystemPause.Text(CStr(reader().SleepTime()));
        ownAids_->noteLoaded();
    });
}

void frmOptions::SaveValues(clsKELReader& cSaveReader)
{
    Reference<clsKELReaderProfile> cProfile;
    const auto variables = KEL_PARAMETERS(cSaveReader) + KEL_LOCALS(cProfile) + moduleOf(*this);
    guarded("KELReader81 - frmOptions.SaveValues", variables, [&] {
        cSaveReader.ReaderType(static_cast<kelReaderType>(integerOf(selectedValue(cboReaderType))));
        if (cSaveReader.ReaderType() == kelReaderTypeNone) {
            cSaveReader.LoadDefaults(kelReaderTypeNone);
            return;
        }
        cProfile = cSaveReader.Profiles()->Item(CStr(cSaveReader.ReaderType()));
        if (cProfile->InterfaceType() == kelReaderInterfaceTypeSerial) {
            cSaveReader.BaudRate(static_cast<kelReaderBaudRate>(CLng(Val(cboBaud.Text()))));
            cSaveReader.DataBits(static_cast<kelReaderDataBits>(CLng(Val(cboDataBits.Text()))));
            cSaveReader.Port(CInt(Val(cboPort.Text())));
            cSaveReader.StopBits(static_cast<float>(Val(cboStopBits.Text())));
            cSaveReader.FlowControl(static_cast<kelReaderFlowControl>(integerOf(selectedValue(cboFlowControl))));
            cSaveReader.Parity(selectedValue(cboParity));
        }
        cSaveReader.ReaderGrade(ticked(chkReaderGrade));
        cSaveReader.Duplex(ticked(chkDuplex));
        cSaveReader.Barcode(ticked(chkBarcode));
        cSaveReader.Feeder(ticked(chkFeeder));
        cSaveReader.MarkCutOff(CInt(numberOr(txtMarkCutOff, cSaveReader.MarkCutOff())));
        cSaveReader.MarkDiscrimination(CInt(numberOr(txtMarkDiscrimination, cSaveReader.MarkDiscrimination())));
        cSaveReader.Printer()->Enabled(ticked(chkPrinter));
        cSaveReader.RecognitionThreshold(CInt(numberOr(txtRecognitionThreshold, cSaveReader.RecognitionThreshold())));
        cSaveReader.Rejecter(ticked(chkRejecter));
        cSaveReader.Windowing(ticked(chkWindowing));
        cSaveReader.SleepTime(CLng(numberOr(txtSystemPause, cSaveReader.SleepTime())));
        cSaveReader.Timeout(CLng(numberOr(txtReaderTimeout, cSaveReader.Timeout())));
    });
}

void frmOptions::cmdOK_Click()
{
    guarded("KELReader81 - frmOptions.cmdOK_Click", moduleOf(*this), [&] {
        // A port that has not come yet may be the only one.
        if (cboPort.Text().empty())
            ownAids_->endLook();
        if (cboPort.Enabled() && cboReaderType.CurrentRow() > 0 && cboPort.Text().empty()) {
            platform().screen().MsgBox(VBLM_RTString(text::kNoPortChosen), BoxIcon::Exclamation, BoxButtons::Ok,
                                       VBLM_RTString(text::kNoPortChosenTitle));
            return;
        }
        for (PowerEdit* const field : numberFields()) {
            if (field->Usable() && !field->Number()) {
                field->Validate();
                field->SetFocus();
                return;
            }
        }
        SaveValues(reader());
        iReaderIndex_ = -1;
        bCancelled = False;
        Hide();
    });
}

void frmOptions::cmdCancel_Click()
{
    guarded("KELReader81 - frmOptions.cmdCancel_Click", moduleOf(*this), [&] {
        iReaderIndex_ = -1;
        bCancelled = True;
        Hide();
    });
}

void frmOptions::cmdDefaults_Click()
{
    Int32 lSelection = -1;
    guarded("KELReader81 - frmOptions.cmdDefaults_Click", KEL_LOCALS(lSelection) + moduleOf(*this), [&] {
        lSelection = cboReaderType.CurrentRow();
        if (lSelection <= 0)
            return;
        // Away and back again: each change of the row loads the catalogue's values.
        cboReaderType.CurrentRow(cboReaderType.FindRow(CStr(kelReaderTypeNone), 0, 1));
        cboReaderType.CurrentRow(lSelection);
    });
}

} // namespace kel
