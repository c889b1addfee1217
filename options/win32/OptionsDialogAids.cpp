// SPDX-License-Identifier: MIT
// What the dialog has around the controls of the form: what to do, ports that come one by one, a number for a device.

#include "options/win32/OptionsDialogWindow.h"
#include "options/win32/WindowText.h"
#include "platform/windows/ComponentInstance.h"

#include <algorithm>

namespace kel {

namespace {

/// The timer of what comes beside the dialog, and how often that is taken, in milliseconds.
constexpr UINT_PTR kTurnTimer = 1;
constexpr UINT kTurn = 40;

/// A menu, for as long as this lives.
class Menu {
public:
    Menu() : handle_(::CreatePopupMenu()) {}
    ~Menu() { ::DestroyMenu(handle_); }
    Menu(const Menu&) = delete;
    Menu& operator=(const Menu&) = delete;
    [[nodiscard]] HMENU handle() const noexcept { return handle_; }

private:
    HMENU handle_;
};

/// A text of others' in a menu: an ampersand is one.
std::wstring literal(const std::string& text)
{
    std::wstring result;
    for (const wchar_t letter : wideText(text))
        result.append(letter == L'&' ? 2 : 1, letter);
    return result;
}

} // namespace

HWND OptionsDialogWindow::createAid(const wchar_t* kind, DWORD style, int number)
{
    const HWND window = ::CreateWindowExW(0, kind, L"", WS_CHILD | style, 0, 0, 0, 0, window_, asMenu(number),
                                          componentInstance(), nullptr);
    ::SendMessageW(window, WM_SETFONT, reinterpret_cast<WPARAM>(fonts_.text()), TRUE);
    return window;
}

/// The buttons for the ports come after the settings of the line, with the Tab key too.
void OptionsDialogWindow::createAids()
{
    portAdvice_ = createAid(L"STATIC", SS_LEFT | SS_NOPREFIX, kPortAdvice);
    noModel_ = createAid(L"STATIC", SS_LEFT | SS_NOPREFIX, kNoModel);
    notice_ = createAid(L"STATIC", WS_VISIBLE | SS_LEFT | SS_NOPREFIX, kNotice);
    lookAgain_ = createAid(L"BUTTON", DWORD{WS_TABSTOP} | BS_PUSHBUTTON, kLookAgain);
    assignPort_ = createAid(L"BUTTON", DWORD{WS_TABSTOP} | BS_PUSHBUTTON, kAssignPort);
    const Shown* const last = shown(form_.cboFlowControl);
    tabAfter(last ? last->window : nullptr, assignPort_);
    tabAfter(last ? last->window : nullptr, lookAgain_);
    createTest();
}

void OptionsDialogWindow::tabAfter(HWND before, HWND window)
{
    ::SetWindowPos(window, before, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
}

bool OptionsDialogWindow::refreshAids()
{
    const OptionsAids& aids = form_.Aids();
    const bool hasTools = form_.frmComPort.Seen() && aids.canLookAgain();
    bool isNew = showText(portAdvice_, aids.portAdvice());
    isNew |= showText(lookAgain_, aids.captions().lookAgain);
    isNew |= showText(assignPort_, aids.captions().assignPort);
    isNew |= showText(noModel_, aids.captions().noModel);
    isNew |= takeState(portAdvice_, form_.frmComPort.Seen() && !aids.portAdvice().empty(), true);
    isNew |= takeState(lookAgain_, hasTools, !aids.usesPorts());
    isNew |= takeState(assignPort_, hasTools, !aids.usesPorts() && !aids.devicesWithoutPort().empty());
    isNew |= takeState(noModel_, !form_.frmReader.Seen(), true);
    isNew |= refreshTest();
    if (aids.usesPorts())
        ::SetTimer(window_, kTurnTimer, kTurn, nullptr);
    widenOpenPorts();
    isNew |= refreshResets();
    refreshExplanations();
    refreshAnnotations();
    return isNew;
}

/// Takes what has come of the ports and of a test, and comes back for more.
void OptionsDialogWindow::turn()
{
    const bool isNew = form_.Aids().turn();
    if (!form_.Aids().usesPorts())
        ::KillTimer(window_, kTurnTimer);
    if (isNew)
        refresh();
}

/// The open list has room for the names of the devices, which the field has not.
void OptionsDialogWindow::widenOpenPorts()
{
    const Shown* const ports = shown(form_.cboPort);
    double widest = 0;
    for (const std::wstring& line : linesOf(form_.cboPort))
        widest = std::max(widest, form_.TextWidth(utf8Text(line)));
    const int wanted = fonts_.pixels(widest + fonts_.metrics().arrow + fonts_.metrics().line);
    if (ports && ::SendMessageW(ports->window, CB_GETDROPPEDWIDTH, 0, 0) != wanted)
        ::SendMessageW(ports->window, CB_SETDROPPEDWIDTH, static_cast<WPARAM>(wanted), 0);
}

/// Asks in a menu which device gets which number, and gives it that.
void OptionsDialogWindow::assignPort()
{
    const std::vector<OptionsAids::Choice> devices = form_.Aids().devicesWithoutPort();
    const std::vector<OptionsAids::Choice> numbers = form_.Aids().portNumbers();
    const Menu menu;
    for (std::size_t device = 0; device < devices.size(); ++device) {
        const HMENU ports = ::CreatePopupMenu(); // goes with the menu
        for (std::size_t number = 0; number < numbers.size(); ++number)
            ::AppendMenuW(ports, MF_STRING, 1 + device * numbers.size() + number,
                          literal(numbers[number].text).c_str());
        ::AppendMenuW(menu.handle(), MF_POPUP, reinterpret_cast<UINT_PTR>(ports),
                      literal(devices[device].text).c_str());
    }
    RECT button{};
    ::GetWindowRect(assignPort_, &button);
    const bool isMirrored = (::GetWindowLongW(window_, GWL_EXSTYLE) & WS_EX_LAYOUTRTL) != 0;
    const auto chosen = static_cast<std::size_t>(
        ::TrackPopupMenu(menu.handle(), TPM_RETURNCMD | TPM_NONOTIFY | (isMirrored ? TPM_LAYOUTRTL : 0U),
                         isMirrored ? button.right : button.left, button.bottom, 0, window_, nullptr));
    if (chosen == 0)
        return;
    const std::size_t at = chosen - 1;
    actOnPorts(
        [&] { form_.Aids().assignPort(numbers[at % numbers.size()].value, devices[at / numbers.size()].value); });
}

} // namespace kel
