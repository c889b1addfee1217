// SPDX-License-Identifier: MIT
// What comes before a button of the form does its work.

#include "options/win32/OptionsDialogWindow.h"
#include "options/win32/QuestionBox.h"
#include "platform/windows/WindowsText.h"

#include <algorithm>

namespace kel {

void OptionsDialogWindow::click(PowerButton& button)
{
    if (mayWork(form_, button, *this))
        act([&] { button.Click(); });
}

/// The field that the user is in. An access key works a button before the user is back in a field that was left without
/// a number.
NumberEdit* OptionsDialogWindow::fieldInHand()
{
    if (NumberEdit* const focused = numberEdit(::GetFocus()))
        return focused;
    const auto found =
        std::find_if(numbers_.begin(), numbers_.end(), [](const auto& number) { return !number->canBeLeft(); });
    return found == numbers_.end() ? nullptr : found->get();
}

const PowerEdit* OptionsDialogWindow::field()
{
    const NumberEdit* const field = fieldInHand();
    return field ? &field->edit() : nullptr;
}

bool OptionsDialogWindow::leaveField()
{
    NumberEdit* const field = fieldInHand();
    return !field || leave(*field);
}

/// Leaves a field, or is there again once the user has been told that there is no number in it.
bool OptionsDialogWindow::leave(NumberEdit& field)
{
    isLeaving_ = true; // the box that tells it has turns of its own
    const bool isLeft = field.leave();
    isLeaving_ = false;
    if (!isLeft)
        ::SetFocus(field.field());
    return isLeft;
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
