// SPDX-License-Identifier: MIT
#include "tests/windows/options/DialogTest.h"
#include "tests/windows/options/LayoutCheck.h"

#include <set>
#include <string>

namespace kel {
namespace {

class OptionsDialogWindowTest : public OptionsDialogTest {};

TEST_F(OptionsDialogWindowTest, TheChosenModelIsTheReaders)
{
    reader.LoadDefaults(kelReaderTypeScantronScanMark2500);
    EXPECT_EQ(show([&](const OtherProgram& user) {
                  user.select(number("cboReaderType"), L"Sekonic SR3500 (USB)");
                  user.click(IDOK);
              }),
              True);
    EXPECT_EQ(reader.ReaderType(), kelReaderTypeSekonicSR3500);
}

TEST_F(OptionsDialogWindowTest, NothingIsTakenWithCancelEscapeOrTheCloseButton)
{
    reader.LoadDefaults(kelReaderTypeScantronScanMark2500);
    const auto choose = [&](const OtherProgram& user) {
        user.select(number("cboReaderType"), L"Sekonic SR3500 (USB)");
    };
    EXPECT_EQ(show([&](const OtherProgram& user) {
                  choose(user);
                  user.click(IDCANCEL);
              }),
              False);
    EXPECT_EQ(show([&](const OtherProgram& user) {
                  choose(user);
                  user.press(number("cboReaderType"), VK_ESCAPE);
              }),
              False);
    EXPECT_EQ(show(choose), False);
    EXPECT_EQ(reader.ReaderType(), kelReaderTypeScantronScanMark2500);
}

TEST_F(OptionsDialogWindowTest, ANumberIsPutRightWhenItsFieldIsLeft)
{
    reader.LoadDefaults(kelReaderTypeScantronScanMark2500);
    const int pause = number("txtSystemPause");
    const int timeout = number("txtReaderTimeout");
    std::wstring typed;
    std::wstring left;
    std::wstring stepped;
    EXPECT_EQ(show([&](const OtherProgram& user) {
                  user.enter(pause);
                  user.type(pause, L"99999999");
                  user.enter(timeout);
                  left = user.text(pause);
                  user.type(timeout, L"3x");
                  typed = user.text(timeout);
                  user.press(timeout, VK_UP);
                  stepped = user.text(timeout);
                  user.press(timeout, VK_RETURN);
              }),
              True);
    EXPECT_EQ(left, L"10000");
    EXPECT_EQ(typed, L"3");
    EXPECT_EQ(stepped, L"4");
    EXPECT_EQ(reader.SleepTime(), 10000);
    EXPECT_EQ(reader.Timeout(), 4);
}

TEST_F(OptionsDialogWindowTest, EveryKeyThatStepsMakesOneStep)
{
    reader.LoadDefaults(kelReaderTypeScantronScanMark2500);
    reader.SleepTime(50);
    const int pause = number("txtSystemPause");
    std::vector<std::wstring> stepped;
    show([&](const OtherProgram& user) {
        user.enter(pause);
        for (const WPARAM key : {VK_UP, VK_PRIOR, VK_NEXT, VK_DOWN}) {
            user.press(pause, key);
            stepped.push_back(user.text(pause));
        }
    });
    EXPECT_EQ(stepped, (std::vector<std::wstring>{L"51", L"52", L"51", L"50"}));
}

/// Counts the reports, and shows nothing.
class CountingErrors final : public ErrorObject {
public:
    Int32 RaiseError(const ErrorReport& report) override
    {
        numbers.push_back(report.ErrorNumber);
        return 0;
    }
    std::vector<Int32> numbers;
};

TEST_F(OptionsDialogWindowTest, WhatIsNoNumberKeepsTheFocusAndIsNotSaved)
{
    const auto errors = std::make_shared<CountingErrors>();
    reader.SetError(errors);
    reader.LoadDefaults(kelReaderTypeScantronScanMark2500);
    reader.SleepTime(70);
    const int pause = number("txtSystemPause");
    std::vector<std::size_t> told;
    std::vector<std::wstring> texts;
    EXPECT_EQ(show([&](const OtherProgram& user) {
                  const auto look = [&] {
                      told.push_back(errors->numbers.size());
                      texts.push_back(user.text(pause));
                  };
                  user.enter(pause);
                  user.type(pause, L"soon");
                  user.press(pause, VK_RETURN);
                  look();
                  user.enter(number("cboPort"));
                  look();
                  user.press(pause, VK_RETURN);
                  look();
                  user.click(IDCANCEL);
              }),
              False);
    reader.SetError(nullptr);
    EXPECT_EQ(told, (std::vector<std::size_t>{1, 2, 3}));
    EXPECT_EQ(texts, (std::vector<std::wstring>(3, L"soon")));
    EXPECT_EQ(errors->numbers, (std::vector<Int32>(3, 13))) << "nobody who cancels is told";
    EXPECT_EQ(reader.SleepTime(), 70);
}

TEST_F(OptionsDialogWindowTest, AnOpenListIsForTheKeysUntilItIsClosed)
{
    reader.LoadDefaults(kelReaderTypeScantronScanMark2500);
    const int models = number("cboReaderType");
    bool staysOpen = false;
    bool isOpen = true;
    std::wstring chosen[2];
    EXPECT_EQ(show([&](const OtherProgram& user) {
                  const HWND list = user.control(models);
                  chosen[0] = user.text(models);
                  ::SendMessageW(list, CB_SHOWDROPDOWN, TRUE, 0);
                  user.press(models, VK_DOWN);
                  user.press(models, VK_DOWN);
                  staysOpen = ::SendMessageW(list, CB_GETDROPPEDSTATE, 0, 0) != 0;
                  user.press(models, VK_ESCAPE);
                  isOpen = ::SendMessageW(list, CB_GETDROPPEDSTATE, 0, 0) != 0;
                  ASSERT_TRUE(::IsWindowVisible(user.dialog)) << "Escape was for the list";
                  chosen[1] = user.text(models);

                  ::SendMessageW(list, CB_SHOWDROPDOWN, TRUE, 0);
                  user.press(models, VK_DOWN);
                  user.press(models, VK_RETURN);
                  ASSERT_TRUE(::IsWindowVisible(user.dialog)) << "Enter was for the list";
                  user.click(IDOK);
              }),
              True);
    EXPECT_TRUE(staysOpen);
    EXPECT_FALSE(isOpen);
    EXPECT_EQ(chosen[0], chosen[1]) << "nothing was chosen";
    EXPECT_EQ(reader.ReaderType(), kelReaderTypeScantronScanMark4000);
}

TEST_F(OptionsDialogWindowTest, AWindowThatWasAwayHasWhatWasTyped)
{
    reader.LoadDefaults(kelReaderTypeScantronScanMark2500);
    reader.SleepTime(70);
    const int pause = number("txtSystemPause");
    std::wstring typed;
    std::wstring left;
    show([&](const OtherProgram& user) {
        const HWND other = ::CreateWindowW(L"STATIC", L"other", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 100, 100,
                                           nullptr, nullptr, nullptr, nullptr);
        const auto lookElsewhere = [&] {
            ASSERT_EQ(user.focus(), user.control(pause));
            user.bringToFront(other, nullptr);
            ASSERT_EQ(user.focus(), nullptr);
            user.bringToFront(user.dialog, user.control(pause));
            ASSERT_EQ(user.focus(), user.control(pause));
        };
        user.enter(pause);
        user.bringToFront(user.dialog, user.control(pause));
        user.type(pause, L"1");
        lookElsewhere();
        user.type(pause, L"2");
        typed = user.text(pause);
        ::SendMessageW(user.control(pause), EM_SETSEL, 0, -1);
        user.type(pause, L"\b");
        lookElsewhere();
        user.enter(number("txtReaderTimeout"));
        left = user.text(pause);
        ::DestroyWindow(other);
    });
    EXPECT_EQ(typed, L"12") << "the typing goes on where it was";
    EXPECT_EQ(left, L"70") << "an empty field gets back the number from before the typing";
}

TEST_F(OptionsDialogWindowTest, ABoxIsTickedByAClick)
{
    reader.LoadDefaults(kelReaderTypeScantronScanMark2500);
    const Boolean before = reader.Rejecter();
    show([&](const OtherProgram& user) {
        user.click(number("chkRejecter"));
        user.click(IDOK);
    });
    EXPECT_NE(reader.Rejecter(), before);
}

TEST_F(OptionsDialogWindowTest, ItComesBackWhereItWas)
{
    RECT first{};
    RECT second{};
    show([&](const OtherProgram& user) {
        ::SetWindowPos(user.dialog, nullptr, 321, 123, 0, 0, SWP_NOZORDER | SWP_NOSIZE);
        ::GetWindowRect(user.dialog, &first);
    });
    show([&](const OtherProgram& user) { ::GetWindowRect(user.dialog, &second); });
    EXPECT_EQ(first.left, 321);
    EXPECT_EQ(second.left, first.left);
    EXPECT_EQ(second.top, first.top);
}

TEST_F(OptionsDialogWindowTest, WhatIsTooLargeForTheScreenGetsSmallerLetters)
{
    reader.LoadDefaults(kelReaderTypeScantronScanMark2500);
    LOGFONTW large{};
    large.lfHeight = -::GetSystemMetrics(SM_CYSCREEN) / 36; // its lines and what is between them do not fit
    const HFONT font = ::CreateFontIndirectW(&large);
    RECT place{};
    RECT buttons{};
    show([&](const OtherProgram& user) {
        ::SendMessageW(user.dialog, WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
        ::GetWindowRect(user.dialog, &place);
        ::GetWindowRect(user.control(IDCANCEL), &buttons);
    });
    ::DeleteObject(font);
    const RECT screen{0, 0, ::GetSystemMetrics(SM_CXSCREEN), ::GetSystemMetrics(SM_CYSCREEN)};
    for (const RECT& each : {place, buttons}) {
        RECT common{};
        ::IntersectRect(&common, &each, &screen);
        EXPECT_TRUE(::EqualRect(&common, &each)) << each.right << ", " << each.bottom;
    }
    EXPECT_GT(place.bottom - place.top, screen.bottom / 2) << "no smaller than need be";
}

TEST_F(OptionsDialogWindowTest, OnAScreenOfAnotherResolutionAllOfItGrows)
{
    reader.LoadDefaults(kelReaderTypeScantronScanMark2500);
    RECT before{};
    RECT fine{};
    RECT after{};
    show([&](const OtherProgram& user) {
        const HDC screen = ::GetDC(user.dialog);
        const int usual = ::GetDeviceCaps(screen, LOGPIXELSX);
        ::ReleaseDC(user.dialog, screen);
        const auto moveTo = [&](int dots) {
            RECT place{0, 0, 100, 100};
            ::SendMessageW(user.dialog, WM_DPICHANGED, MAKEWPARAM(dots, dots), reinterpret_cast<LPARAM>(&place));
        };
        ::GetClientRect(user.dialog, &before);
        moveTo(2 * usual);
        ::GetClientRect(user.dialog, &fine);
        moveTo(usual);
        ::GetClientRect(user.dialog, &after);
    });
    // Letters do not grow evenly, and rims not at all.
    EXPECT_NEAR(fine.right, 2 * before.right, before.right * 0.3);
    EXPECT_NEAR(fine.bottom, 2 * before.bottom, before.bottom * 0.3);
    EXPECT_TRUE(::EqualRect(&before, &after));
}

TEST_F(OptionsDialogWindowTest, AnOwnerIsHeldUpMeanwhile)
{
    const HWND owner = ::CreateWindowW(L"STATIC", L"owner", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 100, 100, nullptr,
                                       nullptr, nullptr, nullptr);
    bool held = false;
    HWND seen = nullptr;
    std::thread user([&] {
        const OtherProgram other;
        held = !::IsWindowEnabled(owner);
        seen = ::GetWindow(other.dialog, GW_OWNER);
        ::PostMessageW(other.dialog, WM_CLOSE, 0, 0);
    });
    reader.ShowOptions(owner);
    user.join();
    EXPECT_TRUE(held);
    EXPECT_EQ(seen, owner);
    EXPECT_TRUE(::IsWindowEnabled(owner));
    ::DestroyWindow(owner);
}

/// In the language that the process runs in; the tests run once for each.
TEST_F(OptionsDialogWindowTest, NoTextIsCutOffAndNothingOverlaps)
{
    for (const auto model : {kelReaderTypeScantronScanMark2500, kelReaderTypeScanningSystemsSR410,
                             kelReaderTypeAppersonBenchMark3000, kelReaderTypeNCSOpScan8, kelReaderTypeSekonicSR3500}) {
        reader.LoadDefaults(model);
        LayoutComplaints found;
        show([&](const OtherProgram& user) { found = complaintsAbout(user); });
        EXPECT_EQ(found.complaints, "") << "model " << model;
        EXPECT_GT(found.texts, 10);
    }
}

TEST_F(OptionsDialogWindowTest, EveryAccessKeyHasOneMeaning)
{
    std::multiset<wchar_t> keys;
    reader.LoadDefaults(kelReaderTypeScantronScanMark2500);
    show([&](const OtherProgram& user) {
        for (HWND each = ::GetWindow(user.dialog, GW_CHILD); each; each = ::GetWindow(each, GW_HWNDNEXT)) {
            const std::wstring text = OtherProgram::textOf(each);
            const std::size_t mark = text.find(L'&');
            if (::IsWindowVisible(each) && mark != std::wstring::npos && mark + 1 < text.size())
                keys.insert(static_cast<wchar_t>(::towupper(text[mark + 1])));
        }
    });
    for (const wchar_t key : keys)
        EXPECT_EQ(keys.count(key), 1U) << static_cast<char>(key);
}

} // namespace
} // namespace kel
