// SPDX-License-Identifier: MIT
#pragma once

#include "failure/guarded.h"
#include "options/ControlValues.h"
#include "options/Form.h"

#include <memory>
#include <vector>

namespace kel {

/// Controls of a form in the order in which they are worked on.
using ControlList = std::vector<Control*>;

/// Width of a control's caption in the control's font, in twips: access-key marks do not count, a doubled ampersand
/// counts as one. 0 for kinds without a caption.
[[nodiscard]] double ControlTextWidth(Form& oForm, const Control& oControl);

/// Makes each control as wide as its caption needs; kinds without a caption stay as they are.
void ControlAutoSize(Form& oForm, const ControlList& vControlList);

/// Puts one control right of another, `lSpaceBetween` after its caption. With `bSameWidth` its right edge stays where
/// it was, if there is room; without, the controls of `vRightControls`, if given, move along.
/// `bOnlyMoveRight`: nothing moves to the left.
void ControlPositionRight(Form& oForm, Control& oLeftCtrl, Control& oRightCtrl, const ControlList* vRightControls,
                          Boolean bSameWidth, Int32 lSpaceBetween, Boolean bOnlyMoveRight);

/// Aligns controls at the left edge of the rightmost one; with `bSameWidth` their right edges stay.
void ControlAlignLeft(const ControlList& vControlList, Boolean bSameWidth);

/// Unloads a form, if there is one, and releases it.
template <class AnyForm>
void UnloadForm(std::shared_ptr<AnyForm>& oFormObject)
{
    guarded("KELReader81 - basPublic.UnloadForm", KEL_PARAMETERS(oFormObject), [&] {
        if (!oFormObject)
            return;
        oFormObject->Unload();
        oFormObject.reset();
    });
}

} // namespace kel
