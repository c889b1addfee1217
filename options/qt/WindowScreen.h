// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Screen.h"

namespace kel {

class OptionsWindow;

/// The screen while the options window is open: boxes appear on top of it, the pointer is the application's.
class WindowScreen final : public Screen {
public:
    BoxAnswer MsgBox(const std::string& text, BoxIcon icon, BoxButtons buttons, const std::string& title) override;
    void Beep() override;
    [[nodiscard]] Int32 MousePointer() const override { return mousePointer_; }
    void MousePointer(Int32 shape) override;

    /// The window is open for as long as this lives.
    class Use {
    public:
        Use(WindowScreen& screen, OptionsWindow& window);
        ~Use();
        Use(const Use&) = delete;
        Use& operator=(const Use&) = delete;

    private:
        WindowScreen& screen_;
        OptionsWindow* previous_;
    };

private:
    OptionsWindow* window_ = nullptr;
    Int32 mousePointer_ = kMousePointerDefault;
};

} // namespace kel
