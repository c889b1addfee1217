// SPDX-License-Identifier: MIT
// The dialog in the colours of a user who sees badly, and from right to left. test_dialog.py compares the screenshots
// with those that are kept.

#include "tests/windows/options/DialogTest.h"
#include "tests/windows/options/LayoutCheck.h"
#include "tests/windows/options/Screenshot.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace kel {
namespace {

/// The colours of a contrast theme: each text stands out from its own background alone.
const std::map<int, COLORREF> kHighContrast = {
    {COLOR_WINDOW, RGB(0, 0, 0)},
    {COLOR_WINDOWTEXT, RGB(255, 255, 255)},
    {COLOR_3DFACE, RGB(0, 0, 64)},
    {COLOR_BTNTEXT, RGB(255, 255, 0)},
    {COLOR_GRAYTEXT, RGB(63, 242, 63)},
    {COLOR_HIGHLIGHT, RGB(26, 235, 255)},
    {COLOR_HIGHLIGHTTEXT, RGB(0, 0, 0)},
    {COLOR_3DSHADOW, RGB(128, 128, 128)},
    {COLOR_3DHIGHLIGHT, RGB(192, 192, 192)},
    {COLOR_3DLIGHT, RGB(96, 96, 96)},
    {COLOR_3DDKSHADOW, RGB(255, 255, 255)},
    {COLOR_WINDOWFRAME, RGB(255, 255, 255)},
};

/// The system has other colours for as long as this lives.
class ColoursOf {
public:
    explicit ColoursOf(const std::map<int, COLORREF>& wanted)
    {
        for (const auto& [which, colour] : wanted)
            before_.emplace(which, ::GetSysColor(which));
        set(wanted);
    }
    ~ColoursOf() { set(before_); }
    ColoursOf(const ColoursOf&) = delete;
    ColoursOf& operator=(const ColoursOf&) = delete;

private:
    static void set(const std::map<int, COLORREF>& colours)
    {
        std::vector<int> which;
        std::vector<COLORREF> values;
        for (const auto& [number, colour] : colours) {
            which.push_back(number);
            values.push_back(colour);
        }
        ::SetSysColors(static_cast<int>(which.size()), which.data(), values.data());
    }

    std::map<int, COLORREF> before_;
};

/// How much a colour stands out from another, from 1 to 21.
double contrast(std::uint32_t one, std::uint32_t other)
{
    const auto light = [](std::uint32_t colour) {
        const auto part = [](std::uint32_t level) {
            const double share = level / 255.0;
            return share <= 0.03928 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * part(colour >> 16 & 0xFF) + 0.7152 * part(colour >> 8 & 0xFF) + 0.0722 * part(colour & 0xFF);
    };
    const auto [dark, bright] = std::minmax({light(one), light(other)});
    return (bright + 0.05) / (dark + 0.05);
}

/// How much anything in a part of a picture stands out from what most of that shows.
double contrastIn(const Screenshot& picture, const RECT& place)
{
    std::map<std::uint32_t, int> count;
    for (int y = place.top; y < place.bottom; ++y) {
        for (int x = place.left; x < place.right; ++x)
            ++count[picture.pixel(x, y)];
    }
    const auto most =
        std::max_element(count.begin(), count.end(), [](auto& a, auto& b) { return a.second < b.second; });
    double best = 1;
    for (const auto& [colour, times] : count) {
        if (times >= 3)
            best = std::max(best, contrast(colour, most->first));
    }
    return best;
}

/// Looks until the dialog shows what is wanted; a busy display shows later what was painted.
Screenshot lookUntil(const OtherProgram& user, const std::function<bool(const Screenshot&)>& isWanted)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(10);
    for (;;) {
        user.waitUntilPainted();
        Screenshot picture = Screenshot::of(user.dialog);
        if (isWanted(picture) || std::chrono::steady_clock::now() >= end)
            return picture;
    }
}

/// The texts of a dialog that hardly stand out, a line each; also if there are few at all.
std::string faintTexts(const OtherProgram& user, const Screenshot& picture)
{
    std::string result;
    int texts = 0;
    for (HWND each = ::GetWindow(user.dialog, GW_CHILD); each; each = ::GetWindow(each, GW_HWNDNEXT)) {
        wchar_t kind[32] = {};
        ::GetClassNameW(each, kind, 32);
        const std::wstring text = OtherProgram::textOf(each);
        if (!::IsWindowVisible(each) || text.empty() || ::lstrcmpiW(kind, L"msctls_updown32") == 0)
            continue;
        // Without the rim, and without the arrow of a list, which stand out in any case.
        RECT place{};
        ::GetClientRect(each, &place);
        COMBOBOXINFO parts{};
        parts.cbSize = sizeof parts;
        if (::lstrcmpiW(kind, L"combobox") == 0 && ::GetComboBoxInfo(each, &parts))
            place = parts.rcItem;
        ::InflateRect(&place, -2, -2);
        ::MapWindowPoints(each, user.dialog, reinterpret_cast<POINT*>(&place), 2);
        ++texts;
        if (contrastIn(picture, place) <= 4.5)
            result += std::string(text.begin(), text.end()) + "\n";
    }
    return texts > 30 ? result : result + "few texts\n";
}

class OptionsDialogColours : public OptionsDialogTest {
protected:
    OptionsDialogColours() { reader.LoadDefaults(kelReaderTypeScantronScanMark2500); }
};

TEST_F(OptionsDialogColours, AreFollowedWhileItIsOpen)
{
    bool isFollowed = false;
    show([&](const OtherProgram& user) {
        const auto picture = [&] {
            user.waitUntilPainted();
            return Screenshot::of(user.dialog);
        };
        const auto isPaintedWhole = [&] {
            const Screenshot changed = picture();
            ::RedrawWindow(user.dialog, nullptr, nullptr, RDW_ERASE | RDW_INVALIDATE | RDW_ALLCHILDREN);
            return changed == picture();
        };
        // Above the line it has the colour of a window, below that of a button.
        const auto isDark = [](const Screenshot& each) {
            return each.pixel(2, 2) == 0x000000 && each.pixel(2, each.height - 2) == 0x000040;
        };
        // A busy display shows later what was painted: the change is made again.
        const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(10);
        do {
            {
                const ColoursOf dark(kHighContrast);
                isFollowed = isPaintedWhole() && isDark(picture());
            }
            isFollowed = isPaintedWhole() && !isDark(picture()) && isFollowed;
        } while (!isFollowed && std::chrono::steady_clock::now() < end);
    });
    EXPECT_TRUE(isFollowed);
}

TEST_F(OptionsDialogColours, LetEveryTextBeReadInHighContrast)
{
    const ColoursOf dark(kHighContrast);
    show([&](const OtherProgram& user) {
        std::string faint;
        const Screenshot picture = lookUntil(user, [&](const Screenshot& each) {
            faint = faintTexts(user, each);
            return faint.empty();
        });
        EXPECT_EQ(faint, "");
        picture.save("highcontrast");
        const HWND list = user.control(number("cboReaderType"));
        ::SendMessageW(list, CB_SHOWDROPDOWN, TRUE, 0);
        COMBOBOXINFO parts{};
        parts.cbSize = sizeof parts;
        ASSERT_TRUE(::GetComboBoxInfo(list, &parts));
        user.waitUntilPainted(parts.hwndList);
        ::SendMessageW(list, CB_SETCURSEL, 0, 0);
        user.waitUntilPainted(parts.hwndList);
        Screenshot::of(parts.hwndList).save("highcontrastlist");
        ::SendMessageW(list, CB_SHOWDROPDOWN, FALSE, 0);
    });
}

/// A display of another kind may ask for it by either message.
TEST_F(OptionsDialogColours, PaintItAnewWhenTheyAreSaidToHaveChanged)
{
    constexpr COLORREF kForeign = RGB(255, 0, 255);
    const auto isForeign = [](std::uint32_t pixel) { return (pixel & 0xFFFFFF) == kForeign; };
    const auto has = [&](const Screenshot& picture) {
        return std::any_of(picture.pixels.begin(), picture.pixels.end(), isForeign);
    };
    show([&](const OtherProgram& user) {
        for (const UINT message : {WM_SYSCOLORCHANGE, WM_THEMECHANGED}) {
            user.waitUntilPainted();
            const HDC screen = ::GetDC(user.dialog);
            const HBRUSH brush = ::CreateSolidBrush(kForeign);
            RECT all{};
            ::GetClientRect(user.dialog, &all);
            ::FillRect(screen, &all, brush);
            ::ReleaseDC(user.dialog, screen);
            ::DeleteObject(brush);
            ASSERT_TRUE(has(lookUntil(user, has)));
            ::SendMessageW(user.dialog, message, 0, 0);
            EXPECT_FALSE(has(lookUntil(user, std::not_fn(has)))) << message;
        }
    });
}

class OptionsDialogMirrored : public OptionsDialogTest {
protected:
    OptionsDialogMirrored() { reader.LoadDefaults(kelReaderTypeScantronScanMark2500); }

    /// What is wrong with a dialog that is to be mirrored, a line each.
    std::string complaints(const OtherProgram& user) const
    {
        LayoutComplaints found = complaintsAbout(user);
        if ((::GetWindowLongW(user.dialog, GWL_EXSTYLE) & WS_EX_LAYOUTRTL) == 0)
            found.complaints += "is not mirrored\n";
        int pairs = 0;
        for (HWND each = ::GetWindow(user.dialog, GW_CHILD); each; each = ::GetWindow(each, GW_HWNDNEXT)) {
            const HWND label = ::GetWindow(each, GW_HWNDPREV);
            if (!::IsWindowVisible(each) || !isOf(label, L"static") ||
                (!isOf(each, L"combobox") && !isOf(each, L"edit")))
                continue;
            ++pairs;
            RECT places[2];
            ::GetWindowRect(label, &places[0]);
            ::GetWindowRect(each, &places[1]);
            if (places[0].left < places[1].right)
                found.complaints += "a label is not right of its field\n";
        }
        EXPECT_GE(pairs, 3);
        return found.complaints;
    }

private:
    static bool isOf(HWND window, const wchar_t* wanted)
    {
        wchar_t kind[32] = {};
        ::GetClassNameW(window, kind, 32);
        return ::lstrcmpiW(kind, wanted) == 0;
    }
};

TEST_F(OptionsDialogMirrored, AsItsOwnerIs)
{
    const HWND owner = ::CreateWindowExW(WS_EX_LAYOUTRTL, L"STATIC", L"owner", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0,
                                         100, 100, nullptr, nullptr, nullptr, nullptr);
    std::string found;
    show(
        [&](const OtherProgram& user) {
            user.select(number("cboReaderType"), L"Scantron EZData"); // with the search
            found = complaints(user);
            user.select(number("cboReaderType"), L"Scantron Scanmark 2500");
            found += complaints(user);
            user.click(number("chkRejecter")); // there is a button to reset it
            user.waitUntilPainted();
            Screenshot::of(user.dialog).save("mirrored");
        },
        owner);
    ::DestroyWindow(owner);
    EXPECT_EQ(found, "");
}

TEST_F(OptionsDialogMirrored, AsTheHostsWindowsAre)
{
    DWORD before = 0;
    ::GetProcessDefaultLayout(&before);
    const HWND owner = ::CreateWindowW(L"STATIC", L"owner", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 100, 100, nullptr,
                                       nullptr, nullptr, nullptr);
    for (const HWND each : {HWND{nullptr}, owner}) {
        ::SetProcessDefaultLayout(LAYOUT_RTL);
        std::string found;
        show([&](const OtherProgram& user) { found = complaints(user); }, each);
        ::SetProcessDefaultLayout(before);
        EXPECT_EQ(found, "") << (each ? "with an owner" : "without one");
    }
    ::DestroyWindow(owner);
}

TEST_F(OptionsDialogMirrored, NotOtherwise)
{
    bool isMirrored = true;
    show([&](const OtherProgram& user) {
        isMirrored = (::GetWindowLongW(user.dialog, GWL_EXSTYLE) & WS_EX_LAYOUTRTL) != 0;
    });
    EXPECT_FALSE(isMirrored);
}

} // namespace
} // namespace kel
