// SPDX-License-Identifier: MIT
#include "platform/windows/WindowsScreen.h"

#include "platform/windows/WindowsText.h"

#include <windows.h>

namespace kel {

namespace {

UINT iconStyle(BoxIcon icon)
{
    switch (icon) {
    case BoxIcon::Information: return MB_ICONINFORMATION;
    case BoxIcon::Exclamation: return MB_ICONEXCLAMATION;
    case BoxIcon::None: break;
    }
    return 0;
}

} // namespace

BoxAnswer WindowsScreen::MsgBox(const std::string& text, BoxIcon icon, BoxButtons buttons, const std::string& title)
{
    const UINT style = iconStyle(icon) | (buttons == BoxButtons::AbortRetryIgnore ? MB_ABORTRETRYIGNORE : MB_OK);
    const HWND owner = ::GetActiveWindow();
    const int answer =
        ::MessageBoxW(owner, wideText(text).c_str(), wideText(title).c_str(), style | (owner ? 0 : MB_TASKMODAL));
    switch (answer) {
    case IDRETRY: return BoxAnswer::Retry;
    case IDIGNORE: return BoxAnswer::Ignore;
    default: return buttons == BoxButtons::AbortRetryIgnore ? BoxAnswer::Abort : BoxAnswer::Ok;
    }
}

void WindowsScreen::Beep()
{
    ::MessageBeep(MB_OK);
}

/// The default shape gives back the one that was there before.
void WindowsScreen::MousePointer(Int32 shape)
{
    if (shape == kMousePointerHourglass) {
        const HCURSOR before = ::SetCursor(::LoadCursorW(nullptr, IDC_WAIT));
        if (mousePointer_ != kMousePointerHourglass)
            pointerBefore_ = before;
    } else if (mousePointer_ == kMousePointerHourglass) {
        ::SetCursor(pointerBefore_ ? static_cast<HCURSOR>(pointerBefore_) : ::LoadCursorW(nullptr, IDC_ARROW));
    }
    mousePointer_ = shape;
}

} // namespace kel
