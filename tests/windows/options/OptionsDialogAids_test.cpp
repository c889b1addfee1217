// SPDX-License-Identifier: MIT
// What the dialog has around the controls of the form.

#include "tests/windows/options/DialogTest.h"
#include "tests/windows/options/Screenshot.h"

#include "platform/PortMap.h"

#include <commctrl.h>

#include <chrono>
#include <mutex>
#include <string>

namespace kel {
namespace {

class OptionsDialogAids : public OptionsDialogTest {
protected:
    /// The button that resets a setting.
    [[nodiscard]] int reset(std::string_view name) const
    {
        return OptionsDialogWindow::kFirstReset + number(name) - OptionsDialogWindow::kFirstControl;
    }

    static bool isSeen(const OtherProgram& user, int number)
    {
        return ::IsWindowVisible(user.control(number)) != FALSE;
    }

    /// Another window of the dialog's thread, as soon as it is visible.
    static HWND waitFor(const OtherProgram& user, const wchar_t* kind)
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(10);
        while (std::chrono::steady_clock::now() < end) {
            if (const HWND found = find(user, kind))
                return found;
            user.settle();
        }
        return nullptr;
    }

    static HWND find(const OtherProgram& user, const wchar_t* kind)
    {
        Search search{user, kind};
        ::EnumThreadWindows(::GetWindowThreadProcessId(user.dialog, nullptr), &look, reinterpret_cast<LPARAM>(&search));
        return search.found;
    }

private:
    struct Search {
        const OtherProgram& user;
        std::wstring_view kind;
        HWND found = nullptr;
    };

    static BOOL CALLBACK look(HWND window, LPARAM wanted)
    {
        auto& search = *reinterpret_cast<Search*>(wanted);
        wchar_t kind[32] = {};
        ::GetClassNameW(window, kind, 32);
        if (window != search.user.dialog && ::IsWindowVisible(window) && search.kind == kind)
            search.found = window;
        return TRUE;
    }
};

TEST_F(OptionsDialogAids, ANumberThatOkCorrectsIsShownFirst)
{
    reader.LoadDefaults(kelReaderTypeScantronScanMark2500);
    const int timeout = number("txtReaderTimeout");
    std::wstring corrected;
    std::wstring notice;
    bool isOpen = false;
    EXPECT_EQ(show([&](const OtherProgram& user) {
                  user.enter(timeout);
                  user.type(timeout, L"77");
                  user.press(timeout, VK_RETURN);
                  corrected = user.text(timeout);
                  notice = user.text(OptionsDialogWindow::kNotice);
                  isOpen = ::IsWindowVisible(user.dialog) != FALSE;
                  user.waitUntilPainted();
                  Screenshot::of(user.dialog).save("notice");
                  user.press(timeout, VK_RETURN);
              }),
              True);
    EXPECT_TRUE(isOpen);
    EXPECT_EQ(corrected, L"10");
    EXPECT_NE(notice.find(L"77"), std::wstring::npos) << "it says what was typed";
    EXPECT_EQ(reader.Timeout(), 10);
}

TEST_F(OptionsDialogAids, AModelIsFoundByAnyPartOfItsName)
{
    std::wstring chosen;
    bool isAdvised = false;
    bool isStillAdvised = false;
    show([&](const OtherProgram& user) {
        const int models = number("cboReaderType");
        isAdvised = isSeen(user, OptionsDialogWindow::kNoModel);
        user.enter(models);
        user.type(models, L"6"); // no name begins with it
        chosen = user.text(models);
        isStillAdvised = isSeen(user, OptionsDialogWindow::kNoModel);
    });
    EXPECT_EQ(chosen, L"Scantron OpScan 6");
    EXPECT_TRUE(isAdvised) << "what to do without a model";
    EXPECT_FALSE(isStillAdvised);
}

TEST_F(OptionsDialogAids, AButtonBringsBackTheDefaultOfTheModel)
{
    reader.LoadDefaults(kelReaderTypeScantronScanMark2500);
    reader.SleepTime(70);
    const int pause = number("txtSystemPause");
    const int button = reset("txtSystemPause");
    std::vector<bool> seen;
    std::vector<std::wstring> texts;
    bool isOpen = false;
    show([&](const OtherProgram& user) {
        const auto look = [&] {
            seen.push_back(isSeen(user, button));
            texts.push_back(user.text(pause));
        };
        look();
        EXPECT_EQ(user.text(button), L"System pause (ms): Reset to the model's default: 50");
        user.waitUntilPainted();
        Screenshot::of(user.dialog).save("reset");
        user.click(button);
        look();
        user.enter(pause);
        user.type(pause, L"90");
        user.enter(number("cboPort"));
        look();
        user.enter(button);
        user.press(button, VK_RETURN);
        look();
        isOpen = ::IsWindowVisible(user.dialog) != FALSE;
    });
    EXPECT_EQ(seen, (std::vector<bool>{true, false, true, false}));
    EXPECT_EQ(texts, (std::vector<std::wstring>{L"70", L"50", L"90", L"50"}));
    EXPECT_TRUE(isOpen) << "Enter was for the button";
}

TEST_F(OptionsDialogAids, WhatWouldChangeUntouchedIsAskedAboutBeforeItIsSaved)
{
    reader.LoadDefaults(kelReaderTypeScantronScanMark2500);
    reader.Port(9);
    std::wstring answers[2];
    const auto answer = [&](const OtherProgram& user, int number) {
        ::PostMessageW(user.control(IDOK), BM_CLICK, 0, 0);
        const HWND box = waitFor(user, L"#32770");
        ASSERT_NE(box, nullptr);
        answers[0] = OtherProgram::textOf(::GetDlgItem(box, IDOK));
        answers[1] = OtherProgram::textOf(::GetDlgItem(box, IDCANCEL));
        ::SendMessageW(::GetDlgItem(box, number), BM_CLICK, 0, 0);
        user.settle();
    };
    bool isOpen = false;
    EXPECT_EQ(show([&](const OtherProgram& user) {
                  answer(user, IDCANCEL);
                  isOpen = ::IsWindowVisible(user.dialog) != FALSE;
              }),
              False);
    EXPECT_TRUE(isOpen);
    EXPECT_EQ(reader.Port(), 9);
    EXPECT_EQ(answers[0], L"Save");
    EXPECT_EQ(answers[1], L"Back");
    EXPECT_EQ(show([&](const OtherProgram& user) { answer(user, IDOK); }), True);
    EXPECT_EQ(reader.Port(), 1);
}

TEST_F(OptionsDialogAids, HelpExplainsTheSettingWhereTheHostHasNone)
{
    constexpr const wchar_t* kToolTips = L"tooltips_class32";
    reader.LoadDefaults(kelReaderTypeScantronScanMark2500);
    bool isShown = false;
    bool isStillShown = true;
    show([&](const OtherProgram& user) {
        HELPINFO help{};
        help.cbSize = sizeof help;
        help.iContextType = HELPINFO_WINDOW;
        help.iCtrlId = number("cboBaud");
        help.hItemHandle = user.control(help.iCtrlId);
        ::SendMessageW(user.dialog, WM_HELP, 0, reinterpret_cast<LPARAM>(&help));
        isShown = waitFor(user, kToolTips) != nullptr;
        user.click(number("chkRejecter"));
        user.settle();
        isStillShown = find(user, kToolTips) != nullptr;
    });
    EXPECT_TRUE(isShown);
    EXPECT_FALSE(isStillShown) << "the user went on";
}

/// The values that a machine keeps for one test; other tests run with the system's at the same time.
class ValuesOfATest final : public Registry {
public:
    std::optional<RegistryValue> read(kelReaderRegistryKey, std::string_view subKey, std::string_view name) override
    {
        const std::lock_guard lock(mutex_);
        const auto found = values_.find(std::string(subKey) + "|" + std::string(name));
        return found == values_.end() ? std::nullopt : std::optional(found->second);
    }
    bool create(kelReaderRegistryKey, std::string_view) override { return true; }
    bool write(kelReaderRegistryKey, std::string_view subKey, std::string_view name,
               const RegistryValue& value) override
    {
        const std::lock_guard lock(mutex_);
        values_[std::string(subKey) + "|" + std::string(name)] = value;
        return true;
    }
    bool remove(kelReaderRegistryKey, std::string_view, std::optional<std::string_view>) override { return false; }
    bool exists(kelReaderRegistryKey, std::string_view) override { return false; }
    std::vector<std::string> valueNames(kelReaderRegistryKey, std::string_view) override { return {}; }
    std::vector<std::string> subKeys(kelReaderRegistryKey, std::string_view) override { return {}; }

private:
    std::mutex mutex_;
    std::map<std::string, RegistryValue> values_;
};

std::unique_ptr<ValuesOfATest> valuesOfTest;

/// The machine of every thread: ports come beside the dialog.
class SharedPorts final : public TwoPorts {
    [[nodiscard]] Registry& registry() override { return *valuesOfTest; }
};

class OptionsDialogPorts : public OptionsDialogAids {
protected:
    OptionsDialogPorts()
    {
        valuesOfTest = std::make_unique<ValuesOfATest>();
        setPlatformFactory([]() -> std::unique_ptr<Platform> { return std::make_unique<SharedPorts>(); });
    }
    ~OptionsDialogPorts() override { setPlatformFactory(&makeWindowsPlatform); }

    /// Shows the options of a reader whose port is 3, on a thread that is within no scope.
    template <class Actions>
    Int16 portAfter(Actions actions)
    {
        Int16 port = 0;
        std::thread([&] {
            clsKELReader own;
            own.LoadDefaults(kelReaderTypeScantronScanMark2500);
            own.Port(3);
            std::thread user([&] {
                const OtherProgram other;
                ASSERT_NE(other.dialog, nullptr);
                actions(other);
                if (::IsWindow(other.dialog))
                    ::PostMessageW(other.dialog, WM_CLOSE, 0, 0);
            });
            saved = own.ShowOptions();
            user.join();
            port = own.Port();
        }).join();
        return port;
    }

    Boolean saved; // whether the user ended the dialog with OK

    static void waitUntilAllHaveCome(const OtherProgram& user)
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(10);
        while (!::IsWindowEnabled(user.control(OptionsDialogWindow::kLookAgain)) &&
               std::chrono::steady_clock::now() < end)
            user.settle();
    }

    [[nodiscard]] std::vector<std::wstring> lines(const OtherProgram& user) const
    {
        const HWND list = user.control(number("cboPort"));
        std::vector<std::wstring> result(static_cast<std::size_t>(::SendMessageW(list, CB_GETCOUNT, 0, 0)));
        for (std::size_t line = 0; line < result.size(); ++line) {
            wchar_t text[256] = {};
            ::SendMessageW(list, CB_GETLBTEXT, line, reinterpret_cast<LPARAM>(text));
            result[line] = text;
        }
        return result;
    }
};

TEST_F(OptionsDialogPorts, ComeWithTheirDevicesAndTheReasonsWhyOneCannotBeChosen)
{
    std::vector<std::wstring> found;
    std::wstring chosen;
    std::wstring refused;
    const Int16 port = portAfter([&](const OtherProgram& user) {
        const int ports = number("cboPort");
        waitUntilAllHaveCome(user);
        found = lines(user);
        chosen = user.text(ports);
        user.waitUntilPainted();
        Screenshot::of(user.dialog).save("ports");
        const HWND list = user.control(ports);
        ::SendMessageW(list, CB_SETCURSEL, 2, 0);
        ::SendMessageW(user.dialog, WM_COMMAND, MAKEWPARAM(ports, CBN_SELCHANGE), reinterpret_cast<LPARAM>(list));
        refused = user.text(ports);
        ::SendMessageW(list, CB_SETCURSEL, 0, 0);
        ::SendMessageW(user.dialog, WM_COMMAND, MAKEWPARAM(ports, CBN_SELCHANGE), reinterpret_cast<LPARAM>(list));
        user.click(IDOK);
    });
    ASSERT_GT(found.size(), 2U);
    EXPECT_EQ(found[0], L"1 – COM1");
    EXPECT_EQ(found[1], L"3 – COM3");
    EXPECT_EQ(found[2], L"2 – COM2 – not connected");
    EXPECT_EQ(chosen, L"3 – COM3");
    EXPECT_EQ(refused, L"3 – COM3") << "what cannot be opened cannot be chosen";
    EXPECT_EQ(port, 1);
}

TEST_F(OptionsDialogPorts, ADeviceGetsANumber)
{
    constexpr Int16 kNumber = 1;
    std::wstring chosen;
    const Int16 port = portAfter([&](const OtherProgram& user) {
        waitUntilAllHaveCome(user);
        // COM17 is the first that has no number; its menu begins with port 1.
        ::PostMessageW(user.control(OptionsDialogWindow::kAssignPort), BM_CLICK, 0, 0);
        ASSERT_NE(waitFor(user, L"#32768"), nullptr) << "no menu";
        for (const WPARAM key : {VK_DOWN, VK_RIGHT, VK_RETURN}) {
            ::PostMessageW(user.dialog, WM_KEYDOWN, key, 0);
            user.settle();
        }
        waitUntilAllHaveCome(user);
        chosen = user.text(number("cboPort"));
        user.click(IDOK);
    });
    EXPECT_EQ(PortMap(*valuesOfTest).get(kNumber), "COM17");
    EXPECT_EQ(chosen, L"1 – COM17");
    EXPECT_EQ(port, kNumber);
}

/// The test of the reader, whose ports say nothing.
class OptionsDialogReaderTest : public OptionsDialogPorts {
protected:
    static constexpr int kButton = OptionsDialogWindow::kTestReader;
    static constexpr int kNotice = OptionsDialogWindow::kNotice;

    static bool waitForText(const OtherProgram& user, int number, std::wstring_view text)
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(10);
        while (user.text(number) != text && std::chrono::steady_clock::now() < end)
            user.settle();
        return user.text(number) == text;
    }

    static bool isUsable(const OtherProgram& user, int number)
    {
        return ::IsWindowEnabled(user.control(number)) != FALSE;
    }
};

TEST_F(OptionsDialogReaderTest, IsFollowedAndStopped)
{
    std::vector<bool> usable;
    std::vector<std::wstring> captions;
    bool isFollowed = false;
    bool isStopped = false;
    bool isOpen = false;
    portAfter([&](const OtherProgram& user) {
        waitUntilAllHaveCome(user);
        const auto look = [&] {
            captions.push_back(user.text(kButton));
            usable.push_back(isUsable(user, OptionsDialogWindow::kLookAgain));
        };
        look();
        user.click(kButton);
        isFollowed = waitForText(user, kNotice, L"Test: waiting for the reader …");
        look();
        user.waitUntilPainted();
        Screenshot::of(user.dialog).save("test");
        user.click(kButton);
        isStopped = waitForText(user, kNotice, L"The test was stopped.");
        look();
        isOpen = ::IsWindowVisible(user.dialog) != FALSE;
    });
    EXPECT_TRUE(isFollowed);
    EXPECT_TRUE(isStopped);
    EXPECT_EQ(captions, (std::vector<std::wstring>{L"Test t&he reader", L"Stop t&he test", L"Test t&he reader"}));
    EXPECT_EQ(usable, (std::vector<bool>{true, false, true}));
    EXPECT_TRUE(isOpen);
}

TEST_F(OptionsDialogReaderTest, IsSaidInABox)
{
    constexpr int kBoxText = 0xFFFF;
    std::wstring title;
    std::wstring text;
    bool isOver = false;
    portAfter([&](const OtherProgram& user) {
        const int timeout = number("txtReaderTimeout");
        waitUntilAllHaveCome(user);
        user.enter(timeout);
        user.type(timeout, L"1");
        user.enter(kButton);
        user.click(kButton);
        const HWND box = waitFor(user, L"#32770");
        ASSERT_NE(box, nullptr);
        title = OtherProgram::textOf(box);
        text = OtherProgram::textOf(::GetDlgItem(box, kBoxText));
        ::PostMessageW(box, WM_CLOSE, 0, 0);
        isOver = waitForText(user, kButton, L"Test t&he reader");
    });
    EXPECT_EQ(title, L"Test of the Reader");
    EXPECT_EQ(text.rfind(L"Reader Not Answering: The reader did not answer", 0), 0U);
    EXPECT_TRUE(isOver);
}

TEST_F(OptionsDialogReaderTest, EndsWithTheDialog)
{
    for (const int button : {IDCANCEL, IDOK}) {
        int opened = 0;
        const Int16 port = portAfter([&](const OtherProgram& user) {
            waitUntilAllHaveCome(user);
            user.click(kButton);
            waitForText(user, kNotice, L"Test: waiting for the reader …");
            opened = TwoPorts::opened;
            EXPECT_TRUE(isUsable(user, button));
            user.click(button);
        });
        EXPECT_EQ(opened, 1);
        EXPECT_EQ(TwoPorts::opened, 0) << "the dialog is gone, and the port is free";
        EXPECT_EQ(saved, button == IDOK ? True : False);
        EXPECT_EQ(port, 3);
    }
}

TEST_F(OptionsDialogReaderTest, WaitsForANumberInTheFieldThatTheUserWasIn)
{
    std::wstring notice;
    bool isBack = false;
    portAfter([&](const OtherProgram& user) {
        const int pause = number("txtSystemPause");
        waitUntilAllHaveCome(user);
        user.enter(pause);
        user.type(pause, L"soon");
        ::PostMessageW(user.control(kButton), BM_CLICK, 0, 0);
        const HWND box = waitFor(user, L"#32770");
        ASSERT_NE(box, nullptr) << "nobody says what is wrong";
        notice = user.text(kNotice);
        ::PostMessageW(box, WM_CLOSE, 0, 0);
        user.bringToFront(user.dialog, user.control(pause));
        isBack = user.focus() == user.control(pause);
        EXPECT_EQ(user.text(pause), L"soon");
        EXPECT_EQ(user.text(kButton), L"Test t&he reader");
        user.click(IDCANCEL);
    });
    EXPECT_EQ(notice, L"");
    EXPECT_TRUE(isBack);
}

TEST_F(OptionsDialogReaderTest, NeedsAModel)
{
    bool without = true;
    bool with = false;
    show([&](const OtherProgram& user) {
        without = isUsable(user, kButton);
        user.select(number("cboReaderType"), L"Scantron Scanmark 2500");
        with = isUsable(user, kButton);
    });
    EXPECT_FALSE(without);
    EXPECT_TRUE(with);
}

} // namespace
} // namespace kel
