// SPDX-License-Identifier: MIT
#pragma once

#include "options/ListLines.h"
#include "platform/windows/WindowsText.h"

#include <string>
#include <vector>
#include <windows.h>

namespace kel {

/// The number of a child window, as the system takes it.
inline HMENU asMenu(int number)
{
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the system takes a number in the place of a menu
    return reinterpret_cast<HMENU>(static_cast<INT_PTR>(number));
}

/// Sets a window's text if it has another. True if it had.
inline bool showText(HWND window, const std::string& text)
{
    const std::wstring wanted = wideText(text);
    std::wstring current(static_cast<std::size_t>(::GetWindowTextLengthW(window)) + 1, L'\0');
    current.resize(
        static_cast<std::size_t>(::GetWindowTextW(window, current.data(), static_cast<int>(current.size()))));
    if (current == wanted)
        return false;
    ::SetWindowTextW(window, wanted.c_str());
    return true;
}

/// Shows or hides a window, and enables or disables it. True if that is new.
inline bool takeState(HWND window, bool seen, bool enabled)
{
    const bool wasSeen = (::GetWindowLongW(window, GWL_STYLE) & WS_VISIBLE) != 0;
    if (seen == wasSeen && enabled == (::IsWindowEnabled(window) != FALSE))
        return false;
    ::EnableWindow(window, enabled ? TRUE : FALSE);
    ::ShowWindow(window, seen ? SW_SHOWNA : SW_HIDE);
    return true;
}

/// What a list shows: its rows, and below them what cannot be chosen.
inline std::vector<std::wstring> linesOf(const PowerCombo& list)
{
    std::vector<std::wstring> lines;
    lines.reserve(static_cast<std::size_t>(list.RowCount()) + list.Unavailable().size());
    for (Int32 row = 0; row < list.RowCount(); ++row)
        lines.push_back(wideText(lineOf(list, row)));
    for (const PowerCombo::Line& line : list.Unavailable())
        lines.push_back(wideText(line.text));
    return lines;
}

} // namespace kel
