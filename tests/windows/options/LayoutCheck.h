// SPDX-License-Identifier: MIT
#pragma once

#include "tests/windows/OtherProgram.h"

#include <windows.h>

#include <string>
#include <vector>

namespace kel {

/// What a text needs in the typeface of its window, without its access key's mark.
inline int neededWidth(HWND window, std::wstring text)
{
    if (const std::size_t mark = text.find(L'&'); mark != std::wstring::npos)
        text.erase(mark, 1);
    const HDC screen = ::GetDC(window);
    const HGDIOBJ before = ::SelectObject(screen, reinterpret_cast<HGDIOBJ>(::SendMessageW(window, WM_GETFONT, 0, 0)));
    SIZE size{};
    ::GetTextExtentPoint32W(screen, text.data(), static_cast<int>(text.size()), &size);
    ::SelectObject(screen, before);
    ::ReleaseDC(window, screen);
    return size.cx;
}

/// What is wrong with where the controls of a dialog stand, a line each; and how many have texts.
struct LayoutComplaints {
    std::string complaints;
    int texts = 0;
};

inline LayoutComplaints complaintsAbout(const OtherProgram& user)
{
    LayoutComplaints result;
    RECT inside{};
    ::GetClientRect(user.dialog, &inside);
    std::vector<RECT> places;
    for (HWND each = ::GetWindow(user.dialog, GW_CHILD); each; each = ::GetWindow(each, GW_HWNDNEXT)) {
        if (!::IsWindowVisible(each))
            continue;
        wchar_t kind[32] = {};
        ::GetClassNameW(each, kind, 32);
        const bool isText = ::lstrcmpiW(kind, L"static") == 0;
        const bool isButton = ::lstrcmpiW(kind, L"button") == 0;
        const auto style = ::GetWindowLongW(each, GWL_STYLE) & BS_TYPEMASK;
        const bool isFrame = isButton && style == BS_GROUPBOX;
        RECT place{};
        ::GetWindowRect(each, &place);
        ::MapWindowPoints(nullptr, user.dialog, reinterpret_cast<POINT*>(&place), 2);
        const std::wstring text = OtherProgram::textOf(each);
        const std::string name(text.begin(), text.end());
        const int spare = isButton && style == BS_CHECKBOX ? ::GetSystemMetrics(SM_CXMENUCHECK) + 4 : 0;
        // A button that is drawn has its text for those who have the screen read to them.
        if (isText || (isButton && style != BS_OWNERDRAW)) {
            ++result.texts;
            if (neededWidth(each, text) + spare > place.right - place.left)
                result.complaints += "cut off: " + name + "\n";
        }
        if (::lstrcmpiW(kind, L"combobox") == 0) {
            const LRESULT rows = ::SendMessageW(each, CB_GETCOUNT, 0, 0);
            for (LRESULT row = 0; row < rows; ++row) {
                wchar_t cell[128] = {};
                ::SendMessageW(each, CB_GETLBTEXT, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(cell));
                if (neededWidth(each, cell) + ::GetSystemMetrics(SM_CXVSCROLL) > place.right - place.left)
                    result.complaints += "cut off in a list: " + std::string(cell, cell + ::lstrlenW(cell)) + "\n";
            }
        }
        if (place.left < 0 || place.top < 0 || place.right > inside.right || place.bottom > inside.bottom)
            result.complaints += "outside: " + name + "\n";
        if (isFrame)
            continue;
        for (const RECT& other : places) {
            RECT common{};
            if (::IntersectRect(&common, &place, &other))
                result.complaints += "overlaps: " + name + "\n";
        }
        places.push_back(place);
    }
    return result;
}

} // namespace kel
