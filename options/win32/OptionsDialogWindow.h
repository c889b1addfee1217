// SPDX-License-Identifier: MIT
#pragma once

#include "options/Decision.h"
#include "options/WindowPlace.h"
#include "options/frmOptions.h"
#include "options/win32/Annotations.h"
#include "options/win32/DialogFonts.h"
#include "options/win32/DialogScreen.h"
#include "options/win32/NumberEdit.h"

#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <vector>
#include <windows.h>

namespace kel {

/// The options dialog as a modal dialog of the system, with the system's own controls.
///
/// The buttons OK and Cancel have the usual numbers, so that Enter and Escape work them; every other control has 1000
/// and its place in the form's list, from 0. What the dialog adds to the form's controls has 2000 and more; a button
/// that resets a setting has 3000 and the setting's place.
class OptionsDialogWindow final : private DecisionView {
public:
    static constexpr int kFirstControl = 1000;
    static constexpr int kPortAdvice = 2000;
    static constexpr int kLookAgain = 2001;
    static constexpr int kNoModel = 2002;
    static constexpr int kNotice = 2003;
    static constexpr int kAssignPort = 2004;
    static constexpr int kTestReader = 2005;
    static constexpr int kFirstReset = 3000;

    OptionsDialogWindow(frmOptions& form, DialogScreen& screen, WindowPlace& place);
    ~OptionsDialogWindow() override;
    OptionsDialogWindow(const OptionsDialogWindow&) = delete;
    OptionsDialogWindow& operator=(const OptionsDialogWindow&) = delete;

    /// Shows it over its owner, and comes back when the form is decided. False if the system cannot show it; its last
    /// error says why.
    [[nodiscard]] bool run(HWND owner);

private:
    using Action = std::function<void()>;

    /// A control of the form and its window, and how the window is brought up to date.
    struct Shown {
        Control* control = nullptr;
        HWND window = nullptr;
        Action refresh;
    };

    /// The button that brings back a setting's default.
    struct Reset {
        Control* control = nullptr;
        HWND window = nullptr;
    };

    static INT_PTR CALLBACK procedure(HWND window, UINT message, WPARAM first, LPARAM second);
    [[nodiscard]] INT_PTR handle(UINT message, WPARAM first, LPARAM second);
    void contain(const Action& what);

    void begin(HWND window);
    void end();
    void takeFont(HFONT font);
    void showFonts();
    void fit();
    [[nodiscard]] int resolutionOf(HWND window) const;
    void goToScreen(int dots, const RECT& wanted);
    void goToPlace();
    void keepPlace();
    [[nodiscard]] HFONT fontOf(const Control& control) const;
    void createControls();
    [[nodiscard]] HWND create(Control& control, const wchar_t* kind, DWORD style, DWORD extendedStyle = 0);
    void create(Label& label);
    void create(CheckBox& box);
    void create(PowerButton& button, bool isDefault);
    void create(PowerCombo& list);
    void create(PowerEdit& edit);
    void create(Frame& frame);
    [[nodiscard]] HWND createAid(const wchar_t* kind, DWORD style, int number);
    static void tabAfter(HWND before, HWND window);
    void createAids();
    void createResets();
    void createExplanations();

    void refresh();
    [[nodiscard]] bool refreshAids();
    [[nodiscard]] bool refreshResets();
    void refreshExplanations();
    void refreshAnnotations();
    void widenOpenPorts();
    void explain(HWND window, const std::string& text);
    void turn();
    [[nodiscard]] bool canBeWorked(const Control& control) const;
    [[nodiscard]] bool arrange();
    [[nodiscard]] bool placeList(HWND window, const PowerCombo& list, const RECT& place);
    [[nodiscard]] bool takeRowHeights(HWND window, const PowerCombo& list) const;
    [[nodiscard]] int rowHeight() const;
    void act(const Action& what);

    void command(int number, int notice);
    void returnTo(HWND field);
    void takeSelection(HWND window, PowerCombo& list);
    void click(PowerButton& button);
    [[nodiscard]] NumberEdit* fieldInHand();
    [[nodiscard]] bool leave(NumberEdit& field);
    [[nodiscard]] const PowerEdit* field() override;
    [[nodiscard]] bool leaveField() override;
    void showCorrection(const std::string& sentence) override;
    void showForm() override { refresh(); }
    [[nodiscard]] bool allows(const std::string& changes) override;
    void assignPort();
    void actOnPorts(const Action& what);
    void createTest();
    [[nodiscard]] bool refreshTest();
    void testReader();
    [[nodiscard]] bool clickTool(int number);
    static LRESULT CALLBACK listProcedure(HWND list, UINT message, WPARAM first, LPARAM second);
    static LRESULT CALLBACK openListProcedure(HWND list, UINT message, WPARAM first, LPARAM second);
    [[nodiscard]] bool type(HWND window, wchar_t letter);
    [[nodiscard]] bool isOnHeading(HWND list, LPARAM point) const;
    [[nodiscard]] bool spin(const NMHDR& notice);
    void draw(const DRAWITEMSTRUCT& item);
    void drawList(const DRAWITEMSTRUCT& item);
    void drawHeading(HDC screen, const RECT& place, const std::wstring& text) const;
    void paintBackground(HDC screen);
    void passOn(UINT message) const;
    void paintAnew() const;
    [[nodiscard]] bool isOnHeader(HWND window) const;
    [[nodiscard]] const Reset* resetOf(HWND window) const;
    static void drawReset(const DRAWITEMSTRUCT& item);
    void openHelp(HWND window);
    void showExplanation(HWND window);
    void hideExplanation();

    [[nodiscard]] Shown* shown(int number);
    [[nodiscard]] Shown* shown(const Control& control);
    [[nodiscard]] NumberEdit* numberEdit(HWND field);

    frmOptions& form_;
    DialogScreen& screen_;
    WindowPlace& place_;
    DialogFonts fonts_;
    HWND window_ = nullptr;
    std::vector<Shown> shown_;
    std::vector<std::unique_ptr<NumberEdit>> numbers_;
    HWND portAdvice_ = nullptr;
    HWND lookAgain_ = nullptr;
    HWND assignPort_ = nullptr;
    HWND noModel_ = nullptr;
    HWND notice_ = nullptr;
    HWND testReader_ = nullptr;
    bool showsTest_ = false;
    std::vector<Reset> resets_;
    HWND toolTips_ = nullptr;
    HWND help_ = nullptr;
    std::map<HWND, std::wstring> explanations_; // as the tool tips have them
    Annotations annotations_;
    WNDPROC list_ = nullptr;     // of the lists themselves
    WNDPROC openList_ = nullptr; // of that of the models, when it is open
    std::wstring typed_;         // into a list
    DWORD typedAt_ = 0;
    DialogLayout layout_;
    bool refreshing_ = false;
    bool isLeaving_ = false;
    std::exception_ptr failure_;
};

} // namespace kel
