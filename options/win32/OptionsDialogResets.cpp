// SPDX-License-Identifier: MIT
// A button beside each setting that differs from the model's default, which brings that back.

#include "options/CaptionText.h"
#include "options/win32/OptionsDialogWindow.h"
#include "options/win32/WindowText.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace kel {

namespace {

constexpr double kPi = 3.14159265358979323846;

/// The arrow goes anticlockwise, from the first of these angles to the second.
constexpr double kFrom = -kPi / 4;
constexpr double kTo = kPi * 5 / 4;
constexpr int kCorners = 33;

/// A point of a circle; angles run anticlockwise from the right.
POINT onCircle(POINT centre, double radius, double angle)
{
    return {centre.x + std::lround(radius * std::cos(angle)), centre.y - std::lround(radius * std::sin(angle))};
}

/// An arrow that turns back, in the colour of texts there: no typeface is sure to have one.
void drawArrow(HDC screen, const RECT& place)
{
    const POINT centre{(place.left + place.right) / 2, (place.top + place.bottom) / 2};
    const double radius = static_cast<double>(std::min(place.right - place.left, place.bottom - place.top)) / 4;
    const COLORREF colour = ::GetSysColor(COLOR_BTNTEXT);
    const HPEN pen = ::CreatePen(PS_SOLID, std::max(1, static_cast<int>(std::lround(radius / 3))), colour);
    const HBRUSH brush = ::CreateSolidBrush(colour);
    const HGDIOBJ penBefore = ::SelectObject(screen, pen);
    const HGDIOBJ brushBefore = ::SelectObject(screen, brush);
    // Not an arc of the system's: in a mirrored window it would run the other way round.
    std::array<POINT, kCorners> arc{};
    for (std::size_t corner = 0; corner < arc.size(); ++corner)
        arc[corner] =
            onCircle(centre, radius + 0.5, kFrom + (kTo - kFrom) * static_cast<double>(corner) / (kCorners - 1));
    ::Polyline(screen, arc.data(), kCorners);
    const POINT to = arc.back();
    const double head = radius * 0.6;
    const POINT tip = onCircle(to, head, kTo + kPi / 2);
    const POINT sides[] = {tip, onCircle(to, head, kTo), onCircle(to, head, kTo + kPi)};
    ::Polygon(screen, sides, 3);
    ::SelectObject(screen, brushBefore);
    ::SelectObject(screen, penBefore);
    ::DeleteObject(brush);
    ::DeleteObject(pen);
}

} // namespace

void OptionsDialogWindow::createResets()
{
    for (const Shown& each : shown_) {
        const bool isSetting = dynamic_cast<CheckBox*>(each.control) || dynamic_cast<PowerEdit*>(each.control) ||
                               dynamic_cast<PowerCombo*>(each.control);
        // Neither the model nor the port has a default.
        if (!isSetting || each.control == &form_.cboReaderType || each.control == &form_.cboPort)
            continue;
        const int number = kFirstReset + static_cast<int>(&each - shown_.data());
        const HWND window = createAid(L"BUTTON", DWORD{WS_TABSTOP} | BS_OWNERDRAW, number);
        tabAfter(each.window, window);
        resets_.push_back({each.control, window});
    }
}

bool OptionsDialogWindow::refreshResets()
{
    bool isNew = false;
    for (const Reset& reset : resets_) {
        const bool differs = form_.Aids().differs(*reset.control);
        isNew |= takeState(reset.window, differs, true);
        if (!differs)
            continue;
        const std::string caption = form_.Aids().resetCaption(*reset.control);
        // Not seen, but read to those who need that: it says which setting it is for.
        isNew |= showText(reset.window, settingName(form_, *reset.control) + ": " + caption);
        explain(reset.window, caption);
    }
    return isNew;
}

const OptionsDialogWindow::Reset* OptionsDialogWindow::resetOf(HWND window) const
{
    const auto found =
        std::find_if(resets_.begin(), resets_.end(), [&](const Reset& reset) { return reset.window == window; });
    return found == resets_.end() ? nullptr : &*found;
}

void OptionsDialogWindow::drawReset(const DRAWITEMSTRUCT& item)
{
    RECT place = item.rcItem;
    ::FillRect(item.hDC, &place, ::GetSysColorBrush(COLOR_3DFACE));
    if ((item.itemState & ODS_SELECTED) != 0)
        ::DrawEdge(item.hDC, &place, BDR_SUNKENOUTER, BF_RECT);
    drawArrow(item.hDC, place);
    ::InflateRect(&place, -2, -2);
    if ((item.itemState & ODS_FOCUS) != 0 && (item.itemState & ODS_NOFOCUSRECT) == 0)
        ::DrawFocusRect(item.hDC, &place);
}

} // namespace kel
