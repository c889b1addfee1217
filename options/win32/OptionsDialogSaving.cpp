// SPDX-License-Identifier: MIT
// What comes before a button of the form does its work.

#include "options/win32/OptionsDialogWindow.h"
#include "options/win32/QuestionBox.h"
#include "platform/windows/WindowsText.h"

namespace kel {

void OptionsDialogWindow::click(PowerButton& button)
{
    if (mayWork(form_, button, *this))
        act([&] { button.Click(); });
}

const PowerEdit* OptionsDialogWindow::focusedField()
{
    const NumberEdit* const field = numberEdit(::GetFocus());
    return field ? &field->edit() : nullptr;
}

bool OptionsDialogWindow::leaveField()
{
    NumberEdit* const field = numberEdit(::GetFocus());
    return !field || field->leave();
}

void OptionsDialogWindow::showCorrection(const std::string& sentence)
{
    ::SetWindowTextW(notice_, wideText(sentence).c_str());
    ::NotifyWinEvent(EVENT_SYSTEM_ALERT, notice_, OBJID_CLIENT, CHILDID_SELF);
    refresh();
    ::SendMessageW(::GetFocus(), EM_SETSEL, 0, -1);
}

bool OptionsDialogWindow::allows(const std::string& changes)
{
    const OptionsAids::Captions& captions = form_.Aids().captions();
    return ask(window_,
               {wideText(captions.unsought), wideText(changes), wideText(captions.save), wideText(captions.back)});
}

} // namespace kel
