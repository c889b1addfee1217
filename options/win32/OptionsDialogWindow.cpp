#include "options/win32/OptionsDialogWindow.h"

#include "platform/FaultCapture.h"
#include "platform/windows/ComponentInstance.h"
#include "platform/windows/WindowsText.h"

#include <algorithm>
#include <commctrl.h>
#include <shellapi.h>
#include <utility>

namespace kel {

namespace {

/// How many rows a list shows at a time.
constexpr int kRowsInView = 20;

/// A dialog without controls, which come when it begins.
struct alignas(DWORD) EmptyDialog {
    DLGTEMPLATE head{};
    WORD menu = 0;
    WORD kind = 0;
    WORD title = 0;
};

HMENU asMenu(int number)
{
    return reinterpret_cast<HMENU>(static_cast<INT_PTR>(number));
}

/// Sets a window's text if it has another.
void showText(HWND window, const std::string& text)
{
    const std::wstring wanted = wideText(text);
    std::wstring current(static_cast<std::size_t>(::GetWindowTextLengthW(window)) + 1, L'\0');
    current.resize(
        static_cast<std::size_t>(::GetWindowTextW(window, current.data(), static_cast<int>(current.size()))));
    if (current != wanted)
        ::SetWindowTextW(window, wanted.c_str());
}

std::wstring rowText(HWND list, int row)
{
    const LRESULT length = ::SendMessageW(list, CB_GETLBTEXTLEN, static_cast<WPARAM>(row), 0);
    if (length < 0)
        return {};
    std::wstring text(static_cast<std::size_t>(length) + 1, L'\0');
    ::SendMessageW(list, CB_GETLBTEXT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(text.data()));
    text.pop_back();
    return text;
}

/// Gives a list the rows of the model, if it has others.
void takeRows(HWND window, const PowerCombo& list)
{
    bool same = ::SendMessageW(window, CB_GETCOUNT, 0, 0) == list.RowCount();
    for (Int32 row = 0; same && row < list.RowCount(); ++row)
        same = rowText(window, row) == wideText(list.CellText(0, row));
    if (same)
        return;
    ::SendMessageW(window, CB_RESETCONTENT, 0, 0);
    for (Int32 row = 0; row < list.RowCount(); ++row)
        ::SendMessageW(window, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(wideText(list.CellText(0, row)).c_str()));
}

} // namespace

OptionsDialogWindow::OptionsDialogWindow(frmOptions& form, DialogScreen& screen) : form_(form), screen_(screen)
{
    const INITCOMMONCONTROLSEX wanted{sizeof wanted, ICC_STANDARD_CLASSES | ICC_UPDOWN_CLASS};
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
    dialog.head.style = WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME | WS_CLIPCHILDREN;
    dialog.head.dwExtendedStyle = WS_EX_CONTROLPARENT;
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
        ComponentCode::goesOn();
        if (!failure_)
            failure_ = std::current_exception();
        end();
    }
}

void OptionsDialogWindow::begin(HWND window)
{
    window_ = window;
    form_.Window(window);
    form_.Show();
    if (!form_.Visible()) {
        end();
        return;
    }
    createControls();
    refresh();
    RECT owner{};
    RECT own{};
    const HWND parent = ::GetWindow(window_, GW_OWNER);
    if (!parent || !::IsWindowVisible(parent) || !::GetWindowRect(parent, &owner))
        ::SystemParametersInfoW(SPI_GETWORKAREA, 0, &owner, 0);
    ::GetWindowRect(window_, &own);
    const int left = (owner.left + owner.right - (own.right - own.left)) / 2;
    const int top = (owner.top + owner.bottom - (own.bottom - own.top)) / 2;
    ::SetWindowPos(window_, nullptr, std::max(left, 0), std::max(top, 0), 0, 0, SWP_NOZORDER | SWP_NOSIZE);
    ::SendMessageW(window_, DM_REPOSITION, 0, 0);
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
    case WM_DRAWITEM: drawList(*reinterpret_cast<const DRAWITEMSTRUCT*>(second)); return TRUE;
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
    case WM_HELP: openHelp(); return TRUE;
    case WM_DESTROY:
        // Its controls live a little longer than this; their fields do not.
        numbers_.clear();
        window_ = nullptr;
        return FALSE;
    default: return FALSE;
    }
}

// --- The controls

void OptionsDialogWindow::createControls()
{
    for (Control* const control : form_.Controls()) {
        if (auto* label = dynamic_cast<Label*>(control))
            create(*label);
        else if (auto* box = dynamic_cast<CheckBox*>(control))
            create(*box);
        else if (auto* list = dynamic_cast<PowerCombo*>(control))
            create(*list);
        else if (auto* edit = dynamic_cast<PowerEdit*>(control))
            create(*edit);
        else if (auto* frame = dynamic_cast<Frame*>(control))
            create(*frame);
        else if (auto* button = dynamic_cast<PowerButton*>(control))
            create(*button, button == &form_.cmdOK);
        else
            shown_.push_back({control, nullptr, {}}); // a band or a line: the background has them
    }
}

HWND OptionsDialogWindow::create(Control& control, const wchar_t* kind, DWORD style, DWORD extendedStyle)
{
    int number = kFirstControl + static_cast<int>(shown_.size());
    if (&control == &form_.cmdOK)
        number = IDOK;
    else if (&control == &form_.cmdCancel)
        number = IDCANCEL;
    const HWND window = ::CreateWindowExW(extendedStyle, kind, L"", WS_CHILD | style, 0, 0, 0, 0, window_,
                                          asMenu(number), componentInstance(), nullptr);
    const HFONT font = &control == &form_.lblTitle ? fonts_.title() : fonts_.text();
    ::SendMessageW(window, WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
    shown_.push_back({&control, window, {}});
    return window;
}

void OptionsDialogWindow::create(Label& label)
{
    const HWND window = create(label, L"STATIC", SS_LEFT);
    shown_.back().refresh = [&label, window] { showText(window, label.Caption()); };
}

void OptionsDialogWindow::create(CheckBox& box)
{
    const HWND window = create(box, L"BUTTON", BS_CHECKBOX | WS_TABSTOP);
    shown_.back().refresh = [&box, window] {
        showText(window, box.Caption());
        ::SendMessageW(window, BM_SETCHECK, box.Value() == 1 ? BST_CHECKED : BST_UNCHECKED, 0);
    };
}

void OptionsDialogWindow::create(PowerButton& button, bool isDefault)
{
    const HWND window = create(button, L"BUTTON", DWORD{WS_TABSTOP} | (isDefault ? BS_DEFPUSHBUTTON : BS_PUSHBUTTON));
    shown_.back().refresh = [&button, window] { showText(window, button.Caption()); };
}

/// Drawn here, for what stands in the field while no row is selected.
void OptionsDialogWindow::create(PowerCombo& list)
{
    const HWND window =
        create(list, L"COMBOBOX", CBS_DROPDOWNLIST | CBS_OWNERDRAWFIXED | CBS_HASSTRINGS | WS_VSCROLL | WS_TABSTOP);
    shown_.back().refresh = [&list, window] {
        takeRows(window, list);
        if (::SendMessageW(window, CB_GETCURSEL, 0, 0) != list.CurrentRow())
            ::SendMessageW(window, CB_SETCURSEL, static_cast<WPARAM>(list.CurrentRow()), 0);
        if (list.CurrentRow() < 0)
            ::SendMessageW(window, CB_SETTOPINDEX, static_cast<WPARAM>(list.TopRow()), 0);
    };
}

void OptionsDialogWindow::create(PowerEdit& edit)
{
    const HWND field = create(edit, L"EDIT", ES_RIGHT | ES_AUTOHSCROLL | WS_TABSTOP, WS_EX_CLIENTEDGE);
    const HWND spinner =
        ::CreateWindowExW(0, UPDOWN_CLASSW, L"", WS_CHILD, 0, 0, 0, 0, window_, nullptr, componentInstance(), nullptr);
    auto number = std::make_unique<NumberEdit>(
        edit, field, spinner, [this] { refresh(); }, [this](const Action& what) { contain(what); });
    shown_.back().refresh = [number = number.get()] { number->refresh(); };
    numbers_.push_back(std::move(number));
}

void OptionsDialogWindow::create(Frame& frame)
{
    const HWND window = create(frame, L"BUTTON", BS_GROUPBOX);
    shown_.back().refresh = [&frame, window] { showText(window, frame.Caption()); };
}

// --- From the form to the window

void OptionsDialogWindow::refresh()
{
    if (!window_ || shown_.empty())
        return;
    refreshing_ = true;
    showText(window_, form_.Caption());
    for (const Shown& each : shown_) {
        if (!each.window)
            continue;
        each.refresh();
        ::EnableWindow(each.window, each.control->Enabled() ? TRUE : FALSE);
        ::ShowWindow(each.window, each.control->Seen() ? SW_SHOWNA : SW_HIDE);
        if (const NumberEdit* number = numberEdit(each.window)) {
            ::EnableWindow(number->spinner(), each.control->Enabled() ? TRUE : FALSE);
            ::ShowWindow(number->spinner(), each.control->Seen() ? SW_SHOWNA : SW_HIDE);
        }
    }
    arrange();
    refreshing_ = false;
}

void OptionsDialogWindow::arrange()
{
    layout_ = dialogLayout(form_, fonts_.metrics());
    RECT client{};
    ::GetClientRect(window_, &client);
    const int width = fonts_.pixels(layout_.width);
    const int height = fonts_.pixels(layout_.height);
    if (client.right != width || client.bottom != height) {
        RECT outer{0, 0, width, height};
        ::AdjustWindowRectEx(&outer, static_cast<DWORD>(::GetWindowLongW(window_, GWL_STYLE)), FALSE,
                             static_cast<DWORD>(::GetWindowLongW(window_, GWL_EXSTYLE)));
        ::SetWindowPos(window_, nullptr, 0, 0, outer.right - outer.left, outer.bottom - outer.top,
                       SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
        ::InvalidateRect(window_, nullptr, TRUE);
    }
    const int spinnerWidth = ::GetSystemMetrics(SM_CXVSCROLL);
    for (const Shown& each : shown_) {
        const auto place = layout_.places.find(each.control);
        if (!each.window || place == layout_.places.end())
            continue;
        const int left = fonts_.pixels(place->second.left);
        const int top = fonts_.pixels(place->second.top);
        int fieldWidth = fonts_.pixels(place->second.width);
        const int fieldHeight = fonts_.pixels(place->second.height);
        if (const NumberEdit* number = numberEdit(each.window)) {
            fieldWidth -= spinnerWidth;
            ::MoveWindow(number->spinner(), left + fieldWidth, top, spinnerWidth, fieldHeight, TRUE);
        }
        if (dynamic_cast<const PowerCombo*>(each.control)) {
            // The height of the field itself is that of its row; what is set is that of the list that drops down.
            const auto row = static_cast<LPARAM>(fonts_.pixels(fonts_.metrics().line * 1.25));
            ::SendMessageW(each.window, CB_SETITEMHEIGHT, static_cast<WPARAM>(-1), row);
            ::SendMessageW(each.window, CB_SETITEMHEIGHT, 0, row);
            ::MoveWindow(each.window, left, top, fieldWidth, fieldHeight + static_cast<int>(row) * kRowsInView, TRUE);
        } else {
            ::MoveWindow(each.window, left, top, fieldWidth, fieldHeight, TRUE);
        }
    }
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
    const int below = fonts_.pixels(layout_.bottomLine);
    for (RECT line : {RECT{0, band.bottom, all.right, band.bottom + 2}, RECT{0, below, all.right, below + 2}})
        ::DrawEdge(screen, &line, EDGE_ETCHED, BF_TOP);
}

bool OptionsDialogWindow::isOnHeader(HWND window) const
{
    return std::any_of(shown_.begin(), shown_.end(), [&](const Shown& each) {
        return each.window == window && (each.control == &form_.lblTitle || each.control == &form_.lblSubtitle);
    });
}

void OptionsDialogWindow::drawList(const DRAWITEMSTRUCT& item)
{
    const Shown* found = shown(static_cast<int>(item.CtlID));
    const auto* list = found ? dynamic_cast<const PowerCombo*>(found->control) : nullptr;
    if (!list)
        return;
    const bool isRow = item.itemID != static_cast<UINT>(-1);
    const bool isSelected = (item.itemState & ODS_SELECTED) != 0;
    const bool isGrey = !isRow || (item.itemState & ODS_DISABLED) != 0;
    const std::wstring text = isRow ? rowText(item.hwndItem, static_cast<int>(item.itemID)) : wideText(list->Prompt());
    ::FillRect(item.hDC, &item.rcItem, ::GetSysColorBrush(isSelected ? COLOR_HIGHLIGHT : COLOR_WINDOW));
    ::SetBkMode(item.hDC, TRANSPARENT);
    const int foreground = isSelected ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT;
    ::SetTextColor(item.hDC, ::GetSysColor(isGrey && !isSelected ? COLOR_GRAYTEXT : foreground));
    RECT inside = item.rcItem;
    inside.left += 3;
    ::DrawTextW(item.hDC, text.c_str(), static_cast<int>(text.size()), &inside,
                DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX);
    if ((item.itemState & ODS_FOCUS) != 0 && (item.itemState & ODS_NOFOCUSRECT) == 0)
        ::DrawFocusRect(item.hDC, &item.rcItem);
}

// --- From the window to the form

/// Lets the form do what the user wants, and shows what has become of it.
void OptionsDialogWindow::act(const Action& what)
{
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
    Shown* const found = shown(number);
    if (!found || refreshing_)
        return;
    Control& control = *found->control;
    if (auto* button = dynamic_cast<PowerButton*>(&control)) {
        if (notice == BN_CLICKED) {
            // The default button works while a field still has the focus.
            if (NumberEdit* number_ = numberEdit(::GetFocus()))
                number_->leave();
            act([&] { button->Click(); });
        }
    } else if (auto* box = dynamic_cast<CheckBox*>(&control)) {
        if (notice == BN_CLICKED) {
            box->SetFocus();
            act([&] { box->Click(); });
        }
    } else if (auto* list = dynamic_cast<PowerCombo*>(&control)) {
        if (notice == CBN_SETFOCUS)
            list->SetFocus();
        else if (notice == CBN_SELCHANGE)
            act([&] { list->CurrentRow(static_cast<Int32>(::SendMessageW(found->window, CB_GETCURSEL, 0, 0))); });
    } else if (NumberEdit* edit = numberEdit(found->window)) {
        if (notice == EN_SETFOCUS) {
            control.SetFocus();
            edit->enter();
        } else if (notice == EN_CHANGE) {
            edit->changed();
        } else if (notice == EN_KILLFOCUS && ::IsChild(window_, ::GetFocus())) {
            // Another window has it otherwise: the user comes back to the field.
            edit->leave();
        }
    }
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

void OptionsDialogWindow::openHelp()
{
    const std::wstring file = wideText(form_.HelpFile());
    if (file.empty())
        return;
    const bool isOldHelp = file.size() > 4 && ::lstrcmpiW(file.c_str() + file.size() - 4, L".hlp") == 0;
    if (isOldHelp && form_.HelpContextID() != 0)
        ::WinHelpW(window_, file.c_str(), HELP_CONTEXT, static_cast<ULONG_PTR>(form_.HelpContextID()));
    else
        ::ShellExecuteW(window_, L"open", file.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
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
