// SPDX-License-Identifier: MIT
// What comes before a button of the form does its work: what is in a field is put right, and what would change although
// nobody has touched it is asked about.

#include "options/win32/OptionsDialogWindow.h"
#include "options/win32/QuestionBox.h"
#include "platform/windows/WindowsText.h"

namespace kel {

void OptionsDialogWindow::click(PowerButton& button)
{
    const bool isOk = &button == &form_.cmdOK;
    // The default button works while a field still has the focus.
    NumberEdit* const field = numberEdit(::GetFocus());
    if (field && &button != &form_.cmdCancel && !leaves(*field, isOk))
        return;
    if (isOk && !mayBeSaved())
        return;
    act([&] { button.Click(); });
}

/// Whether what is in a field may be saved at once. A number that was put right is shown first.
bool OptionsDialogWindow::leaves(NumberEdit& field, bool isOk)
{
    const std::string typed = field.edit().Text();
    if (!field.leave())
        return false;
    const std::string corrected = isOk ? form_.Aids().corrected(field.edit(), typed) : std::string();
    if (corrected.empty())
        return true;
    ::SetWindowTextW(notice_, wideText(corrected).c_str());
    ::NotifyWinEvent(EVENT_SYSTEM_ALERT, notice_, OBJID_CLIENT, CHILDID_SELF);
    refresh();
    ::SendMessageW(field.field(), EM_SETSEL, 0, -1);
    return false;
}

/// Asks about what would change although nobody has touched it.
bool OptionsDialogWindow::mayBeSaved()
{
    const std::string changes = form_.Aids().unsoughtChanges();
    refresh(); // ports may have come
    const OptionsAids::Captions& captions = form_.Aids().captions();
    return changes.empty() || ask(window_, {wideText(captions.unsought), wideText(changes), wideText(captions.save),
                                            wideText(captions.back)});
}

} // namespace kel
