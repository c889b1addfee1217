// SPDX-License-Identifier: MIT
// The dialog for those who cannot see it, or have no mouse. In the language that the process runs in; the tests run
// once for each.

#include "tests/windows/options/DialogTest.h"
#include "tests/windows/options/ScreenReader.h"

#include "options/CaptionText.h"
#include "platform/windows/WindowsText.h"
#include "strings/VBLMRTSModule.h"

#include <set>
#include <string>
#include <vector>

namespace kel {
namespace {

struct Named {
    const char* control;
    TextNumber caption; // of itself, or of the label before it
    long role;
};

constexpr Named kControls[] = {
    {"cboReaderType", text::kModelCaption, ROLE_SYSTEM_COMBOBOX},
    {"frmReader", text::kReaderOptions, ROLE_SYSTEM_GROUPING},
    {"chkFeeder", text::kFeederCaption, ROLE_SYSTEM_CHECKBUTTON},
    {"chkDuplex", text::kDuplexCaption, ROLE_SYSTEM_CHECKBUTTON},
    {"chkRejecter", text::kRejecterCaption, ROLE_SYSTEM_CHECKBUTTON},
    {"chkReaderGrade", text::kReaderGradeCaption, ROLE_SYSTEM_CHECKBUTTON},
    {"chkBarcode", text::kBarcodeCaption, ROLE_SYSTEM_CHECKBUTTON},
    {"chkPrinter", text::kPrinterCaption, ROLE_SYSTEM_CHECKBUTTON},
    {"chkWindowing", text::kWindowingCaption, ROLE_SYSTEM_CHECKBUTTON},
    {"txtRecognitionThreshold", text::kRecognitionThresholdCaption, ROLE_SYSTEM_TEXT},
    {"txtMarkDiscrimination", text::kMarkDiscriminationCaption, ROLE_SYSTEM_TEXT},
    {"txtMarkCutOff", text::kMarkCutOffCaption, ROLE_SYSTEM_TEXT},
    {"txtReaderTimeout", text::kTimeoutCaption, ROLE_SYSTEM_TEXT},
    {"txtSystemPause", text::kSystemPauseCaption, ROLE_SYSTEM_TEXT},
    {"frmComPort", text::kSerialPortCaption, ROLE_SYSTEM_GROUPING},
    {"cboPort", text::kPortCaption, ROLE_SYSTEM_COMBOBOX},
    {"cmdLocate", text::kLocateButton, ROLE_SYSTEM_PUSHBUTTON},
    {"cboBaud", text::kBaudRateCaption, ROLE_SYSTEM_COMBOBOX},
    {"cboDataBits", text::kDataBitsCaption, ROLE_SYSTEM_COMBOBOX},
    {"cboParity", text::kParityCaption, ROLE_SYSTEM_COMBOBOX},
    {"cboStopBits", text::kStopBitsCaption, ROLE_SYSTEM_COMBOBOX},
    {"cboFlowControl", text::kFlowControlCaption, ROLE_SYSTEM_COMBOBOX},
    {"cmdDefaults", text::kDefaultsButton, ROLE_SYSTEM_PUSHBUTTON},
    {"cmdOK", text::kOkButton, ROLE_SYSTEM_PUSHBUTTON},
    {"cmdCancel", text::kCancelButton, ROLE_SYSTEM_PUSHBUTTON},
};

/// A caption as it is read out.
std::wstring spoken(TextNumber caption)
{
    std::wstring text = wideText(VBLM_RTString(caption));
    std::erase(text, L'&');
    return text;
}

std::vector<HWND> visibleOnes(const OtherProgram& user)
{
    std::vector<HWND> result;
    for (HWND each = ::GetWindow(user.dialog, GW_CHILD); each; each = ::GetWindow(each, GW_HWNDNEXT)) {
        if (::IsWindowVisible(each))
            result.push_back(each);
    }
    return result;
}

class OptionsDialogAccess : public OptionsDialogTest {
protected:
    OptionsDialogAccess() { reader.LoadDefaults(kelReaderTypeScantronScanMark2500); }

    /// Shows the options while somebody listens and works them.
    template <class Actions>
    void listen(Actions actions)
    {
        show([&](const OtherProgram& user) {
            const ScreenReader ear(service);
            actions(user, ear);
        });
    }

    const AnnotationService service;
};

TEST_F(OptionsDialogAccess, EveryControlHasItsNameAndItsRole)
{
    for (const auto model : {kelReaderTypeScantronScanMark2500, kelReaderTypePDIVMR138, kelReaderTypeNone}) {
        reader.LoadDefaults(model);
        listen([&](const OtherProgram& user, const ScreenReader& ear) {
            for (const Named& each : kControls) {
                const HWND window = user.control(number(each.control));
                EXPECT_EQ(ear.name(window), spoken(each.caption)) << each.control;
                EXPECT_EQ(ear.role(window), each.role) << each.control;
            }
            EXPECT_EQ(ear.name(user.control(OptionsDialogWindow::kTestReader)), spoken(text::kTestReader));
            EXPECT_EQ(ear.name(user.dialog), spoken(text::kReaderSettings));
        });
    }
}

TEST_F(OptionsDialogAccess, ValuesAndStatesAreThoseOfTheModel)
{
    reader.SleepTime(70);
    reader.Duplex(True);
    listen([&](const OtherProgram& user, const ScreenReader& ear) {
        const auto control = [&](const char* name) { return user.control(number(name)); };
        const auto has = [&](const char* name, long state) { return ear.hasState(control(name), state); };
        EXPECT_EQ(ear.value(control("cboReaderType")), L"Scantron Scanmark 2500");
        EXPECT_EQ(ear.value(control("txtSystemPause")), L"70");
        EXPECT_EQ(ear.value(control("txtReaderTimeout")), L"10");
        EXPECT_EQ(ear.value(control("cboPort")), L"1");
        EXPECT_EQ(ear.value(control("cboBaud")), L"19200");
        EXPECT_TRUE(has("chkDuplex", STATE_SYSTEM_CHECKED));
        EXPECT_FALSE(has("chkRejecter", STATE_SYSTEM_CHECKED));
        for (const char* const fixed : {"chkFeeder", "chkReaderGrade", "chkBarcode"})
            EXPECT_TRUE(has(fixed, STATE_SYSTEM_UNAVAILABLE)) << fixed;
        for (const char* const free : {"chkDuplex", "txtSystemPause", "cboBaud", "cmdDefaults", "cmdOK"}) {
            EXPECT_FALSE(has(free, STATE_SYSTEM_UNAVAILABLE)) << free;
            EXPECT_TRUE(has(free, STATE_SYSTEM_FOCUSABLE)) << free;
        }
        user.enter(number("cboBaud"));
        EXPECT_TRUE(has("cboBaud", STATE_SYSTEM_FOCUSED));
        EXPECT_TRUE(has("cmdLocate", STATE_SYSTEM_INVISIBLE)) << "this model cannot be searched for";
        EXPECT_FALSE(has("cboPort", STATE_SYSTEM_INVISIBLE));

        user.select(number("cboReaderType"), L"Sekonic SR3500 (USB)");
        EXPECT_EQ(ear.value(control("cboReaderType")), L"Sekonic SR3500 (USB)");
        EXPECT_TRUE(has("cboBaud", STATE_SYSTEM_UNAVAILABLE)) << "no line";
    });
}

TEST_F(OptionsDialogAccess, AListInWhichNothingIsChosenSaysWhatToDo)
{
    reader.BaudRate(static_cast<kelReaderBaudRate>(4800));
    listen([&](const OtherProgram& user, const ScreenReader& ear) {
        const HWND list = user.control(number("cboBaud"));
        EXPECT_EQ(ear.value(list), wideText(VBLM_RTString(text::kChooseValue)));
        user.select(number("cboBaud"), L"9600");
        EXPECT_EQ(ear.value(list), L"9600");
    });
}

TEST_F(OptionsDialogAccess, EverySettingIsExplained)
{
    listen([&](const OtherProgram& user, const ScreenReader& ear) {
        int settings = 0;
        for (const HWND window : visibleOnes(user)) {
            const long role = ear.role(window);
            if (role != ROLE_SYSTEM_CHECKBUTTON && role != ROLE_SYSTEM_COMBOBOX && role != ROLE_SYSTEM_TEXT)
                continue;
            ++settings;
            EXPECT_GT(ear.description(window).size(), ear.name(window).size()) << utf8Text(ear.name(window));
        }
        EXPECT_GT(settings, 15);
    });
}

TEST_F(OptionsDialogAccess, ButtonsThatLookAlikeHaveNamesOfTheirOwn)
{
    reader.SleepTime(70);
    reader.Timeout(5);
    reader.Rejecter(reader.Rejecter() ? False : True);
    listen([&](const OtherProgram& user, const ScreenReader& ear) {
        std::multiset<std::wstring> names;
        int spinners = 0;
        for (const HWND window : visibleOnes(user)) {
            const long role = ear.role(window);
            if (role == ROLE_SYSTEM_PUSHBUTTON || role == ROLE_SYSTEM_SPINBUTTON)
                names.insert(ear.name(window));
            spinners += role == ROLE_SYSTEM_SPINBUTTON ? 1 : 0;
        }
        for (const std::wstring& name : names) {
            EXPECT_NE(name, L"");
            EXPECT_EQ(names.count(name), 1U) << utf8Text(name);
        }
        EXPECT_EQ(spinners, 5);
        const auto plain = [](TextNumber caption) { return wideText(plainCaption(VBLM_RTString(caption))); };
        EXPECT_EQ(names.count(plain(text::kSystemPauseCaption)), 1U) << "a spinner";
        const int first = OptionsDialogWindow::kFirstReset - OptionsDialogWindow::kFirstControl;
        EXPECT_EQ(ear.name(user.control(first + number("txtSystemPause"))).rfind(plain(text::kSystemPauseCaption), 0),
                  0U);
        EXPECT_EQ(ear.name(user.control(first + number("chkRejecter"))).rfind(plain(text::kRejecterCaption), 0), 0U);
    });
}

TEST_F(OptionsDialogAccess, WhatWasSaidOfTheWindowsIsTakenBackBeforeTheyGo)
{
    std::size_t said = 0;
    listen([&](const OtherProgram&, const ScreenReader&) { said = service.left(); });
    EXPECT_GT(said, 0U);
    EXPECT_EQ(service.left(), 0U);
}

TEST_F(OptionsDialogAccess, WhatCanBeWorkedHasAnAccessKey)
{
    reader.LoadDefaults(kelReaderTypeNCSEZData); // with the search
    listen([&](const OtherProgram& user, const ScreenReader&) {
        for (const Named& each : kControls) {
            // Enter and Escape are for these, and frames are not worked.
            const std::string_view name = each.control;
            if (name == "cmdOK" || name == "cmdCancel" || each.role == ROLE_SYSTEM_GROUPING)
                continue;
            HWND bearer = user.control(number(each.control));
            if (each.role == ROLE_SYSTEM_COMBOBOX || each.role == ROLE_SYSTEM_TEXT)
                bearer = ::GetWindow(bearer, GW_HWNDPREV);
            EXPECT_NE(OtherProgram::textOf(bearer).find(L'&'), std::wstring::npos) << name;
        }
    });
}

TEST_F(OptionsDialogAccess, TheTabKeyReachesEverythingOnceInBothDirections)
{
    reader.SleepTime(70); // so that there is a button to reset it
    listen([&](const OtherProgram& user, const ScreenReader& ear) {
        for (const wchar_t* const model :
             {L"Scantron Scanmark 2500", L"Scantron EZData", L"Sekonic SR3500 (USB)", L"No reader"}) {
            const HWND models = user.control(number("cboReaderType"));
            if (::SendMessageW(models, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(model)) >=
                0)
                user.select(number("cboReaderType"), model);
            else
                ::SendMessageW(models, CB_SETCURSEL, 0, 0); // "No reader", in another language
            std::multiset<HWND> usable;
            for (const HWND window : visibleOnes(user)) {
                const long role = ear.role(window);
                const bool isWorked = role == ROLE_SYSTEM_CHECKBUTTON || role == ROLE_SYSTEM_COMBOBOX ||
                                      role == ROLE_SYSTEM_TEXT || role == ROLE_SYSTEM_PUSHBUTTON;
                if (isWorked && ::IsWindowEnabled(window))
                    usable.insert(window);
            }
            user.enter(number("cboReaderType"));
            std::multiset<HWND> forwards;
            do {
                forwards.insert(user.focus());
                ::PostMessageW(user.focus(), WM_KEYDOWN, VK_TAB, 0);
                user.settle();
            } while (user.focus() != models && forwards.size() <= usable.size());
            EXPECT_EQ(forwards, usable) << utf8Text(model);
            std::multiset<HWND> backwards;
            do {
                backwards.insert(user.focus());
                ::SendMessageW(user.dialog, WM_NEXTDLGCTL, TRUE, FALSE); // as the shift key makes of the Tab key
                user.settle();
            } while (user.focus() != models && backwards.size() <= usable.size());
            EXPECT_EQ(backwards, usable) << utf8Text(model);
        }
    });
}

} // namespace
} // namespace kel
