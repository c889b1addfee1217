// SPDX-License-Identifier: MIT
// What assistive programs are told of the dialog. A field has its name from the label before it; the order of the
// controls sees to that.

#include "options/CaptionText.h"
#include "options/win32/OptionsDialogWindow.h"
#include "platform/windows/WindowsText.h"

namespace kel {

void OptionsDialogWindow::refreshAnnotations()
{
    for (const Shown& each : shown_) {
        if (!each.window)
            continue;
        annotations_.say(each.window, Annotations::What::Description,
                         wideText(form_.Aids().explanation(*each.control)));
        // What is drawn in the field of a list is no text of the window's.
        if (const auto* list = dynamic_cast<const PowerCombo*>(each.control))
            annotations_.say(each.window, Annotations::What::Value,
                             list->CurrentRow() < 0 ? wideText(list->Prompt()) : std::wstring());
        if (const NumberEdit* number = numberEdit(each.window))
            annotations_.say(number->spinner(), Annotations::What::Name, wideText(settingName(form_, *each.control)));
    }
}

} // namespace kel
