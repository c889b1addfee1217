// SPDX-License-Identifier: MIT
// The drop-down lists of the dialog: their rows, and in the open list of the models the makers above theirs.

#include "options/ListLines.h"
#include "options/win32/OptionsDialogWindow.h"
#include "options/win32/WindowText.h"

#include <algorithm>

namespace kel {

namespace {

/// How many rows a list shows at a time.
constexpr int kRowsInView = 20;

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

/// A window with a procedure of ours before its own, which is the answer.
WNDPROC precede(HWND window, OptionsDialogWindow* dialog, WNDPROC procedure)
{
    ::SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(dialog));
    return reinterpret_cast<WNDPROC>(::SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(procedure)));
}

void drawLine(HDC screen, RECT place, const std::wstring& text)
{
    place.left += 3;
    ::DrawTextW(screen, text.c_str(), static_cast<int>(text.size()), &place,
                DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
}

} // namespace

/// Drawn here, for what stands in the field while no row is selected, and for the headings. A heading is the upper part
/// of the row below it: so keys pass it by, and rows have the same numbers as in the form.
void OptionsDialogWindow::create(PowerCombo& list)
{
    const bool hasHeadings = &list == &form_.cboReaderType;
    const HWND window = create(list, L"COMBOBOX",
                               CBS_DROPDOWNLIST | (hasHeadings ? CBS_OWNERDRAWVARIABLE : CBS_OWNERDRAWFIXED) |
                                   CBS_HASSTRINGS | WS_VSCROLL | WS_TABSTOP);
    list_ = precede(window, this, &listProcedure);
    COMBOBOXINFO parts{};
    parts.cbSize = sizeof parts;
    if (hasHeadings && ::GetComboBoxInfo(window, &parts))
        openList_ = precede(parts.hwndList, this, &openListProcedure);
    shown_.back().refresh = [&list, window] {
        takeLines(window, linesOf(list));
        if (::SendMessageW(window, CB_GETCURSEL, 0, 0) != list.CurrentRow())
            ::SendMessageW(window, CB_SETCURSEL, static_cast<WPARAM>(list.CurrentRow()), 0);
        if (list.CurrentRow() < 0)
            ::SendMessageW(window, CB_SETTOPINDEX, static_cast<WPARAM>(list.TopRow()), 0);
    };
}

int OptionsDialogWindow::rowHeight() const
{
    return fonts_.pixels(fonts_.metrics().line * 1.25);
}

/// A list has the height of its row. What is set beyond that is the height to which it drops down, which the system
/// does not give back; setting it closes an open list.
bool OptionsDialogWindow::placeList(HWND window, const PowerCombo& list, const RECT& place)
{
    RECT now{};
    ::GetWindowRect(window, &now);
    ::MapWindowPoints(nullptr, window_, reinterpret_cast<POINT*>(&now), 2);
    if (!takeRowHeights(window, list) && now.left == place.left && now.top == place.top && now.right == place.right)
        return false;
    ::SendMessageW(window, CB_SETITEMHEIGHT, static_cast<WPARAM>(-1), rowHeight());
    const int opened = rowHeight() * kRowsInView + 2 * ::GetSystemMetrics(SM_CYBORDER);
    ::MoveWindow(window, place.left, place.top, place.right - place.left, place.bottom - place.top + opened, FALSE);
    return true;
}

/// Rows below a heading are twice as high. True if one had another height; a list without rows has one all the same.
bool OptionsDialogWindow::takeRowHeights(HWND window, const PowerCombo& list) const
{
    bool isNew = false;
    for (Int32 row = 0; row < std::max(list.RowCount(), 1); ++row) {
        const LPARAM height = rowHeight() * (headingOf(list, row).empty() ? 1 : 2);
        if (::SendMessageW(window, CB_GETITEMHEIGHT, static_cast<WPARAM>(row), 0) == height)
            continue;
        ::SendMessageW(window, CB_SETITEMHEIGHT, static_cast<WPARAM>(row), height);
        isNew = true;
    }
    return isNew;
}

LRESULT CALLBACK OptionsDialogWindow::openListProcedure(HWND list, UINT message, WPARAM first, LPARAM second)
{
    auto& dialog = *reinterpret_cast<OptionsDialogWindow*>(::GetWindowLongPtrW(list, GWLP_USERDATA));
    bool done = false;
    // Whoever points at a heading does not mean the row below it.
    if (message == WM_MOUSEMOVE || message == WM_LBUTTONDOWN || message == WM_LBUTTONUP)
        dialog.contain([&] { done = dialog.isOnHeading(list, second); });
    return done ? 0 : ::CallWindowProcW(dialog.openList_, list, message, first, second);
}

/// Whether a point of the open list of the models is on a heading.
bool OptionsDialogWindow::isOnHeading(HWND list, LPARAM point) const
{
    const LRESULT found = ::SendMessageW(list, LB_ITEMFROMPOINT, 0, point);
    RECT place{};
    const bool isOutside = HIWORD(found) != 0;
    if (isOutside || ::SendMessageW(list, LB_GETITEMRECT, LOWORD(found), reinterpret_cast<LPARAM>(&place)) == LB_ERR)
        return false;
    return !headingOf(form_.cboReaderType, LOWORD(found)).empty() &&
           static_cast<short>(HIWORD(point)) < place.bottom - rowHeight();
}

void OptionsDialogWindow::drawList(const DRAWITEMSTRUCT& item)
{
    const Shown* found = shown(static_cast<int>(item.CtlID));
    const auto* list = found ? dynamic_cast<const PowerCombo*>(found->control) : nullptr;
    if (!list)
        return;
    const auto row = static_cast<Int32>(item.itemID); // -1 for none
    const bool isSelected = (item.itemState & ODS_SELECTED) != 0;
    const bool isGrey = row < 0 || row >= list->RowCount() || (item.itemState & ODS_DISABLED) != 0;
    const std::wstring text = row < 0 ? wideText(list->Prompt()) : rowText(item.hwndItem, row);
    // Wine clips the field of a mirrored list as if it were not mirrored.
    ::SelectClipRgn(item.hDC, nullptr);
    RECT place = item.rcItem;
    const std::string heading = headingOf(*list, row);
    if (!heading.empty() && (item.itemState & ODS_COMBOBOXEDIT) == 0) {
        place.top = place.bottom - rowHeight();
        drawHeading(item.hDC, {place.left, item.rcItem.top, place.right, place.top}, wideText(heading));
    }
    ::FillRect(item.hDC, &place, ::GetSysColorBrush(isSelected ? COLOR_HIGHLIGHT : COLOR_WINDOW));
    ::SetBkMode(item.hDC, TRANSPARENT);
    const int foreground = isSelected ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT;
    ::SetTextColor(item.hDC, ::GetSysColor(isGrey && !isSelected ? COLOR_GRAYTEXT : foreground));
    drawLine(item.hDC, place, text);
    if ((item.itemState & ODS_FOCUS) != 0 && (item.itemState & ODS_NOFOCUSRECT) == 0)
        ::DrawFocusRect(item.hDC, &place);
}

void OptionsDialogWindow::drawHeading(HDC screen, const RECT& place, const std::wstring& text) const
{
    ::FillRect(screen, &place, ::GetSysColorBrush(COLOR_WINDOW));
    ::SetBkMode(screen, TRANSPARENT);
    ::SetTextColor(screen, ::GetSysColor(COLOR_WINDOWTEXT));
    const HGDIOBJ before = ::SelectObject(screen, fonts_.bold());
    drawLine(screen, place, text);
    ::SelectObject(screen, before);
}

} // namespace kel
