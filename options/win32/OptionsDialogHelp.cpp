// SPDX-License-Identifier: MIT
// What each setting is: in a tool tip, and in a box of the same kind for F1 and the question mark of the title.

#include "options/win32/OptionsDialogWindow.h"
#include "platform/windows/ComponentInstance.h"
#include "platform/windows/WindowsText.h"

#include <commctrl.h>
#include <shellapi.h>

namespace kel {

namespace {

/// How wide a tool tip is at most, in twips, and how long it stays, in milliseconds.
constexpr double kToolTip = 5400;
constexpr LPARAM kToolTipTime = 30000;

/// For the system's older controls, too.
TTTOOLINFOW toolOf(HWND dialog)
{
    TTTOOLINFOW tool{};
    tool.cbSize = TTTOOLINFOW_V1_SIZE;
    tool.hwnd = dialog;
    return tool;
}

HWND createToolTips(HWND dialog, int width)
{
    const HWND window =
        ::CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_NOPREFIX | TTS_ALWAYSTIP, 0, 0, 0, 0,
                          dialog, nullptr, componentInstance(), nullptr);
    ::SendMessageW(window, TTM_SETMAXTIPWIDTH, 0, width);
    return window;
}

} // namespace

void OptionsDialogWindow::createExplanations()
{
    toolTips_ = createToolTips(window_, fonts_.pixels(kToolTip));
    ::SendMessageW(toolTips_, TTM_SETDELAYTIME, TTDT_AUTOPOP, kToolTipTime);
    help_ = createToolTips(window_, fonts_.pixels(kToolTip));
    std::wstring nothing;
    TTTOOLINFOW tool = toolOf(window_);
    tool.uFlags = TTF_TRACK | TTF_ABSOLUTE;
    tool.lpszText = nothing.data();
    ::SendMessageW(help_, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
}

void OptionsDialogWindow::refreshExplanations()
{
    for (const Shown& each : shown_) {
        if (each.window)
            explain(each.window, form_.Aids().explanation(*each.control));
    }
}

/// Gives a control its tool tip.
void OptionsDialogWindow::explain(HWND window, const std::string& text)
{
    const auto known = explanations_.find(window);
    std::wstring wanted = wideText(text);
    if (wanted.empty() || (known != explanations_.end() && known->second == wanted))
        return;
    TTTOOLINFOW tool = toolOf(window_);
    tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
    tool.uId = reinterpret_cast<UINT_PTR>(window);
    tool.lpszText = wanted.data();
    ::SendMessageW(toolTips_, known == explanations_.end() ? TTM_ADDTOOLW : TTM_UPDATETIPTEXTW, 0,
                   reinterpret_cast<LPARAM>(&tool));
    explanations_.insert_or_assign(window, std::move(wanted));
}

/// The host's help or, without one, an explanation of a control.
void OptionsDialogWindow::openHelp(HWND window)
{
    const std::wstring file = wideText(form_.HelpFile());
    if (file.empty()) {
        showExplanation(window);
        return;
    }
    const bool isOldHelp = file.size() > 4 && ::lstrcmpiW(file.c_str() + file.size() - 4, L".hlp") == 0;
    if (isOldHelp && form_.HelpContextID() != 0)
        ::WinHelpW(window_, file.c_str(), HELP_CONTEXT, static_cast<ULONG_PTR>(form_.HelpContextID()));
    else
        ::ShellExecuteW(window_, L"open", file.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
}

void OptionsDialogWindow::showExplanation(HWND window)
{
    hideExplanation();
    const auto found = explanations_.find(window);
    if (found == explanations_.end())
        return;
    RECT place{};
    ::GetWindowRect(window, &place);
    TTTOOLINFOW tool = toolOf(window_);
    tool.lpszText = found->second.data();
    ::SendMessageW(help_, TTM_UPDATETIPTEXTW, 0, reinterpret_cast<LPARAM>(&tool));
    ::SendMessageW(help_, TTM_TRACKPOSITION, 0, MAKELPARAM(place.left, place.bottom));
    ::SendMessageW(help_, TTM_TRACKACTIVATE, TRUE, reinterpret_cast<LPARAM>(&tool));
}

/// Whatever the user does next.
void OptionsDialogWindow::hideExplanation()
{
    TTTOOLINFOW tool = toolOf(window_);
    ::SendMessageW(help_, TTM_TRACKACTIVATE, FALSE, reinterpret_cast<LPARAM>(&tool));
}

} // namespace kel
