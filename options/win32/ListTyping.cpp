// SPDX-License-Identifier: MIT
// A row of a list is found by typing any part of its text, whether the list is open or closed.

#include "options/win32/OptionsDialogWindow.h"
#include "options/win32/WindowText.h"

#include <algorithm>

namespace kel {

namespace {

/// Letters that come later than this begin a new text, in milliseconds.
constexpr DWORD kPause = 1000;

std::wstring lowerCase(std::wstring text)
{
    ::CharLowerBuffW(text.data(), static_cast<DWORD>(text.size()));
    return text;
}

/// The next of the first rows that begins with a text, else the next one with it anywhere; -1 for none.
int rowOf(const std::vector<std::wstring>& rows, const std::wstring& text, std::size_t from)
{
    const auto isAt = [&](std::size_t row) { return lowerCase(rows[row]).find(text); };
    for (const bool atBegin : {true, false}) {
        for (std::size_t step = 0; step < rows.size(); ++step) {
            const std::size_t row = (from + step) % rows.size();
            const std::size_t place = isAt(row);
            if (atBegin ? place == 0 : place != std::wstring::npos)
                return static_cast<int>(row);
        }
    }
    return -1;
}

} // namespace

LRESULT CALLBACK OptionsDialogWindow::listProcedure(HWND list, UINT message, WPARAM first, LPARAM second)
{
    auto& dialog = *reinterpret_cast<OptionsDialogWindow*>(::GetWindowLongPtrW(list, GWLP_USERDATA));
    bool done = false;
    if (message == WM_CHAR)
        dialog.contain([&] { done = dialog.type(list, static_cast<wchar_t>(first)); });
    return done ? 0 : ::CallWindowProcW(dialog.list_, list, message, first, second);
}

/// Goes to the row of what has been typed. False if the list is to have the key: a blank is a letter only within a
/// text.
bool OptionsDialogWindow::type(HWND window, wchar_t letter)
{
    const Shown* const found = shown(::GetDlgCtrlID(window));
    auto* const list = found ? dynamic_cast<PowerCombo*>(found->control) : nullptr;
    const DWORD now = ::GetTickCount();
    if (now - typedAt_ > kPause)
        typed_.clear();
    if (!list || letter < L' ' || (letter == L' ' && typed_.empty()))
        return false;
    typed_ += lowerCase(std::wstring(1, letter));
    typedAt_ = now;
    std::vector<std::wstring> rows = linesOf(*list);
    rows.resize(static_cast<std::size_t>(list->RowCount())); // without those that cannot be chosen
    const LRESULT current = ::SendMessageW(window, CB_GETCURSEL, 0, 0);
    // One letter goes on to the next row; more of them stay while the row fits.
    const LRESULT from = std::max<LRESULT>(typed_.size() == 1 ? current + 1 : current, 0);
    const int row = rowOf(rows, typed_, static_cast<std::size_t>(from));
    if (row >= 0) {
        ::SendMessageW(window, CB_SETCURSEL, static_cast<WPARAM>(row), 0);
        takeSelection(window, *list);
    }
    return true;
}

} // namespace kel
