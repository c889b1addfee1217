// SPDX-License-Identifier: MIT
#include "options/FormSettings.h"

#include "options/CaptionText.h"
#include "options/ListSelection.h"
#include "options/frmOptions.h"
#include "profiles/clsKELReaderProfile.h"
#include "reader/clsKELReader.h"

#include <algorithm>

namespace kel {

namespace {

std::string asTick(Boolean value)
{
    return value ? "1" : "0";
}

std::string sentences(const std::string& first, const std::string& next)
{
    return next.empty() ? first : first + " " + next;
}

} // namespace

FormSettings::FormSettings(frmOptions& form) : form_(form)
{
    using Profile = clsKELReaderProfile;
    using Reader = clsKELReader;
    frmOptions& f = form;
    const auto none = std::function<std::string(const Profile&)>();

// A check box, a number and a list of the form, with the property of the reader and of the model.
#define KEL_TICK(box, help, Property, own)                                                                             \
    {                                                                                                                  \
        &f.box, &f.box, help, [](const Profile& p) { return asTick(p.Property()); },                                   \
            [](const Reader& r) { return asTick(r.own); }                                                              \
    }
#define KEL_VALUE(control, label, help, Property, ...)                                                                 \
    {                                                                                                                  \
        &f.control, &f.label, help, [](const Profile& p) { return CStr(p.Property()); },                               \
            [](const Reader& r) { return CStr(r.Property()); } __VA_OPT__(, ) __VA_ARGS__                              \
    }
    settings_ = {
        {&f.cboReaderType, &f.lblReaderType, text::kModelHelp, none,
         [](const Reader& r) { return CStr(r.ReaderType()); }, 1},
        KEL_TICK(chkFeeder, text::kFeederHelp, Feeder, Feeder()),
        KEL_TICK(chkDuplex, text::kDuplexHelp, Duplex, Duplex()),
        KEL_TICK(chkRejecter, text::kRejecterHelp, Rejecter, Rejecter()),
        KEL_TICK(chkReaderGrade, text::kReaderGradeHelp, ReaderGrade, ReaderGrade()),
        KEL_TICK(chkBarcode, text::kBarcodeHelp, Barcode, Barcode()),
        KEL_TICK(chkPrinter, text::kPrinterHelp, Printer, Printer()->Enabled()),
        KEL_TICK(chkWindowing, text::kWindowingHelp, Windowing, Windowing()),
        KEL_VALUE(txtRecognitionThreshold, lblRecognitionThreshold, text::kRecognitionThresholdHelp,
                  RecognitionThreshold),
        KEL_VALUE(txtMarkDiscrimination, lblMarkDiscrimination, text::kMarkDiscriminationHelp, MarkDiscrimination),
        KEL_VALUE(txtMarkCutOff, lblMarkCutOff, text::kMarkCutOffHelp, MarkCutOff),
        KEL_VALUE(txtReaderTimeout, lblReaderTimeout, text::kTimeoutHelp, Timeout),
        KEL_VALUE(txtSystemPause, lblSystemPause, text::kSystemPauseHelp, SleepTime),
        {&f.cboPort, &f.lblPort, text::kPortHelp, none, [](const Reader& r) { return CStr(r.Port()); }, 0, true},
        KEL_VALUE(cboBaud, lblBaud, text::kBaudRateHelp, BaudRate, 0, true),
        KEL_VALUE(cboDataBits, lblDataBits, text::kDataBitsHelp, DataBits, 0, true),
        {&f.cboParity, &f.lblParity, text::kParityHelp, [](const Profile& p) { return p.Parity(); },
         [](const Reader& r) { return r.Parity(); }, 1, true},
        KEL_VALUE(cboStopBits, lblStopBits, text::kStopBitsHelp, StopBits, 0, true),
        KEL_VALUE(cboFlowControl, lblFlowControl, text::kFlowControlHelp, FlowControl, 1, true),
        {&f.cmdLocate, &f.cmdLocate, text::kLocateHelp, none, nullptr},
        {&f.cmdDefaults, &f.cmdDefaults, text::kDefaultsHelp, none, nullptr},
    };
#undef KEL_TICK
#undef KEL_VALUE
}

const FormSettings::Setting* FormSettings::find(const Control& control) const
{
    const auto found = std::find_if(settings_.begin(), settings_.end(),
                                    [&](const Setting& setting) { return setting.control == &control; });
    return found == settings_.end() ? nullptr : &*found;
}

bool FormSettings::isModelChosen() const
{
    return form_.cboReaderType.CurrentRow() > 0;
}

std::string FormSettings::value(const Setting& setting) const
{
    if (const auto* box = dynamic_cast<const CheckBox*>(setting.control))
        return asTick(box->Value() == 1);
    if (const auto* field = dynamic_cast<const PowerEdit*>(setting.control))
        return field->Text();
    if (const auto* list = dynamic_cast<const PowerCombo*>(setting.control))
        return list->CellText(setting.column, list->CurrentRow());
    return {};
}

/// A number is the same in any spelling.
bool FormSettings::isValue(const Setting& setting, const std::string& text) const
{
    const auto* field = dynamic_cast<const PowerEdit*>(setting.control);
    if (field && field->Number())
        return *field->Number() == Val(text);
    return value(setting) == text;
}

/// A value as the user sees it.
std::string FormSettings::shown(const Setting& setting, const std::string& cell) const
{
    if (dynamic_cast<const CheckBox*>(setting.control))
        return VBLM_RTString(cell == "1" ? text::kHelpOn : text::kHelpOff);
    const auto* list = dynamic_cast<const PowerCombo*>(setting.control);
    const Int32 row = list ? list->FindRow(cell, 0, setting.column) : -1;
    const std::string seen = row >= 0 ? list->CellText(0, row) : cell;
    return Trim(seen).empty() ? VBLM_RTString(text::kHelpNone) : seen;
}

std::string FormSettings::standardOf(const Setting& setting) const
{
    const auto profile = form_.reader().Profiles()->Item(selectedValue(form_.cboReaderType));
    return setting.standard(*profile);
}

std::string FormSettings::explanation(const Control& control) const
{
    const Setting* const setting = find(control);
    if (!setting)
        return {};
    std::string result = VBLM_RTString(setting->help);
    if (!isModelChosen())
        return result;
    const auto* field = dynamic_cast<const PowerEdit*>(&control);
    if (field && field->Minimum() < field->Maximum())
        result = sentences(result, replaceAll(replaceAll(VBLM_RTString(text::kHelpRange), "%1", CStr(field->Minimum())),
                                              "%2", CStr(field->Maximum())));
    if (setting->standard)
        result = sentences(result, replaceAll(VBLM_RTString(text::kHelpDefault), "%1", standard(control)));
    return result;
}

bool FormSettings::differs(const Control& control) const
{
    const Setting* const setting = find(control);
    if (!setting || !setting->standard || !control.Usable() || !isModelChosen())
        return false;
    const std::string standard = standardOf(*setting);
    const auto* list = dynamic_cast<const PowerCombo*>(&control);
    return !isValue(*setting, standard) && (!list || list->FindRow(standard, 0, setting->column) >= 0);
}

std::string FormSettings::standard(const Control& control) const
{
    const Setting* const setting = find(control);
    return setting && setting->standard && isModelChosen() ? shown(*setting, standardOf(*setting)) : std::string();
}

void FormSettings::reset(Control& control)
{
    if (!differs(control))
        return;
    const Setting& setting = *find(control);
    const std::string standard = standardOf(setting);
    control.SetFocus();
    if (auto* box = dynamic_cast<CheckBox*>(&control))
        box->Click();
    else if (auto* field = dynamic_cast<PowerEdit*>(&control))
        field->Text(standard);
    else if (auto* list = dynamic_cast<PowerCombo*>(&control))
        list->CurrentRow(list->FindRow(standard, 0, setting.column));
}

void FormSettings::noteLoaded()
{
    for (const Setting& setting : settings_)
        loaded_[setting.control] = value(setting);
}

void FormSettings::noteLoaded(const Control& control)
{
    if (const Setting* const setting = find(control))
        loaded_[&control] = value(*setting);
}

std::string FormSettings::unsought() const
{
    // Without a port nothing will be saved.
    if (form_.cboPort.Enabled() && isModelChosen() && form_.cboPort.Text().empty())
        return {};
    const clsKELReader& reader = form_.reader();
    const Setting& model = settings_.front();
    const bool isLoadedModel = value(model) == loaded_.at(model.control);
    const bool isSerial = isModelChosen() && form_.reader().Profiles()->Item(value(model))->InterfaceType() ==
                                                 kelReaderInterfaceTypeSerial;
    const bool hadPort = reader.ReaderType() != kelReaderTypeNone && reader.Port() != 0;
    std::string lines;
    for (const Setting& setting : settings_) {
        // With another model come its own values, which the user sees. The port alone stays, if it was one of a reader.
        const bool isOfThisModel = setting.control == &form_.cboPort ? hadPort : isLoadedModel;
        const bool isSaved = setting.control == model.control || (isModelChosen() && (isSerial || !setting.isLine));
        if (!setting.own || !isOfThisModel || !isSaved || value(setting) != loaded_.at(setting.control) ||
            isValue(setting, setting.own(reader)))
            continue;
        std::string line = VBLM_RTString(text::kUnsoughtChange);
        line = replaceAll(line, "%1", plainCaption(setting.caption->Caption()));
        const bool isModel = setting.control == model.control;
        line = replaceAll(line, "%2", isModel ? reader.ReaderName() : shown(setting, setting.own(reader)));
        lines += "\n" + replaceAll(line, "%3", shown(setting, value(setting)));
    }
    return lines.empty() ? lines : VBLM_RTString(text::kUnsoughtChanges) + "\n" + lines;
}

std::string FormSettings::corrected(const PowerEdit& field, const std::string& typed) const
{
    const Setting* const setting = find(field);
    if (!setting || !field.Number() || *field.Number() == Val(typed) || Trim(typed).empty())
        return {};
    std::string sentence = VBLM_RTString(text::kNumberCorrected);
    sentence = replaceAll(sentence, "%1", plainCaption(setting->caption->Caption()));
    sentence = replaceAll(sentence, "%2", Trim(typed));
    return replaceAll(sentence, "%3", field.Text());
}

} // namespace kel
