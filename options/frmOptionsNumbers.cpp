// The number fields of the dialog.

#include "options/frmOptions.h"

#include "failure/guarded.h"
#include "options/ControlValues.h"
#include "platform/Platform.h"
#include "types/Text.h"

#include <algorithm>
#include <clocale>

namespace kel {

namespace {

/// The sign before the fraction in the process's locale.
std::string localeSeparator()
{
    const std::lconv* const conventions = std::localeconv();
    return conventions && conventions->decimal_point ? conventions->decimal_point : ".";
}

void beepUnless(Boolean bQuiet)
{
    if (!bQuiet)
        platform().screen().Beep();
}

/// Cuts a fraction that has too many digits; the separator stays only if digits follow it. True if there was one.
bool cutFraction(PowerEdit& txtEdit)
{
    const std::string text = txtEdit.Text();
    const std::string& separator = txtEdit.DecimalSeparator();
    const std::size_t lPos = separator.empty() ? std::string::npos : text.find(separator);
    if (lPos == std::string::npos)
        return false;
    const auto places = static_cast<std::size_t>(std::max(txtEdit.DecimalPlaces(), Int32{0}));
    if (text.size() - lPos - separator.size() <= places)
        return false;
    txtEdit.Text(text.substr(0, places == 0 ? lPos : lPos + separator.size() + places));
    return true;
}

} // namespace

void frmOptions::SetSpinMinMax(PowerEdit& txtSpin, Int32 lMinValue, Int32 lMaxValue)
{
    guarded("KELReader81 - frmOptions.SetSpinMinMax", KEL_PARAMETERS(txtSpin, lMinValue, lMaxValue), [&] {
        if (lMinValue < txtSpin.Maximum()) {
            txtSpin.Minimum(lMinValue);
            txtSpin.Maximum(std::max(lMaxValue, lMinValue));
        } else {
            txtSpin.Maximum(lMaxValue);
            txtSpin.Minimum(std::min(lMinValue, lMaxValue));
        }
    });
}

void frmOptions::ValidateSpinValue(PowerEdit& txtEdit, Boolean bQuiet)
{
    double dValue = 0;
    guarded("KELReader81 - frmOptions.ValidateSpinValue", KEL_PARAMETERS(txtEdit, bQuiet) + KEL_LOCALS(dValue), [&] {
        dValue = CVal(txtEdit.Text());
        txtEdit.Text(CStr(dValue));
        if (dValue < txtEdit.Minimum()) {
            txtEdit.Text(CStr(txtEdit.Minimum()));
            beepUnless(bQuiet);
        } else if (dValue > txtEdit.Maximum()) {
            txtEdit.Text(CStr(txtEdit.Maximum()));
            beepUnless(bQuiet);
        } else if (cutFraction(txtEdit)) {
            beepUnless(bQuiet);
        }
    });
}

double frmOptions::CVal(std::string_view vValue)
{
    if (vValue.find('.') != std::string_view::npos)
        return Val(vValue);
    const std::string number = replaceAll(vValue, localeSeparator(), ".");
    if (!IsNumeric(number))
        throw RuntimeFailure(FailureCode::TypeMismatch);
    return Val(number);
}

} // namespace kel
