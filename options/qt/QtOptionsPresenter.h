// SPDX-License-Identifier: MIT
#pragma once

#include "options/OptionsPresenter.h"
#include "options/WindowPlace.h"
#include "options/qt/WindowScreen.h"

class QWidget;

namespace kel {

/// Shows the options dialog as a Qt window.
///
/// A `QApplication` of the host is used, on its thread; `parent` is then a `QWidget*` or null. Without one an
/// application is made for the call, and `parent` is ignored.
class QtOptionsPresenter final : public OptionsPresenter {
public:
    /// `place` must outlive it.
    explicit QtOptionsPresenter(WindowPlace& place) : place_(place) {}

    bool show(frmOptions& form, void* parent, std::string& reason) override;
    [[nodiscard]] Screen* screen() override { return &screen_; }

private:
    void showWindow(frmOptions& form, QWidget* parent);

    WindowPlace& place_;
    WindowScreen screen_;
};

} // namespace kel
