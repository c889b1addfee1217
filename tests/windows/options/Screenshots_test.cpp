// SPDX-License-Identifier: MIT
// What the dialog looks like. test_dialog.py compares the screenshots with those that are kept.

#include "tests/windows/options/DialogTest.h"
#include "tests/windows/options/Screenshot.h"

#include <algorithm>
#include <array>
#include <map>

namespace kel {
namespace {

/// Models that show different controls.
constexpr std::array kModels = {
    kelReaderTypeScantronScanMark2500,
    kelReaderTypeNCSEZData,
    kelReaderTypeNCSOpScan4,
    kelReaderTypeNone,
    kelReaderTypeSekonicSR3500,
    kelReaderTypePDIVMR138,
    kelReaderTypeScantron8000,
    kelReaderTypeChatsworthOMR2000,
    kelReaderTypeAppersonAdvantageLink,
};

/// How often a picture is taken again, each time later.
constexpr int kLooks = 12;

class OptionsDialogScreenshots : public OptionsDialogTest {
protected:
    OptionsDialogScreenshots() { reader.LoadDefaults(kelReaderTypeScantronScanMark2500); }

    void choose(const OtherProgram& user, kelReaderType model) const
    {
        const auto profile = reader.Profiles()->Item(std::to_string(model));
        const std::string name = profile->ReaderName();
        user.select(number("cboReaderType"), std::wstring(name.begin(), name.end()).c_str());
    }

    /// The dialog after a change from one model to another; what the display shows after some tenths of a second.
    Screenshot changedTo(const OtherProgram& user, kelReaderType before, kelReaderType model, int tenths = 0) const
    {
        choose(user, before);
        user.waitUntilPainted();
        choose(user, model);
        return shown(user, tenths);
    }

    /// The dialog after all of it was painted anew.
    static Screenshot redrawn(const OtherProgram& user, int tenths = 0)
    {
        ::RedrawWindow(user.dialog, nullptr, nullptr, RDW_ERASE | RDW_INVALIDATE | RDW_ALLCHILDREN);
        return shown(user, tenths);
    }

private:
    static Screenshot shown(const OtherProgram& user, int tenths)
    {
        user.waitUntilPainted();
        ::Sleep(tenths * 100);
        return Screenshot::of(user.dialog);
    }
};

TEST_F(OptionsDialogScreenshots, FirstShown)
{
    show([&](const OtherProgram& user) {
        user.waitUntilPainted();
        Screenshot::of(user.dialog).save("first");
    });
}

TEST_F(OptionsDialogScreenshots, AChangeOfTheModelLeavesNothingOfTheOneBefore)
{
    show([&](const OtherProgram& user) {
        std::map<kelReaderType, Screenshot> forwards;
        kelReaderType before = kelReaderTypeScantron8400; // so that the first one is a change too
        for (const kelReaderType model : kModels) {
            Screenshot changed = changedTo(user, before, model);
            Screenshot whole = redrawn(user);
            // A display that is busy shows what was painted a while later. What is not painted is never there.
            for (int again = 1; !(changed == whole) && again <= kLooks; ++again) {
                ::Sleep(again * 100);
                changed = changedTo(user, before, model, again);
                whole = redrawn(user, again);
            }
            EXPECT_TRUE(changed == whole) << "model " << model << " is not painted whole";
            changed.save("model" + std::to_string(model));
            forwards.emplace(model, changed);
            before = model;
        }
        std::for_each(kModels.rbegin(), kModels.rend(), [&](kelReaderType model) {
            choose(user, model);
            user.waitUntilPainted();
            bool same = forwards.at(model) == Screenshot::of(user.dialog);
            for (int again = 1; !same && again <= kLooks; ++again) {
                ::Sleep(again * 100);
                same = forwards.at(model) == Screenshot::of(user.dialog);
            }
            EXPECT_TRUE(same) << "model " << model << " on the way back";
        });
    });
}

TEST_F(OptionsDialogScreenshots, TheInsideOfAGroupBoxIsTheDialogs)
{
    show([&](const OtherProgram& user) {
        user.waitUntilPainted();
        const Screenshot shown = Screenshot::of(user.dialog);
        for (const char* const name : {"frmReader", "frmComPort"}) {
            RECT place{};
            ::GetWindowRect(user.control(number(name)), &place);
            ::MapWindowPoints(nullptr, user.dialog, reinterpret_cast<POINT*>(&place), 2);
            const DWORD face = ::GetSysColor(COLOR_3DFACE);
            EXPECT_EQ(shown.pixel(place.left + 6, place.bottom - 6),
                      static_cast<DWORD>(GetRValue(face) << 16 | GetGValue(face) << 8 | GetBValue(face)))
                << name;
        }
    });
}

TEST_F(OptionsDialogScreenshots, OpenLists)
{
    show([&](const OtherProgram& user) {
        for (const char* const name :
             {"cboReaderType", "cboPort", "cboBaud", "cboDataBits", "cboParity", "cboStopBits", "cboFlowControl"}) {
            const HWND list = user.control(number(name));
            const LRESULT chosen = ::SendMessageW(list, CB_GETCURSEL, 0, 0);
            user.enter(number(name));
            ::SendMessageW(list, CB_SHOWDROPDOWN, TRUE, 0);
            COMBOBOXINFO parts{};
            parts.cbSize = sizeof parts;
            ASSERT_TRUE(::GetComboBoxInfo(list, &parts));
            user.waitUntilPainted(parts.hwndList);
            // A display that has just begun has its mouse in the middle, and the list has the row beneath it.
            ::SendMessageW(list, CB_SETCURSEL, static_cast<WPARAM>(chosen), 0);
            user.waitUntilPainted(parts.hwndList);
            Screenshot::of(parts.hwndList).save(name);
            ::SendMessageW(list, CB_SHOWDROPDOWN, FALSE, 0);
        }
    });
}

} // namespace
} // namespace kel
