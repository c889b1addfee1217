// SPDX-License-Identifier: MIT
#include "options/win32/OptionsDialogWindow.h"

#include "options/win32/WindowText.h"
#include "platform/FaultCapture.h"
#include "platform/windows/ComponentInstance.h"
#include "platform/windows/WindowsText.h"

#include <algorithm>
#include <commctrl.h>
#include <utility>

namespace kel {

namespace {

/// To the dialog itself: a number field was left with something else in it. It waits until the focus has arrived where
/// it goes.
constexpr UINT kNoNumber = WM_APP;

/// A dialog without controls, which come when it begins.
struct alignas(DWORD) EmptyDialog {
    DLGTEMPLATE head{};
    WORD menu = 0;
    WORD kind = 0;
    WORD title = 0;
};

/// Whether the host has its windows from right to left. A dialog does not take that from its owner by itself.
bool isMirrored(HWND owner)
{
    DWORD layout = 0;
    const bool all = ::GetProcessDefaultLayout(&layout) && (layout & LAYOUT_RTL) != 0;
    return all || (owner && (::GetWindowLongW(owner, GWL_EXSTYLE) & WS_EX_LAYOUTRTL) != 0);
}

} // namespace

OptionsDialogWindow::OptionsDialogWindow(frmOptions& form, DialogScreen& screen, WindowPlace& place)
    : form_(form), screen_(screen), place_(place)
{
    const INITCOMMONCONTROLSEX wanted{sizeof wanted, ICC_STANDARD_CLASSES | ICC_UPDOWN_CLASS | ICC_BAR_CLASSES};
    ::InitCommonControlsEx(&wanted);
    form_.Measure(&fonts_);
    form_.onHide = [this] { end(); };
    screen_.onBox = [this] { refresh(); };
}

OptionsDialogWindow::~OptionsDialogWindow()
{
    screen_.onBox = nullptr;
    screen_.MousePointer(kMousePointerDefault);
    form_.onHide = nullptr;
    form_.Window(nullptr);
    form_.Measure(nullptr);
}

bool OptionsDialogWindow::run(HWND owner)
{
    EmptyDialog dialog;
    // Without WS_CLIPCHILDREN: the inside of a group box shows the dialog's own background.
    dialog.head.style = WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME;
    dialog.head.dwExtendedStyle =
        WS_EX_CONTROLPARENT | WS_EX_CONTEXTHELP | (isMirrored(owner) ? WS_EX_LAYOUTRTL : DWORD{0});
    const INT_PTR result = [&] {
        // The loop is the host's as much as ours.
        const HostCode host;
        return ::DialogBoxIndirectParamW(componentInstance(), &dialog.head, owner, &procedure,
                                         reinterpret_cast<LPARAM>(this));
    }();
    if (failure_)
        std::rethrow_exception(failure_);
    return result > 0;
}

INT_PTR CALLBACK OptionsDialogWindow::procedure(HWND window, UINT message, WPARAM first, LPARAM second)
{
    if (message == WM_INITDIALOG)
        ::SetWindowLongPtrW(window, DWLP_USER, second);
    auto* self = reinterpret_cast<OptionsDialogWindow*>(::GetWindowLongPtrW(window, DWLP_USER));
    if (!self)
        return FALSE;
    INT_PTR answer = FALSE;
    self->contain([&] {
        if (message == WM_INITDIALOG)
            self->begin(window);
        else
            answer = self->handle(message, first, second);
    });
    return answer;
}

/// No exception passes the frames of the system: the first one waits until the dialog is gone.
void OptionsDialogWindow::contain(const Action& what)
{
    const ComponentCode running;
    try {
        what();
    } catch (...) {
        faultCaught();
        if (!failure_)
            failure_ = std::current_exception();
        end();
    }
}

void OptionsDialogWindow::begin(HWND window)
{
    window_ = window;
    fonts_.resolution(resolutionOf(window));
    form_.Window(window);
    form_.Aids().showPortsAsTheyCome();
    form_.Show();
    if (!form_.Visible()) {
        end();
        return;
    }
    createControls();
    refresh();
    fit();
    goToPlace();
    const Shown* active = form_.ActiveControl() ? shown(*form_.ActiveControl()) : shown(form_.cboReaderType);
    if (active)
        ::SetFocus(active->window);
}

void OptionsDialogWindow::end()
{
    if (window_)
        ::EndDialog(window_, 1);
}

INT_PTR OptionsDialogWindow::handle(UINT message, WPARAM first, LPARAM second)
{
    switch (message) {
    case WM_COMMAND: command(LOWORD(first), HIWORD(first)); return TRUE;
    case WM_NOTIFY:
        if (!spin(*reinterpret_cast<const NMHDR*>(second)))
            return FALSE;
        ::SetWindowLongPtrW(window_, DWLP_MSGRESULT, TRUE);
        return TRUE;
    case WM_DRAWITEM: draw(*reinterpret_cast<const DRAWITEMSTRUCT*>(second)); return TRUE;
    case WM_ERASEBKGND: paintBackground(reinterpret_cast<HDC>(first)); return TRUE;
    case WM_CTLCOLORSTATIC:
        if (!isOnHeader(reinterpret_cast<HWND>(second)))
            return FALSE;
        ::SetBkMode(reinterpret_cast<HDC>(first), TRANSPARENT);
        ::SetTextColor(reinterpret_cast<HDC>(first), ::GetSysColor(COLOR_WINDOWTEXT));
        return reinterpret_cast<INT_PTR>(::GetSysColorBrush(COLOR_WINDOW));
    case WM_SETCURSOR:
        if (screen_.MousePointer() != kMousePointerHourglass)
            return FALSE;
        ::SetCursor(::LoadCursorW(nullptr, IDC_WAIT));
        ::SetWindowLongPtrW(window_, DWLP_MSGRESULT, TRUE);
        return TRUE;
    case WM_SETFONT: takeFont(reinterpret_cast<HFONT>(first)); return TRUE;
    case WM_SYSCOLORCHANGE: passOn(message); [[fallthrough]];
    case WM_THEMECHANGED: paintAnew(); return TRUE;
    case WM_DPICHANGED: goToScreen(LOWORD(first), *reinterpret_cast<const RECT*>(second)); return TRUE;
    case WM_HELP: openHelp(static_cast<HWND>(reinterpret_cast<const HELPINFO*>(second)->hItemHandle)); return TRUE;
    case WM_ACTIVATE:
    case WM_PARENTNOTIFY:
    case WM_LBUTTONDOWN: hideExplanation(); return FALSE;
    case WM_TIMER: turn(); return TRUE;
    case kNoNumber: returnTo(reinterpret_cast<HWND>(second)); return TRUE;
    case WM_DESTROY:
        keepPlace();
        annotations_.takeBack();
        // Its controls live a little longer than this; their fields do not.
        numbers_.clear();
        window_ = nullptr;
        return FALSE;
    default: return FALSE;
    }
}

/// A host's error object gives the dialog its typeface before there are controls; another program may do so later.
void OptionsDialogWindow::takeFont(HFONT font)
{
    fonts_.use(font);
    showFonts();
    fit();
}

void OptionsDialogWindow::showFonts()
{
    for (const Shown& each : shown_) {
        if (each.window)
            ::SendMessageW(each.window, WM_SETFONT, reinterpret_cast<WPARAM>(fontOf(*each.control)), TRUE);
    }
    for (const HWND added : {portAdvice_, lookAgain_, assignPort_, noModel_, notice_, testReader_})
        ::SendMessageW(added, WM_SETFONT, reinterpret_cast<WPARAM>(fonts_.text()), TRUE);
    refresh();
}

// --- From the form to the window

void OptionsDialogWindow::refresh()
{
    if (!window_ || shown_.empty())
        return;
    refreshing_ = true;
    bool isNew = false;
    ::SetWindowTextW(window_, wideText(form_.Caption()).c_str());
    for (const Shown& each : shown_) {
        if (!each.window)
            continue;
        each.refresh();
        const bool seen = each.control->Seen();
        const bool enabled = canBeWorked(*each.control);
        isNew |= takeState(each.window, seen, enabled);
        if (const NumberEdit* number = numberEdit(each.window))
            isNew |= takeState(number->spinner(), seen, enabled);
    }
    isNew |= refreshAids();
    isNew |= arrange();
    // The controls lie over one another while they change places; only all of them together are right.
    if (isNew)
        paintAnew();
    refreshing_ = false;
}

/// The search for the reader opens the ports that are being looked at.
bool OptionsDialogWindow::canBeWorked(const Control& control) const
{
    return control.Enabled() != False && !(&control == &form_.cmdLocate && form_.Aids().usesPorts());
}

/// The user may change to dark colours or to high contrast at any time. The system tells the dialog alone, and some of
/// its controls keep colours.
void OptionsDialogWindow::passOn(UINT message) const
{
    for (HWND each = ::GetWindow(window_, GW_CHILD); each; each = ::GetWindow(each, GW_HWNDNEXT))
        ::SendMessageW(each, message, 0, 0);
    for (const HWND tips : {toolTips_, help_})
        ::SendMessageW(tips, message, 0, 0);
}

void OptionsDialogWindow::paintAnew() const
{
    ::RedrawWindow(window_, nullptr, nullptr, RDW_ERASE | RDW_INVALIDATE | RDW_ALLCHILDREN);
}

void OptionsDialogWindow::paintBackground(HDC screen)
{
    RECT all{};
    ::GetClientRect(window_, &all);
    RECT band = all;
    band.bottom = fonts_.pixels(layout_.headerHeight);
    RECT rest = all;
    rest.top = band.bottom;
    ::FillRect(screen, &band, ::GetSysColorBrush(COLOR_WINDOW));
    ::FillRect(screen, &rest, ::GetSysColorBrush(COLOR_3DFACE));
    const int below = fonts_.pixels(layout_.bottomLine) - 1; // the notice begins right below it
    for (RECT line : {RECT{0, band.bottom, all.right, band.bottom + 2}, RECT{0, below, all.right, below + 2}})
        ::DrawEdge(screen, &line, EDGE_ETCHED, BF_TOP);
}

bool OptionsDialogWindow::isOnHeader(HWND window) const
{
    return std::any_of(shown_.begin(), shown_.end(), [&](const Shown& each) {
        return each.window == window && (each.control == &form_.lblTitle || each.control == &form_.lblSubtitle);
    });
}

// --- From the window to the form

/// Lets the form do what the user wants, and shows what has become of it.
void OptionsDialogWindow::act(const Action& what)
{
    ::SetWindowTextW(notice_, L"");
    what();
    if (!form_.Visible())
        return;
    refresh();
    Control* const active = form_.ActiveControl();
    const Shown* found = active && active->Usable() ? shown(*active) : nullptr;
    if (found && found->window && ::GetFocus() != found->window)
        ::SetFocus(found->window);
}

void OptionsDialogWindow::command(int number, int notice)
{
    hideExplanation();
    if (notice == BN_CLICKED && clickTool(number))
        return;
    Shown* const found = shown(number);
    if (!found || refreshing_)
        return;
    Control& control = *found->control;
    if (auto* button = dynamic_cast<PowerButton*>(&control)) {
        if (notice == BN_CLICKED)
            click(*button);
    } else if (auto* box = dynamic_cast<CheckBox*>(&control)) {
        if (notice == BN_CLICKED) {
            box->SetFocus();
            act([&] { box->Click(); });
        }
    } else if (auto* list = dynamic_cast<PowerCombo*>(&control)) {
        if (notice == CBN_SETFOCUS)
            list->SetFocus();
        else if (notice == CBN_SELENDCANCEL)
            // Also when the list is left for another control: nothing was chosen.
            ::SendMessageW(found->window, CB_SETCURSEL, static_cast<WPARAM>(list->CurrentRow()), 0);
        else if (notice == CBN_CLOSEUP || notice == CBN_SELCHANGE)
            takeSelection(found->window, *list);
    } else if (NumberEdit* edit = numberEdit(found->window)) {
        if (notice == EN_SETFOCUS) {
            control.SetFocus();
            edit->enter();
        } else if (notice == EN_CHANGE) {
            edit->changed();
        } else if (notice == EN_KILLFOCUS && ::IsChild(window_, ::GetFocus())) {
            // Another window has it otherwise: the user comes back to the field.
            if (edit->canBeLeft())
                static_cast<void>(edit->leave());
            else
                ::PostMessageW(window_, kNoNumber, 0, reinterpret_cast<LPARAM>(edit->field()));
        }
    }
}

/// Does what a button is for that is none of the form's; False for the form's own.
bool OptionsDialogWindow::clickTool(int number)
{
    // Enter is for the button that has the focus; the system gives it to the default button.
    const Reset* const reset = resetOf(number == IDOK ? ::GetFocus() : ::GetDlgItem(window_, number));
    if (reset)
        act([&] { form_.Aids().reset(*reset->control); });
    else if (number == kLookAgain)
        actOnPorts([&] { form_.Aids().lookAgain(); });
    else if (number == kAssignPort)
        assignPort();
    else if (number == kTestReader)
        testReader();
    else
        return false;
    return true;
}

/// The buttons for the ports cannot be worked while ports are being looked at: the user goes on in the list.
void OptionsDialogWindow::actOnPorts(const Action& what)
{
    act([&] {
        form_.cboPort.SetFocus();
        what();
    });
}

/// The field that was left has no number in it: the user hears of that and is there again. Nobody who goes to Cancel
/// wants it.
void OptionsDialogWindow::returnTo(HWND field)
{
    NumberEdit* const edit = numberEdit(field);
    const Shown* const cancel = shown(form_.cmdCancel);
    if (edit && !isLeaving_ && ::GetFocus() != field && !(cancel && ::GetFocus() == cancel->window))
        static_cast<void>(leave(*edit));
}

/// While a list is open, the keys only move about in it; what was chosen counts when it closes.
void OptionsDialogWindow::takeSelection(HWND window, PowerCombo& list)
{
    if (::SendMessageW(window, CB_GETDROPPEDSTATE, 0, 0) != 0)
        return;
    const auto row = static_cast<Int32>(::SendMessageW(window, CB_GETCURSEL, 0, 0));
    if (row >= list.RowCount())
        refresh(); // a line that says why a port cannot be chosen
    else if (row != list.CurrentRow())
        act([&] { list.CurrentRow(row); });
}

/// The spin buttons step the model; they have no number of their own.
bool OptionsDialogWindow::spin(const NMHDR& notice)
{
    if (notice.code != static_cast<UINT>(UDN_DELTAPOS))
        return false;
    const int steps = -reinterpret_cast<const NMUPDOWN&>(notice).iDelta;
    for (const auto& number : numbers_) {
        if (number->spinner() == notice.hwndFrom) {
            ::SetFocus(number->field());
            number->step(steps);
            return true;
        }
    }
    return false;
}

OptionsDialogWindow::Shown* OptionsDialogWindow::shown(int number)
{
    if (number == IDOK)
        return shown(form_.cmdOK);
    if (number == IDCANCEL)
        return shown(form_.cmdCancel);
    const auto index = static_cast<std::size_t>(number - kFirstControl);
    return number >= kFirstControl && index < shown_.size() ? &shown_[index] : nullptr;
}

OptionsDialogWindow::Shown* OptionsDialogWindow::shown(const Control& control)
{
    const auto found =
        std::find_if(shown_.begin(), shown_.end(), [&](const Shown& each) { return each.control == &control; });
    return found == shown_.end() ? nullptr : &*found;
}

NumberEdit* OptionsDialogWindow::numberEdit(HWND field)
{
    const auto found =
        std::find_if(numbers_.begin(), numbers_.end(), [&](const auto& number) { return number->field() == field; });
    return found == numbers_.end() ? nullptr : found->get();
}

} // namespace kel
