// SPDX-License-Identifier: MIT
#include "options/win32/Win32OptionsPresenter.h"

#include "options/win32/OptionsDialogWindow.h"
#include "platform/windows/WindowsText.h"

namespace kel {

bool Win32OptionsPresenter::show(frmOptions& form, void* parent, std::string& reason)
{
    OptionsDialogWindow dialog(form, screen_, place_);
    const auto owner = static_cast<HWND>(parent);
    if (dialog.run(owner && ::IsWindow(owner) ? owner : ::GetActiveWindow()))
        return true;
    reason = "The options dialog cannot be shown: " + systemErrorText(::GetLastError());
    return false;
}

std::shared_ptr<OptionsPresenter> makeWin32OptionsPresenter()
{
    return std::make_shared<Win32OptionsPresenter>(registeredWindowPlace());
}

} // namespace kel
