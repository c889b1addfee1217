// SPDX-License-Identifier: MIT
#pragma once

#include "options/WindowPlace.h"
#include "options/frmOptions.h"
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
/// and its place in the form's list, from 0.
class OptionsDialogWindow {
public:
    static constexpr int kFirstControl = 1000;

    OptionsDialogWindow(frmOptions& form, DialogScreen& screen, WindowPlace& place);
    ~OptionsDialogWindow();
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

    void refresh();
    [[nodiscard]] bool arrange();
    [[nodiscard]] bool placeList(HWND list, const RECT& place);
    void act(const Action& what);

    void command(int number, int notice);
    void returnTo(HWND field);
    void takeSelection(HWND window, PowerCombo& list);
    [[nodiscard]] bool spin(const NMHDR& notice);
    void drawList(const DRAWITEMSTRUCT& item);
    void paintBackground(HDC screen);
    [[nodiscard]] bool isOnHeader(HWND window) const;
    void openHelp();

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
    DialogLayout layout_;
    bool refreshing_ = false;
    std::exception_ptr failure_;
};

} // namespace kel
