// SPDX-License-Identifier: MIT
// The number fields of the dialog.

#include "options/frmOptions.h"

#include "failure/guarded.h"
#include "options/ControlValues.h"
#include "options/LocaleNumber.h"
#include "platform/Platform.h"
#include "types/Text.h"

#include <algorithm>

namespace kel {

namespace {

/// The number that the user has typed into a field; failure 13 if it is not a number.
double typedNumber(const std::string& text)
{
    const double dValue = frmOptions::CVal(text);
    // With a point in it, anything counts as a number, and what does not begin with one as 0.
    const bool hasDigit = std::any_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
    if (dValue == 0 && !hasDigit)
        throw RuntimeFailure(FailureCode::TypeMismatch);
    return dValue;
}

void beepUnless(Boolean bQuiet)
{
    if (!bQuiet)
        platform().screen().Beep();
}

/// Cuts a fraction that has too many digits; the separator stays only if digits follow it. True if there was one.
bool cutFraction(PowerEdit& txtEdit, std::size_t& lPos)
{
    const std::string text = txtEdit.Text();
    const std::string& separator = txtEdit.DecimalSeparator();
    lPos = separator.empty() ? std::string::npos : text.find(separator);
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
    std::size_t lPos = 0;
    guarded("KELReader81 - frmOptions.ValidateSpinValue", KEL_PARAMETERS(txtEdit, bQuiet) + KEL_LOCALS(dValue, lPos),
            [&] {
                dValue = typedNumber(txtEdit.Text());
                txtEdit.Text(CStr(dValue));
                if (dValue < txtEdit.Minimum()) {
                    txtEdit.Text(CStr(txtEdit.Minimum()));
                    beepUnless(bQuiet);
                } else if (dValue > txtEdit.Maximum()) {
                    txtEdit.Text(CStr(txtEdit.Maximum()));
                    beepUnless(bQuiet);
                } else if (cutFraction(txtEdit, lPos)) {
                    beepUnless(bQuiet);
                }
            });
}

double frmOptions::CVal(std::string_view vValue)
{
    if (vValue.find('.') != std::string_view::npos)
        return Val(vValue);
    return localeNumber(vValue, platform().process().numberSigns());
}

std::optional<double> frmOptions::numberIn(const std::string& text)
{
    std::optional<double> number;
    ignoringFailures([&] { number = typedNumber(text); });
    return number;
}

} // namespace kel
