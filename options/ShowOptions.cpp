// SPDX-License-Identifier: MIT
#include "options/ShowOptions.h"

#include "options/OptionsPresenter.h"
#include "options/PresenterPlatform.h"
#include "options/basPublic.h"
#include "options/frmOptions.h"
#include "reader/clsKELReader.h"

#include <optional>

namespace kel {

namespace {

/// "Device unavailable": there is nothing to show a window on.
constexpr Int32 kDeviceUnavailable = 68;

/// Shows the form, with boxes and pointer on the presenter's screen; False with the reason if it cannot be shown.
bool present(OptionsPresenter& presenter, frmOptions& form, void* parent, std::string& reason)
{
    Screen* const screen = presenter.screen();
    if (!screen)
        return presenter.show(form, parent, reason);
    PresenterPlatform windowed(platform(), *screen);
    const PlatformScope scope(windowed);
    return presenter.show(form, parent, reason);
}

} // namespace

Boolean showOptionsDialog(clsKELReader& reader, void* parent)
{
    const auto presenter = optionsPresenter();
    auto oForm = std::make_shared<frmOptions>();
    Boolean bResult = False;
    bool bShown = true;
    std::string reason;
    if (oForm->SetReader(reader)) {
        oForm->HelpContextID(reader.HelpID(kelReaderHelpIDProperties));
        oForm->HelpFile(reader.HelpFile());
        bShown = present(*presenter, *oForm, parent, reason);
        bResult = bShown && !frmOptions::Cancelled();
    }
    UnloadForm(oForm);
    if (!bShown)
        throw RuntimeFailure(kDeviceUnavailable, reason);
    return bResult;
}

} // namespace kel
