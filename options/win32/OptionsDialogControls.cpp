// SPDX-License-Identifier: MIT
// The controls of the dialog: how each is made, drawn and brought up to date.

#include "options/win32/OptionsDialogWindow.h"
#include "options/win32/WindowText.h"
#include "platform/windows/ComponentInstance.h"
#include "platform/windows/WindowsText.h"

#include <algorithm>
#include <commctrl.h>
#include <utility>

namespace kel {

namespace {

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

/// Gives a list the lines of the model. Those that are there already stay: it may be open.
void takeLines(HWND window, const std::vector<std::wstring>& lines)
{
    const auto count = [window] { return static_cast<std::size_t>(::SendMessageW(window, CB_GETCOUNT, 0, 0)); };
    const auto stands = [&](std::size_t at) { return rowText(window, static_cast<int>(at)); };
    for (std::size_t at = 0; at < lines.size(); ++at) {
        while (at < count() &&
               std::find(lines.begin() + static_cast<std::ptrdiff_t>(at), lines.end(), stands(at)) == lines.end())
            ::SendMessageW(window, CB_DELETESTRING, at, 0);
        if (at >= count() || stands(at) != lines[at])
            ::SendMessageW(window, CB_INSERTSTRING, at, reinterpret_cast<LPARAM>(lines[at].c_str()));
    }
    while (count() > lines.size())
        ::SendMessageW(window, CB_DELETESTRING, count() - 1, 0);
}

} // namespace

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
    createAids();
    createResets();
    createExplanations();
}

HFONT OptionsDialogWindow::fontOf(const Control& control) const
{
    return &control == &form_.lblTitle ? fonts_.title() : fonts_.text();
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
    ::SendMessageW(window, WM_SETFONT, reinterpret_cast<WPARAM>(fontOf(control)), TRUE);
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
    ::SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    list_ = reinterpret_cast<WNDPROC>(
        ::SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&listProcedure)));
    shown_.back().refresh = [&list, window] {
        takeLines(window, linesOf(list));
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

void OptionsDialogWindow::draw(const DRAWITEMSTRUCT& item)
{
    if (item.CtlType == ODT_BUTTON)
        drawReset(item);
    else
        drawList(item);
}

void OptionsDialogWindow::drawList(const DRAWITEMSTRUCT& item)
{
    const Shown* found = shown(static_cast<int>(item.CtlID));
    const auto* list = found ? dynamic_cast<const PowerCombo*>(found->control) : nullptr;
    if (!list)
        return;
    const bool isRow = item.itemID != static_cast<UINT>(-1);
    const bool isSelected = (item.itemState & ODS_SELECTED) != 0;
    const bool isGrey =
        !isRow || static_cast<Int32>(item.itemID) >= list->RowCount() || (item.itemState & ODS_DISABLED) != 0;
    const std::wstring text = isRow ? rowText(item.hwndItem, static_cast<int>(item.itemID)) : wideText(list->Prompt());
    ::FillRect(item.hDC, &item.rcItem, ::GetSysColorBrush(isSelected ? COLOR_HIGHLIGHT : COLOR_WINDOW));
    // Each group but the first begins with a line, in the open list.
    const auto row = static_cast<Int32>(item.itemID);
    if (isRow && row > 0 && (item.itemState & ODS_COMBOBOXEDIT) == 0 && list->Group(row) != list->Group(row - 1)) {
        RECT line = item.rcItem;
        line.bottom = line.top + 1;
        ::FillRect(item.hDC, &line, ::GetSysColorBrush(COLOR_3DSHADOW));
    }
    ::SetBkMode(item.hDC, TRANSPARENT);
    const int foreground = isSelected ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT;
    ::SetTextColor(item.hDC, ::GetSysColor(isGrey && !isSelected ? COLOR_GRAYTEXT : foreground));
    RECT inside = item.rcItem;
    inside.left += 3;
    ::DrawTextW(item.hDC, text.c_str(), static_cast<int>(text.size()), &inside,
                DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
    if ((item.itemState & ODS_FOCUS) != 0 && (item.itemState & ODS_NOFOCUSRECT) == 0)
        ::DrawFocusRect(item.hDC, &item.rcItem);
}

} // namespace kel
