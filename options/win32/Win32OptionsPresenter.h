// SPDX-License-Identifier: MIT
#pragma once

#include "options/OptionsPresenter.h"
#include "options/WindowPlace.h"
#include "options/win32/DialogScreen.h"

namespace kel {

/// Shows the options dialog as a modal dialog of Windows. `parent` is the owner's window handle or nothing, for the
/// window that the thread works in.
class Win32OptionsPresenter final : public OptionsPresenter {
public:
    /// `place` is to outlive it.
    explicit Win32OptionsPresenter(WindowPlace& place) : place_(place) {}

    bool show(frmOptions& form, void* parent, std::string& reason) override;
    [[nodiscard]] Screen* screen() override { return &screen_; }

private:
    WindowPlace& place_;
    DialogScreen screen_;
};

[[nodiscard]] std::shared_ptr<OptionsPresenter> makeWin32OptionsPresenter();

} // namespace kel
