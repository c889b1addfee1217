// SPDX-License-Identifier: MIT
// The controls of the dialog: how each is made, drawn and brought up to date.

#include "options/win32/OptionsDialogWindow.h"
#include "options/win32/WindowText.h"
#include "platform/windows/ComponentInstance.h"
#include "platform/windows/WindowsText.h"

#include <commctrl.h>
#include <utility>

namespace kel {

void OptionsDialogWindow::createControls()
{
    for (Control* const control : form_.Controls()) {
        if (auto* label = dynamic_cast<Label*>(control))
            create(*label);
        else if (auto* box = dynamic_cast<CheckBox*>(control))
            create(*box);
        else if (auto* list = dynamic_cast<PowerCombo*>(control))
            create(*list);
        else if (auto* edit = dynamic_cast<PowerEdit*>(control))
            create(*edit);
        else if (auto* frame = dynamic_cast<Frame*>(control))
            create(*frame);
        else if (auto* button = dynamic_cast<PowerButton*>(control))
            create(*button, button == &form_.cmdOK);
        else
            shown_.push_back({control, nullptr, {}}); // a band or a line: the background has them
    }
    createAids();
    createResets();
    createExplanations();
}

HFONT OptionsDialogWindow::fontOf(const Control& control) const
{
    return &control == &form_.lblTitle ? fonts_.title() : fonts_.text();
}

HWND OptionsDialogWindow::create(Control& control, const wchar_t* kind, DWORD style, DWORD extendedStyle)
{
    int number = kFirstControl + static_cast<int>(shown_.size());
    if (&control == &form_.cmdOK)
        number = IDOK;
    else if (&control == &form_.cmdCancel)
        number = IDCANCEL;
    const HWND window = ::CreateWindowExW(extendedStyle, kind, L"", WS_CHILD | style, 0, 0, 0, 0, window_,
                                          asMenu(number), componentInstance(), nullptr);
    ::SendMessageW(window, WM_SETFONT, reinterpret_cast<WPARAM>(fontOf(control)), TRUE);
    shown_.push_back({&control, window, {}});
    return window;
}

void OptionsDialogWindow::create(Label& label)
{
    const HWND window = create(label, L"STATIC", SS_LEFT);
    shown_.back().refresh = [&label, window] { showText(window, label.Caption()); };
}

void OptionsDialogWindow::create(CheckBox& box)
{
    const HWND window = create(box, L"BUTTON", BS_CHECKBOX | WS_TABSTOP);
    shown_.back().refresh = [&box, window] {
        showText(window, box.Caption());
        ::SendMessageW(window, BM_SETCHECK, box.Value() == 1 ? BST_CHECKED : BST_UNCHECKED, 0);
    };
}

void OptionsDialogWindow::create(PowerButton& button, bool isDefault)
{
    // The arrow keys go about in a group: the buttons at the bottom are one.
    const DWORD group = &button == &form_.cmdDefaults ? WS_GROUP : 0;
    const HWND window = create(button, L"BUTTON", group | WS_TABSTOP | (isDefault ? BS_DEFPUSHBUTTON : BS_PUSHBUTTON));
    shown_.back().refresh = [&button, window] { showText(window, button.Caption()); };
}

void OptionsDialogWindow::create(PowerEdit& edit)
{
    const HWND field = create(edit, L"EDIT", ES_RIGHT | ES_AUTOHSCROLL | WS_TABSTOP, WS_EX_CLIENTEDGE);
    const HWND spinner =
        ::CreateWindowExW(0, UPDOWN_CLASSW, L"", WS_CHILD, 0, 0, 0, 0, window_, nullptr, componentInstance(), nullptr);
    auto number = std::make_unique<NumberEdit>(
        edit, field, spinner, [this] { refresh(); }, [this](const Action& what) { contain(what); });
    shown_.back().refresh = [number = number.get()] { number->refresh(); };
    numbers_.push_back(std::move(number));
}

void OptionsDialogWindow::create(Frame& frame)
{
    const HWND window = create(frame, L"BUTTON", BS_GROUPBOX | WS_GROUP);
    shown_.back().refresh = [&frame, window] { showText(window, frame.Caption()); };
}

void OptionsDialogWindow::draw(const DRAWITEMSTRUCT& item)
{
    if (item.CtlType == ODT_BUTTON)
        drawReset(item);
    else
        drawList(item);
}

} // namespace kel
