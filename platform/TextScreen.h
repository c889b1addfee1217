// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Screen.h"

namespace kel {

/// A process without a screen of its own: boxes go to standard error, each line of the text after the title.
class TextScreen final : public Screen {
public:
    BoxAnswer MsgBox(const std::string& text, BoxIcon icon, BoxButtons buttons, const std::string& title) override;
    /// The terminal's bell; nothing where standard error is no terminal.
    void Beep() override;
    [[nodiscard]] Int32 MousePointer() const override { return mousePointer_; }
    void MousePointer(Int32 shape) override { mousePointer_ = shape; }

private:
    Int32 mousePointer_ = kMousePointerDefault;
};

} // namespace kel
