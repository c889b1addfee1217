// SPDX-License-Identifier: MIT
// The list of the models, with their makers above them.

#include "tests/windows/options/DialogTest.h"

#include <array>
#include <string>
#include <vector>

namespace kel {
namespace {

constexpr std::array kMakers = {L"Apperson", L"Chatsworth Data", L"Peripheral Dynamics Inc.", L"Scantron", L"Sekonic"};

class OptionsDialogModels : public OptionsDialogTest {
protected:
    [[nodiscard]] HWND list(const OtherProgram& user) const { return user.control(number("cboReaderType")); }

    [[nodiscard]] std::vector<std::wstring> models(const OtherProgram& user) const
    {
        std::vector<std::wstring> result(static_cast<std::size_t>(::SendMessageW(list(user), CB_GETCOUNT, 0, 0)));
        for (std::size_t row = 0; row < result.size(); ++row) {
            wchar_t text[256] = {};
            ::SendMessageW(list(user), CB_GETLBTEXT, row, reinterpret_cast<LPARAM>(text));
            result[row] = text;
        }
        return result;
    }

    /// The first row of the second maker.
    [[nodiscard]] LRESULT secondMaker(const OtherProgram& user) const
    {
        const std::vector<std::wstring> all = models(user);
        for (std::size_t row = 0; row < all.size(); ++row) {
            if (all[row].rfind(kMakers[1], 0) == 0)
                return static_cast<LRESULT>(row);
        }
        return -1;
    }

    [[nodiscard]] LRESULT current(const OtherProgram& user) const
    {
        return ::SendMessageW(list(user), CB_GETCURSEL, 0, 0);
    }

    void goTo(const OtherProgram& user, LRESULT row) const
    {
        user.select(number("cboReaderType"), models(user)[static_cast<std::size_t>(row)].c_str());
    }

    [[nodiscard]] bool isOpen(const OtherProgram& user) const
    {
        return ::SendMessageW(list(user), CB_GETDROPPEDSTATE, 0, 0) != 0;
    }

    /// The window of the open list.
    HWND open(const OtherProgram& user) const
    {
        ::SendMessageW(list(user), CB_SHOWDROPDOWN, TRUE, 0);
        COMBOBOXINFO parts{};
        parts.cbSize = sizeof parts;
        ::GetComboBoxInfo(list(user), &parts);
        return parts.hwndList;
    }

    /// The mouse goes to a place of the open list and clicks there.
    static void clickAt(const OtherProgram& user, HWND opened, LONG x, LONG y)
    {
        const LPARAM place = MAKELPARAM(x, y);
        ::SendMessageW(opened, WM_MOUSEMOVE, 0, place);
        ::SendMessageW(opened, WM_LBUTTONDOWN, MK_LBUTTON, place);
        ::SendMessageW(opened, WM_LBUTTONUP, 0, place);
        user.settle();
    }
};

TEST_F(OptionsDialogModels, TheFirstOfEachMakerHasRoomForAHeading)
{
    std::vector<std::wstring> headed;
    show([&](const OtherProgram& user) {
        const std::vector<std::wstring> all = models(user);
        const auto height = [&](std::size_t row) { return ::SendMessageW(list(user), CB_GETITEMHEIGHT, row, 0); };
        for (std::size_t row = 1; row < all.size(); ++row) {
            if (height(row) > height(0))
                headed.push_back(all[row]);
        }
    });
    ASSERT_EQ(headed.size(), kMakers.size());
    for (std::size_t maker = 0; maker < kMakers.size(); ++maker)
        EXPECT_EQ(headed[maker].rfind(kMakers[maker], 0), 0U) << maker;
}

TEST_F(OptionsDialogModels, KeysPassTheHeadingsBy)
{
    std::vector<LRESULT> reached;
    LRESULT maker = -1;
    std::wstring chosen;
    show([&](const OtherProgram& user) {
        const int models = number("cboReaderType");
        maker = secondMaker(user);
        ASSERT_GT(maker, 1);
        user.enter(models);
        goTo(user, maker - 1);
        for (const WPARAM key : {VK_DOWN, VK_UP}) {
            user.press(models, key);
            reached.push_back(current(user));
        }
        open(user);
        for (const WPARAM key : {VK_DOWN, VK_UP, VK_DOWN}) {
            user.press(models, key);
            reached.push_back(current(user));
        }
        user.press(models, VK_RETURN);
        chosen = user.text(models);
        user.click(IDOK);
    });
    EXPECT_EQ(reached, (std::vector<LRESULT>{maker, maker - 1, maker, maker - 1, maker}));
    const std::string name = reader.Profiles()->Item(std::to_string(reader.ReaderType()))->ReaderName();
    EXPECT_EQ(chosen, std::wstring(name.begin(), name.end()));
}

TEST_F(OptionsDialogModels, AHeadingCannotBeChosen)
{
    LRESULT maker = -1;
    bool staysOpen = false;
    bool isClosed = false;
    LRESULT before = -1;
    LRESULT pointedAt = -1;
    LRESULT chosen = -1;
    show([&](const OtherProgram& user) {
        maker = secondMaker(user);
        ASSERT_GT(maker, 1);
        user.enter(number("cboReaderType"));
        goTo(user, maker - 1);
        const HWND opened = open(user);
        user.settle();
        before = current(user);
        RECT place{};
        ::SendMessageW(opened, LB_GETITEMRECT, static_cast<WPARAM>(maker), reinterpret_cast<LPARAM>(&place));
        clickAt(user, opened, place.left + 8, place.top + 4);
        staysOpen = isOpen(user);
        pointedAt = current(user);
        clickAt(user, opened, place.left + 8, place.bottom - 4);
        isClosed = !isOpen(user);
        chosen = current(user);
    });
    EXPECT_TRUE(staysOpen);
    EXPECT_EQ(pointedAt, before);
    EXPECT_TRUE(isClosed);
    EXPECT_NE(before, maker);
    EXPECT_EQ(chosen, maker);
}

TEST_F(OptionsDialogModels, AreFoundByTypingInTheOpenList)
{
    LRESULT maker = -1;
    LRESULT found = -1;
    std::wstring chosen;
    show([&](const OtherProgram& user) {
        const int models = number("cboReaderType");
        user.enter(models);
        maker = secondMaker(user);
        open(user);
        user.type(models, L"ch");
        found = current(user);
        user.press(models, VK_RETURN);
        chosen = user.text(models);
    });
    EXPECT_EQ(found, maker);
    EXPECT_EQ(chosen.rfind(kMakers[1], 0), 0U);
}

} // namespace
} // namespace kel
