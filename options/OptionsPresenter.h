// SPDX-License-Identifier: MIT
#pragma once

#include "platform/Screen.h"
#include "types/Export.h"

#include <memory>
#include <string>

namespace kel {

class frmOptions;

/// Shows the options dialog: it connects the dialog's model with a window system.
///
/// The component has one for each system: on Linux a Qt window in a module of its own, which is loaded at the first
/// `ShowOptions`, on Windows a dialog. A host with a window system of its own, a test or a script sets its own with
/// `setOptionsPresenter`:
///
///     class ChooseScanmark final : public kel::OptionsPresenter {
///         bool show(kel::frmOptions& form, void*, std::string&) override
///         {
///             form.Show();
///             form.cboReaderType.CurrentRow(form.cboReaderType.FindRow("13", 0, 1));
///             form.cmdOK.Click();
///             return true;
///         }
///     };
///     kel::setOptionsPresenter(std::make_shared<ChooseScanmark>());
class KEL_PUBLIC OptionsPresenter {
public:
    virtual ~OptionsPresenter() = default;

    /// Shows the form and returns after OK or Cancel. In this order: set `form.Measure` and `form.Window`, if there are
    /// any; `form.Show()`, which fills the controls; show them, with the focus on `form.ActiveControl()`; pass on what
    /// the user does, until `form.Visible()` is False (`form.onHide` reports when). A window that is closed in another
    /// way is `form.cmdCancel.Click()`; a form that is still visible when this returns counts as cancelled.
    ///
    /// `parent` is the owner that the host gave to `ShowOptions`, of this presenter's own kind, or null. False if the
    /// form could not be shown; `reason` then says why, in a sentence that `ShowOptions` reports.
    virtual bool show(frmOptions& form, void* parent, std::string& reason) = 0;

    /// Where boxes, beeps and the mouse pointer go while `show` runs; nullptr for the platform's own.
    [[nodiscard]] virtual Screen* screen() { return nullptr; }
};

/// The host's presenter, for the whole process; a null pointer restores the component's own.
KEL_PUBLIC void setOptionsPresenter(std::shared_ptr<OptionsPresenter> presenter);

/// The presenter to use: the host's, otherwise the component's own, made when first needed. Fails with 48 if
/// there is neither.
[[nodiscard]] KEL_PUBLIC std::shared_ptr<OptionsPresenter> optionsPresenter();

} // namespace kel
