// SPDX-License-Identifier: MIT
#include "options/basPublic.h"

#include "types/Text.h"

#include <algorithm>

namespace kel {

namespace {

/// Space to the right of a frame's title, in twips.
constexpr double kFrameTitleMargin = 90;

/// The visible text of a caption: no access-key marks, and "&&" as one ampersand.
std::string shownCaption(const std::string& caption)
{
    const std::string ampersand(1, '\0');
    return replaceAll(replaceAll(replaceAll(caption, "&&", ampersand), "&", ""), ampersand, "&");
}

bool isOneOf(std::string_view type, std::initializer_list<std::string_view> types)
{
    return std::ranges::find(types, type) != types.end();
}

/// Sets another font for the form as long as this object exists.
class FontLoan {
public:
    FontLoan(Form& form, const Font& font) : form_(form), own_(form.Font()) { form_.Font(font); }
    ~FontLoan() { form_.Font(own_); }
    FontLoan(const FontLoan&) = delete;
    FontLoan& operator=(const FontLoan&) = delete;

private:
    Form& form_;
    Font own_;
};

} // namespace

double ControlTextWidth(Form& oForm, const Control& oControl)
{
    double dWidth = 0;
    guarded("KELReader81 - basPublic.ControlTextWidth", KEL_PARAMETERS(oForm, oControl) + KEL_LOCALS(dWidth), [&] {
        const FontLoan loan(oForm, oControl.Font());
        if (isOneOf(oControl.TypeName(), {"Label", "CheckBox", "OptionButton", "PowerButton", "Frame"}))
            dWidth = oForm.TextWidth(shownCaption(oControl.Caption()));
    });
    return dWidth;
}

void ControlAutoSize(Form& oForm, const ControlList& vControlList)
{
    guarded("KELReader81 - basPublic.ControlAutoSize", KEL_PARAMETERS(oForm, vControlList), [&] {
        for (Control* const control : vControlList) {
            if (control->TypeName() == "Label")
                control->Width(ControlTextWidth(oForm, *control));
            else if (isOneOf(control->TypeName(), {"CheckBox", "OptionButton", "PowerButton"}))
                control->Width(ControlTextWidth(oForm, *control) + oForm.TextWidth(Space(8)));
        }
    });
}

void ControlPositionRight(Form& oForm, Control& oLeftCtrl, Control& oRightCtrl, const ControlList* vRightControls,
                          Boolean bSameWidth, Int32 lSpaceBetween, Boolean bOnlyMoveRight)
{
    Int32 lDistance = 0;
    const auto variables =
        parametersFrom([&](VariableLines& lines) {
            lines.add("oForm, oLeftCtrl, oRightCtrl", oForm, oLeftCtrl, oRightCtrl);
            lines.add("vRightControls", vRightControls ? toVariant(*vRightControls) : Variant(MissingValue{}));
            lines.add("bSameWidth, lSpaceBetween, bOnlyMoveRight", bSameWidth, lSpaceBetween, bOnlyMoveRight);
        }) +
        KEL_LOCALS(lDistance);
    guarded("KELReader81 - basPublic.ControlPositionRight", variables, [&] {
        double width = 0;
        if (oLeftCtrl.TypeName() == "Frame") {
            width = ControlTextWidth(oForm, oLeftCtrl) + kFrameTitleMargin;
        } else {
            ControlAutoSize(oForm, {&oLeftCtrl});
            width = oLeftCtrl.Width();
        }
        lDistance = CLng(oLeftCtrl.Left() + width + lSpaceBetween - oRightCtrl.Left());
        if (bOnlyMoveRight && lDistance < 1)
            return;
        oRightCtrl.Left(oRightCtrl.Left() + lDistance);
        if (!bSameWidth) {
            if (vRightControls) {
                for (Control* const control : *vRightControls)
                    control->Left(control->Left() + lDistance);
            }
            return;
        }
        if (lDistance < oRightCtrl.Width())
            oRightCtrl.Width(oRightCtrl.Width() - lDistance);
    });
}

void ControlAlignLeft(const ControlList& vControlList, Boolean bSameWidth)
{
    double lRightMost = 0;
    guarded("KELReader81 - basPublic.ControlAlignLeft",
            KEL_PARAMETERS(vControlList, bSameWidth) + KEL_LOCALS(lRightMost), [&] {
                for (const Control* const control : vControlList)
                    lRightMost = std::max(lRightMost, control->Left());
                for (Control* const control : vControlList) {
                    const double moved = lRightMost - control->Left();
                    control->Left(lRightMost);
                    if (bSameWidth)
                        control->Width(control->Width() - moved);
                }
            });
}

} // namespace kel
