// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Screen.h"

namespace kel {

/// Boxes, sound and pointer of the user's desktop. A box belongs to the window that the thread works in.
class WindowsScreen final : public Screen {
public:
    BoxAnswer MsgBox(const std::string& text, BoxIcon icon, BoxButtons buttons, const std::string& title) override;
    void Beep() override;
    [[nodiscard]] Int32 MousePointer() const override { return mousePointer_; }
    void MousePointer(Int32 shape) override;

private:
    Int32 mousePointer_ = kMousePointerDefault;
    void* pointerBefore_ = nullptr;
};

} // namespace kel
