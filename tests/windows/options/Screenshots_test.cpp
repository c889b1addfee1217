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

class OptionsDialogScreenshots : public OptionsDialogTest {
protected:
    OptionsDialogScreenshots() { reader.LoadDefaults(kelReaderTypeScantronScanMark2500); }

    void choose(const OtherProgram& user, kelReaderType model) const
    {
        const auto profile = reader.Profiles()->Item(std::to_string(model));
        const std::string name = profile->ReaderName();
        user.select(number("cboReaderType"), std::wstring(name.begin(), name.end()).c_str());
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
        choose(user, kelReaderTypeScantron8400); // so that the first one is a change too
        for (const kelReaderType model : kModels) {
            choose(user, model);
            user.waitUntilPainted();
            const Screenshot changed = Screenshot::of(user.dialog);
            changed.save("model" + std::to_string(model));
            ::RedrawWindow(user.dialog, nullptr, nullptr, RDW_ERASE | RDW_INVALIDATE | RDW_ALLCHILDREN);
            user.waitUntilPainted();
            EXPECT_TRUE(changed == Screenshot::of(user.dialog)) << "model " << model << " is not painted whole";
            forwards.emplace(model, changed);
        }
        std::for_each(kModels.rbegin(), kModels.rend(), [&](kelReaderType model) {
            choose(user, model);
            user.waitUntilPainted();
            EXPECT_TRUE(forwards.at(model) == Screenshot::of(user.dialog)) << "model " << model << " on the way back";
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
            user.enter(number(name));
            ::SendMessageW(list, CB_SHOWDROPDOWN, TRUE, 0);
            COMBOBOXINFO parts{};
            parts.cbSize = sizeof parts;
            ASSERT_TRUE(::GetComboBoxInfo(list, &parts));
            user.waitUntilPainted(parts.hwndList);
            Screenshot::of(parts.hwndList).save(name);
            ::SendMessageW(list, CB_SHOWDROPDOWN, FALSE, 0);
        }
    });
}

} // namespace
} // namespace kel
