// SPDX-License-Identifier: MIT
#pragma once

#include "options/Controls.h"

#include <functional>
#include <windows.h>

namespace kel {

/// A number field of the form as an edit control with spin buttons after it. It shows the text that the model has,
/// whatever the bounds, and the model corrects it.
class NumberEdit {
public:
    using Action = std::function<void()>;

    /// `after` runs after whatever the user has done here. What the window does for itself runs within `contain`, which
    /// lets nothing out: the system's frames are below.
    NumberEdit(PowerEdit& edit, HWND field, HWND spinner, Action after, std::function<void(const Action&)> contain);
    ~NumberEdit();
    NumberEdit(const NumberEdit&) = delete;
    NumberEdit& operator=(const NumberEdit&) = delete;

    [[nodiscard]] HWND field() const noexcept { return field_; }
    [[nodiscard]] HWND spinner() const noexcept { return spinner_; }
    /// The field of the form.
    [[nodiscard]] const PowerEdit& edit() const noexcept { return edit_; }

    /// Shows the model's text.
    void refresh();

    /// The user has typed, comes in, or steps up (1) or down (-1).
    void changed();
    void enter();
    void step(int by);

    /// What leaving the field does; for a default button, too, that works while the field keeps the focus. False, after
    /// a message to the user, if its text is not a number.
    [[nodiscard]] bool leave();

    /// Whether leaving the field needs no message.
    [[nodiscard]] bool canBeLeft() const;

private:
    static LRESULT CALLBACK procedure(HWND field, UINT message, WPARAM first, LPARAM second);
    /// Whether a character is typed.
    [[nodiscard]] bool takes(WPARAM character);

    PowerEdit& edit_;
    HWND field_;
    HWND spinner_;
    WNDPROC inner_ = nullptr; // of the edit control itself
    Action after_;
    std::function<void(const Action&)> contain_;
    std::string textOnEntry_;
    bool inside_ = false; // between coming in and leaving; not while another window has the focus
    bool refreshing_ = false;
};

} // namespace kel
