// SPDX-License-Identifier: MIT
#pragma once

#include "platform/windows/WindowsScreen.h"

#include <functional>

namespace kel {

/// The screen while the options dialog is open: the dialog shows its fields again before a box appears on top of it.
class DialogScreen final : public Screen {
public:
    BoxAnswer MsgBox(const std::string& text, BoxIcon icon, BoxButtons buttons, const std::string& title) override
    {
        if (onBox)
            onBox();
        const Int32 shape = desktop_.MousePointer();
        // The hourglass is not for the user who is to read a box.
        desktop_.MousePointer(kMousePointerDefault);
        const BoxAnswer answer = desktop_.MsgBox(text, icon, buttons, title);
        desktop_.MousePointer(shape);
        return answer;
    }
    void Beep() override { desktop_.Beep(); }
    [[nodiscard]] Int32 MousePointer() const override { return desktop_.MousePointer(); }
    void MousePointer(Int32 shape) override { desktop_.MousePointer(shape); }

    std::function<void()> onBox; ///< the dialog's

private:
    WindowsScreen desktop_;
};

} // namespace kel
