// SPDX-License-Identifier: MIT
// Where the dialog stands on the screen, and its controls in it.

#include "options/win32/OptionsDialogWindow.h"

#include <algorithm>
#include <sstream>

namespace kel {

namespace {

/// The smallest letters against the usual ones, and the least that they change at a time: not all of the window is
/// letters.
constexpr double kSmallestLetters = 0.6;
constexpr double kLargestStep = 0.97;

/// Puts a control in its place, without painting. True if it stood elsewhere.
bool takePlace(HWND window, const RECT& place)
{
    RECT now{};
    ::GetWindowRect(window, &now);
    ::MapWindowPoints(nullptr, ::GetParent(window), reinterpret_cast<POINT*>(&now), 2);
    if (::EqualRect(&now, &place))
        return false;
    ::MoveWindow(window, place.left, place.top, place.right - place.left, place.bottom - place.top, FALSE);
    return true;
}

/// The part of the screen of a window that is for windows.
RECT roomFor(HWND window)
{
    MONITORINFO monitor{};
    monitor.cbSize = sizeof monitor;
    ::GetMonitorInfoW(::MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST), &monitor);
    return monitor.rcWork;
}

/// Moves a window, and back into view where it would be outside.
void moveTo(HWND window, POINT place)
{
    ::SetWindowPos(window, nullptr, place.x, place.y, 0, 0, SWP_NOZORDER | SWP_NOSIZE | SWP_NOACTIVATE);
    RECT own{};
    ::GetWindowRect(window, &own);
    const RECT room = roomFor(window);
    const int left = std::max(std::min(own.left, room.right - (own.right - own.left)), room.left);
    const int top = std::max(std::min(own.top, room.bottom - (own.bottom - own.top)), room.top);
    if (left != own.left || top != own.top)
        ::SetWindowPos(window, nullptr, left, top, 0, 0, SWP_NOZORDER | SWP_NOSIZE | SWP_NOACTIVATE);
}

} // namespace

/// A window that is larger than the screen gets smaller letters, as small as can still be read.
void OptionsDialogWindow::fit()
{
    if (shown_.empty())
        return;
    if (fonts_.scale() != 1) {
        fonts_.scale(1);
        showFonts();
    }
    const RECT room = roomFor(window_);
    for (;;) {
        RECT own{};
        ::GetWindowRect(window_, &own);
        const double share = std::min(static_cast<double>(room.right - room.left) / (own.right - own.left),
                                      static_cast<double>(room.bottom - room.top) / (own.bottom - own.top));
        if (share >= 1 || fonts_.scale() <= kSmallestLetters)
            break;
        fonts_.scale(std::max(kSmallestLetters, fonts_.scale() * std::min(share, kLargestStep)));
        showFonts();
    }
    RECT own{};
    ::GetWindowRect(window_, &own);
    moveTo(window_, {own.left, own.top});
}

/// The dots to the inch where a window stands. Only later systems have one for each screen.
int OptionsDialogWindow::resolutionOf(HWND window) const
{
    using GetDpiForWindow = UINT(WINAPI*)(HWND);
    const HMODULE user = ::GetModuleHandleW(L"user32.dll");
    const auto dotsOf =
        reinterpret_cast<GetDpiForWindow>(reinterpret_cast<void*>(::GetProcAddress(user, "GetDpiForWindow")));
    const UINT dots = dotsOf ? dotsOf(window) : 0;
    return dots != 0 ? static_cast<int>(dots) : fonts_.resolution();
}

/// The user has moved the dialog to a screen of another resolution.
void OptionsDialogWindow::goToScreen(int dots, const RECT& wanted)
{
    fonts_.resolution(dots);
    moveTo(window_, {wanted.left, wanted.top});
    showFonts();
    fit();
}

/// Where the dialog was when it was last closed, if there is a screen; else in the middle of its owner, or of the
/// screen.
void OptionsDialogWindow::goToPlace()
{
    POINT place{};
    char comma = 0;
    std::istringstream numbers(place_.recall());
    const bool isKept = static_cast<bool>(numbers >> place.x >> comma >> place.y) &&
                        ::MonitorFromPoint(place, MONITOR_DEFAULTTONULL) != nullptr;
    if (!isKept) {
        RECT owner{};
        RECT own{};
        const HWND parent = ::GetWindow(window_, GW_OWNER);
        if (!parent || !::IsWindowVisible(parent) || !::GetWindowRect(parent, &owner))
            ::SystemParametersInfoW(SPI_GETWORKAREA, 0, &owner, 0);
        ::GetWindowRect(window_, &own);
        place = {(owner.left + owner.right - (own.right - own.left)) / 2,
                 (owner.top + owner.bottom - (own.bottom - own.top)) / 2};
    }
    moveTo(window_, place);
}

void OptionsDialogWindow::keepPlace()
{
    RECT own{};
    if (!shown_.empty() && ::GetWindowRect(window_, &own))
        place_.keep(std::to_string(own.left) + "," + std::to_string(own.top));
}

/// Brings the window and its controls into place. True if something has moved.
bool OptionsDialogWindow::arrange()
{
    bool moved = false;
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
        moved = true;
    }
    const int spinnerWidth = fonts_.systemSize(SM_CXVSCROLL);
    for (const Shown& each : shown_) {
        const auto place = layout_.places.find(each.control);
        if (!each.window || place == layout_.places.end())
            continue;
        const int left = fonts_.pixels(place->second.left);
        const int top = fonts_.pixels(place->second.top);
        // Neighbours that touch in twips do not lie over one another in pixels.
        int fieldWidth = fonts_.pixels(place->second.left + place->second.width) - left;
        const int fieldHeight = fonts_.pixels(place->second.top + place->second.height) - top;
        if (const NumberEdit* number = numberEdit(each.window)) {
            fieldWidth -= spinnerWidth;
            moved |= takePlace(number->spinner(),
                               {left + fieldWidth, top, left + fieldWidth + spinnerWidth, top + fieldHeight});
        }
        if (const auto* list = dynamic_cast<const PowerCombo*>(each.control))
            moved |= placeList(each.window, *list, {left, top, left + fieldWidth, top + fieldHeight});
        else
            moved |= takePlace(each.window, {left, top, left + fieldWidth, top + fieldHeight});
    }
    const auto put = [&](HWND window, const Place& place) {
        const int left = fonts_.pixels(place.left);
        const int top = fonts_.pixels(place.top);
        moved |= takePlace(
            window, {left, top, fonts_.pixels(place.left + place.width), fonts_.pixels(place.top + place.height)});
    };
    put(portAdvice_, layout_.portAdvice);
    put(lookAgain_, layout_.lookAgain);
    put(assignPort_, layout_.assignPort);
    put(noModel_, layout_.noModel);
    put(notice_, layout_.notice);
    put(testReader_, layout_.testReader);
    for (const Reset& reset : resets_)
        put(reset.window, layout_.resets.at(reset.control));
    return moved;
}

} // namespace kel
